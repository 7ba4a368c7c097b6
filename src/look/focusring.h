#pragma once
#include <QtWidgets/QFocusFrame>

// The ring around whatever has the keyboard's focus, in every window of the program: at least
// two pixels wide, in the finish's focus colour, which keeps 3:1 against every background.
class FocusRing : public QFocusFrame
{
    Q_OBJECT
public:
    explicit FocusRing(QWidget *parent = nullptr);
    // Starts following the focus through the whole application; once is enough.
    static void install();
    // The ring's line width in pixels at the current zoom.
    static int width();

protected:
    void paintEvent(QPaintEvent *) override;
};
