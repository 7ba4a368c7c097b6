#pragma once
#include <QtGui/QPalette>

struct FWTheme;
class QWidget;

// The finish for every window the program opens: the main window, dialogs, menus and the
// lists that drop down from a choice box, and the ring that shows where the keyboard is.
namespace AppLook {
// The palette of standard widgets in the finish `t`.
QPalette palette(const FWTheme &t);
// Puts the current finish and zoom on the whole application; again at every change of the look.
// Fonts are set in pixels, so what a printer or PDF page does to point sizes never shows here.
void follow();
} // namespace AppLook
