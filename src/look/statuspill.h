#pragma once
#include <QtWidgets/QWidget>

// A status word in a coloured capsule; the colour follows the exact word.
class StatusPill : public QWidget
{
    Q_OBJECT
public:
    enum Tone { Green, Red, Orange, Neutral };
    explicit StatusPill(const QString &text = {}, QWidget *parent = nullptr);
    void setText(const QString &text);
    QString text() const { return m_text; }
    // The tone of a status word: whole-text membership of its lower case in the three lists.
    static Tone tone(const QString &text);
    // The text as shown: its first letter raised when the text begins in lower case.
    static QString shown(const QString &text);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;

private:
    QString m_text;
};
