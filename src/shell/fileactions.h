#pragma once
#include <QtCore/QString>

#include <functional>

class DB;
class QWidget;

// The File menu's commands that go through file dialogs: backup, restore,
// CSV export and the company logo. A cancelled dialog ends a command quietly.
namespace FileActions {
// Saves the whole data folder as one zip chosen by the user.
void backupAll(QWidget *parent, DB &db);
// Asks, then replaces the data folder with a backup's and quits on success.
void restore(QWidget *parent, DB &db);
// Writes the current company's records as CSV files into a chosen folder and shows it.
void exportCSV(QWidget *parent, DB &db);
// Lets the user choose the company logo for printouts; says so when the file cannot be read.
void chooseLogo(QWidget *parent, DB &db);
// Loads a file of unsaved changes saved at an earlier close and says what it did.
void loadUnsaved(QWidget *parent, DB &db);
// Asks for one file to open: parent, message, name filter; the path, or empty when cancelled.
using OpenFile = std::function<QString(QWidget *, const QString &, const QString &)>;
// The file chooser of chooseLogo() and loadUnsaved(); empty means the native dialog. Tests put their own
// here.
OpenFile &openFileHook();
// The chooser of backupAll()'s zip: parent, caption, proposed path; empty means the native dialog.
using SaveFile = std::function<QString(QWidget *, const QString &, const QString &)>;
SaveFile &saveFileHook();
// Shows `path` in the file manager, or opens its folder when no file manager answers.
void reveal(const QString &path);
// What reveal() does instead, when set: tests watch it here and no window opens.
std::function<void(const QString &)> &revealHook();
} // namespace FileActions
