#pragma once
#include <QtWidgets/QMainWindow>

#include <functional>

class DB;
class Nav;
class TLMain;

// The one window, "Fenwright Trestle": the main view and the menu bar.
// Its size and place are remembered between runs. It never closes over
// changes that could not be written without asking what to do with them.
class TLWindow : public QMainWindow
{
    Q_OBJECT
public:
    TLWindow(DB &db, Nav &nav, QWidget *parent = nullptr);
    TLMain *main() const { return m_main; }
    // Brings the window to the front, out of the dock if it was minimised.
    void bringToFront();

    // What the user chose when closing over unsaved changes.
    struct UnsavedAnswer
    {
        enum Choice { TryAgain, SaveToFile, KeepOpen } choice = KeepOpen;
        QString file; // for SaveToFile: where the recovery file goes
    };
    // Asks about unsaved changes at close; empty means the real dialogs. Tests put their own here.
    using AskUnsaved = std::function<UnsavedAnswer(QWidget *parent, qsizetype count, const QString &cause)>;
    static AskUnsaved &askUnsavedHook();

protected:
    void closeEvent(QCloseEvent *e) override;
    // A list file or folder dropped on the window opens the import preview.
    void dragEnterEvent(QDragEnterEvent *e) override;
    void dropEvent(QDropEvent *e) override;

private:
    // True when nothing waits any more, or the waiting changes went to a file the user chose.
    bool settleUnsaved();
    DB &m_db;
    TLMain *m_main;
};
