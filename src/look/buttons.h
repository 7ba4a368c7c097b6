#pragma once
#include <QtWidgets/QAbstractButton>

// A metal push button of the finish with an optional symbol; `prominent`
// fills it with the accent for the main action of a view.
class FWChromeButton : public QAbstractButton
{
    Q_OBJECT
public:
    explicit FWChromeButton(const QString &text, const QString &symbol = {}, QWidget *parent = nullptr);
    void setSymbol(const QString &symbol);
    void setProminent(bool prominent);
    // Compact buttons are shorter and drop their text when a symbol is set.
    void setCompact(bool compact);
    QSize sizeHint() const override;

protected:
    bool event(QEvent *e) override;
    void paintEvent(QPaintEvent *) override;
    void enterEvent(QEnterEvent *) override;
    void leaveEvent(QEvent *) override;

private:
    QString m_symbol;
    bool m_prominent = false;
    bool m_compact = false;
    bool m_hover = false;
};

// A round metal button that shows only a symbol (zoom, help, header controls).
class FWOrbButton : public QAbstractButton
{
    Q_OBJECT
public:
    explicit FWOrbButton(const QString &symbol, const QString &tip, QWidget *parent = nullptr);
    // The orb's diameter in points before zoom.
    void setDiameter(qreal points);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;

private:
    QString m_symbol;
    qreal m_diameter = 26;
};
