#pragma once
#include <QtWidgets/QWidget>

#include <functional>

class QLabel;
class QVBoxLayout;

// A centred symbol, title and text, with an optional action button below.
class EmptyState : public QWidget
{
    Q_OBJECT
public:
    EmptyState(const QString &symbol, const QString &title, const QString &text, QWidget *parent = nullptr);
    // Adds a button under the text; several may be added, one per line.
    void addAction(const QString &title, const std::function<void()> &action, bool prominent = true);
    QString title() const;
    QString text() const;
    QString symbol() const { return m_symbol; }

private:
    void restyle();
    QString m_symbol;
    QLabel *m_icon;
    QLabel *m_title;
    QLabel *m_text;
    QVBoxLayout *m_actions;
};
