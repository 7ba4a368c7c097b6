#pragma once
#include <QtWidgets/QDialog>

class DB;
class Nav;

// The first window on an empty store asks how to begin: one's own company
// (the New Company sheet: name, owner, state), the sample company to look
// around in, or a company server the office already runs.
class FirstRunSheet : public QDialog
{
    Q_OBJECT
public:
    FirstRunSheet(DB &db, Nav &nav, QWidget *parent = nullptr);
    // The choices, as the buttons make them.
    void startOwn();
    void openSample();

    // Whether a window opening on `db` should ask: a store that takes records
    // and holds no company, and no company server to fill it.
    static bool wanted(const DB &db);

private:
    DB &m_db;
    Nav &m_nav;
};
