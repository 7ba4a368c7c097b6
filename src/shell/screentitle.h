#pragma once
#include <QtWidgets/QWidget>

struct ModuleDef;
class QLabel;

// The title row of a screen: the module's symbol and title, an optional
// subtitle, and optional controls at the end.
class ScreenTitle : public QWidget
{
    Q_OBJECT
public:
    ScreenTitle(const ModuleDef &m, const QString &subtitle = {}, QWidget *trailing = nullptr,
                QWidget *parent = nullptr);
    void setSubtitle(const QString &subtitle);
    QString title() const;

private:
    void restyle();
    QString m_symbol;
    QLabel *m_icon;
    QLabel *m_title;
    QLabel *m_subtitle;
};
