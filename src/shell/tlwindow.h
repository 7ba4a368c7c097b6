#pragma once
#include <QtWidgets/QMainWindow>

class DB;
class Nav;
class TLMain;

// The one window, "Fenwright Trestle": the main view and the menu bar.
// Its size and place are remembered between runs.
class TLWindow : public QMainWindow
{
    Q_OBJECT
public:
    TLWindow(DB &db, Nav &nav, QWidget *parent = nullptr);
    TLMain *main() const { return m_main; }

protected:
    void closeEvent(QCloseEvent *e) override;

private:
    TLMain *m_main;
};
