#pragma once
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QScrollArea>

class QKeyEvent;

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

Q_SIGNALS:
    // A key that moves within the rail, for the rail to act on.
    void navigationKey(QKeyEvent *e);

protected:
    void paintEvent(QPaintEvent *) override;
    void keyPressEvent(QKeyEvent *e) override;
    void focusInEvent(QFocusEvent *e) override;
    void enterEvent(QEnterEvent *) override;
    void leaveEvent(QEvent *) override;

private:
    const ModuleDef &m_module;
    bool m_on = false;
    bool m_hover = false;
};

// The scrolling list of modules by group that the current role may open.
// Groups left with no module are not shown. For the keyboard the rail is one Tab stop
// (the entry last focused, else the one on screen); arrows, Home/End, Page Up/Down and
// typing a title's first letters move within it, Enter or Space opens.
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
    // Puts the keyboard on the rail: the entry on screen, or the first.
    void focusRail();
    // The entry of the module `id`, or null.
    RailButton *button(const QString &id) const;

private:
    void rebuild();
    void onKey(RailButton *from, QKeyEvent *e);
    void moveTo(RailButton *b);
    void makeTabStop(RailButton *b);
    DB &m_db;
    Nav &m_nav;
    QWidget *m_list;
    QString m_role;
    QList<RailButton *> m_buttons;
    QStringList m_groups;
    QString m_shown;      // the module last scrolled into view
    QString m_typed;      // the letters typed so far
    qint64 m_typedAt = 0; // when the last letter came
};
