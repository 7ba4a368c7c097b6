#pragma once
#include <QtWidgets/QDialog>

class DB;
class Nav;
class QComboBox;
class QLabel;
class QLineEdit;

// The sheet that creates a project. An empty name becomes "New Project"; a
// contract that is not an amount is refused with a message in the sheet.
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
    QLabel *m_problem;
};

// The sheet that creates a company with its owner and makes it current.
class NewCompanySheet : public QDialog
{
    Q_OBJECT
public:
    NewCompanySheet(DB &db, Nav &nav, QWidget *parent = nullptr);
    // Creates the company from the inputs, goes to the hub and closes; a
    // missing name or owner, or a state that is not one, is said in the sheet.
    void create();

private:
    DB &m_db;
    Nav &m_nav;
    QLineEdit *m_name;
    QLineEdit *m_owner;
    QLineEdit *m_state;
    QLabel *m_problem;
};
