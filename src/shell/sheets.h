#pragma once
#include <QtWidgets/QDialog>

class DB;
class Nav;
class QComboBox;
class QLineEdit;

// The sheet that creates a project. Nothing is refused: empty or bad input
// falls back to a default, so "Create Project" always creates one.
class NewProjectSheet : public QDialog
{
    Q_OBJECT
public:
    NewProjectSheet(DB &db, Nav &nav, QWidget *parent = nullptr);
    // Saves the project from the inputs, shows it in the projects module and closes.
    void create();

private:
    DB &m_db;
    Nav &m_nav;
    QLineEdit *m_name;
    QComboBox *m_type;
    QLineEdit *m_contract;
};

// The sheet that creates a company with its owner and makes it current.
class NewCompanySheet : public QDialog
{
    Q_OBJECT
public:
    NewCompanySheet(DB &db, Nav &nav, QWidget *parent = nullptr);
    // Creates the company from the inputs, goes to the hub and closes.
    void create();

private:
    DB &m_db;
    Nav &m_nav;
    QLineEdit *m_name;
    QLineEdit *m_owner;
};
