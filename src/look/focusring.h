#pragma once
#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

// The ring around whatever has the keyboard's focus, in every window of the program: at least
// two pixels wide, in the finish's focus colour, which keeps 3:1 against every background.
// It lies over the window rather than inside the widget's parent, so a parent that fits its
// widget tightly does not cut it; a scrolling area still hides what it scrolls out of sight.
class FocusRing : public QWidget
{
    Q_OBJECT
public:
    explicit FocusRing(QWidget *parent = nullptr);
    // Starts following the focus through the whole application; once is enough.
    static void install();
    // The ring's line width in pixels at the current zoom.
    static int width();
    // Puts the ring around `w`, or takes it away for null.
    void follow(QWidget *w);
    QWidget *target() const { return m_target; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *) override;

private:
    void place();
    void unwatch();
    QPointer<QWidget> m_target;
    QList<QPointer<QWidget>> m_watched;
};
