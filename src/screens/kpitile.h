#pragma once
#include <QtWidgets/QWidget>

// One headline figure of a money screen: a small title with its symbol, the
// value large, and an optional note under it. A warning tile takes the
// finish's second accent so exposure stands out.
class KPITile : public QWidget
{
    Q_OBJECT
public:
    KPITile(const QString &title, const QString &symbol, QWidget *parent = nullptr);
    void setValue(const QString &value);
    void setNote(const QString &note);
    void setWarn(bool warn);
    QString title() const { return m_title; }
    QString value() const { return m_value; }
    QString note() const { return m_note; }
    bool warn() const { return m_warn; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;

private:
    QString m_title, m_symbol, m_value, m_note;
    bool m_warn = false;
};

// A thin fraction bar; fractions outside 0…1 are drawn clamped, and a
// fraction above 1 turns the bar red (over budget).
class GlowBar : public QWidget
{
    Q_OBJECT
public:
    explicit GlowBar(QWidget *parent = nullptr);
    void setFraction(double fraction);
    double fraction() const { return m_fraction; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;

private:
    double m_fraction = 0;
};
