#pragma once
#include <QtGui/QColor>
#include <QtWidgets/QFrame>

class QLabel;

// A symbol and a wrapping text on a rounded panel tinted with the notice's colour.
class Notice : public QFrame
{
    Q_OBJECT
public:
    // Which of the finish's colours a notice wears; it follows the finish when that changes.
    enum class Tone { Error, Warning };

    Notice(const QString &text, Tone tone, const QString &symbol, QWidget *parent = nullptr);
    void setText(const QString &text);
    void setTone(Tone tone);
    Tone tone() const { return m_tone; }
    QString text() const;
    // The colour of the tone in the current finish.
    QColor color() const;

    // The colours notices use, readable on every finish.
    static QColor red();
    static QColor orange();

protected:
    void paintEvent(QPaintEvent *) override;

private:
    void restyle();
    Tone m_tone;
    QString m_symbol;
    QLabel *m_icon;
    QLabel *m_text;
};
