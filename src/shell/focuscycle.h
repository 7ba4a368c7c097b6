#pragma once

class QWidget;
class TLMain;

// F6 and Shift+F6: the keyboard jumps between the window's regions, rail → header → content.
namespace FocusCycle {
// The first widget of `region` that Tab would reach, or null.
QWidget *firstIn(QWidget *region);
// The first box of `region` that takes typing (a text, number or date box), else its first
// choice box, else the first widget Tab would reach; null when there is none.
QWidget *firstField(QWidget *region);
// Moves the focus to the next region (or the previous one with `back`) of `main`.
void step(TLMain *main, bool back);
// Gives `window` the two keys.
void install(QWidget *window, TLMain *main);
} // namespace FocusCycle
