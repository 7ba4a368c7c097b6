#pragma once
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>

// Paints metal and finish backgrounds shared by the chrome controls.
namespace Chrome {
// The brushed-metal gradient of the finish over `rect`, darker when `pressed`.
QLinearGradient metal(const QRectF &rect, bool pressed = false);
// Keeps `w` repainted and re-measured whenever the finish or zoom changes.
void followLook(QWidget *w);
} // namespace Chrome

// A raised panel of the finish with rounded corners; holds any layout.
class FWPanel : public QFrame
{
    Q_OBJECT
public:
    explicit FWPanel(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *) override;
};

// A sunken well for fields and lists.
class FWWell : public QFrame
{
    Q_OBJECT
public:
    explicit FWWell(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *) override;
};

// A small caption in the dim colour, set in capitals.
class FWCaption : public QLabel
{
    Q_OBJECT
public:
    explicit FWCaption(const QString &text, QWidget *parent = nullptr);

private:
    void restyle();
};
