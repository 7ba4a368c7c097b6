#pragma once

class QAbstractButton;
class QDateEdit;

// A date box as one keyboard stop that takes typing: a digit typed on "Set date" starts the
// date and goes on into the picker; with the whole date selected, Delete or Backspace clears
// it. The clear button stays for the mouse and is no Tab stop of its own.
namespace DateKeys {
void attach(QAbstractButton *set, QDateEdit *picker, QAbstractButton *clear);
} // namespace DateKeys
