#pragma once
#include <QtGui/QColor>
#include <QtWidgets/QFrame>

class QLabel;

// A symbol and a wrapping text on a rounded panel tinted with the notice's colour.
class Notice : public QFrame
{
    Q_OBJECT
public:
    Notice(const QString &text, const QColor &color, const QString &symbol, QWidget *parent = nullptr);
    void setText(const QString &text);
    void setColor(const QColor &color);
    QString text() const;
    QColor color() const { return m_color; }

    // The colours notices use, readable on every finish.
    static QColor red();
    static QColor orange();

protected:
    void paintEvent(QPaintEvent *) override;

private:
    void restyle();
    QColor m_color;
    QString m_symbol;
    QLabel *m_icon;
    QLabel *m_text;
};
