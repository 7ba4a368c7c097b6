#pragma once
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QScrollArea>

class DB;
class Nav;
struct ModuleDef;
class QVBoxLayout;

// One entry of the rail: the module's symbol and title, lit when on screen.
class RailButton : public QAbstractButton
{
    Q_OBJECT
public:
    RailButton(const ModuleDef &m, QWidget *parent = nullptr);
    const ModuleDef &module() const { return m_module; }
    bool isOn() const { return m_on; }
    void setOn(bool on);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;
    void enterEvent(QEnterEvent *) override;
    void leaveEvent(QEvent *) override;

private:
    const ModuleDef &m_module;
    bool m_on = false;
    bool m_hover = false;
};

// The scrolling list of modules by group that the current role may open.
// Groups left with no module are not shown.
class ModuleRail : public QScrollArea
{
    Q_OBJECT
public:
    ModuleRail(DB &db, Nav &nav, QWidget *parent = nullptr);
    // Rebuilds when the role changed, otherwise only relights the entries.
    void refresh();
    // The ids of the modules listed, in order.
    QStringList moduleIds() const;
    // The group captions shown, in order.
    QStringList groups() const;
    QSize sizeHint() const override;

private:
    void rebuild();
    DB &m_db;
    Nav &m_nav;
    QWidget *m_list;
    QString m_role;
    QList<RailButton *> m_buttons;
    QStringList m_groups;
};
