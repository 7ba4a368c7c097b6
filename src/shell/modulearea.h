#pragma once
#include <QtCore/QHash>
#include <QtWidgets/QWidget>

#include <functional>

class DB;
class Nav;
struct ModuleDef;
class QScrollArea;
class QVBoxLayout;

// A screen shown in the module area. It is built once for its module and
// updated in place by refresh(), so typing and selection survive a redraw.
class ShellScreen : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;
    // Re-reads the store and Nav; the default has nothing to update.
    virtual void refresh() {}
};

// What a screen factory is given to build a screen.
struct ScreenContext
{
    DB &db;
    Nav &nav;
    const ModuleDef &module;
};

// Builds the screen of a module.
using ScreenFactory = std::function<ShellScreen *(const ScreenContext &)>;

// The area beside the rail: shows, for Nav's module, the no-company state,
// the refusal for the role, or the module's screen, in that order of checks.
class ModuleArea : public QWidget
{
    Q_OBJECT
public:
    ModuleArea(DB &db, Nav &nav, QWidget *parent = nullptr);

    // Registers the factory of the special screen `screen` (a module's
    // `screen` value); the empty name is the generic record screen.
    // A later registration replaces an earlier one.
    static void registerScreen(const QString &screen, const ScreenFactory &factory);

    // Shows what Nav asks for: rebuilds only when the module, the company
    // state or the refusal changed, otherwise refreshes the screen in place.
    void refresh();
    // The widget now shown (an EmptyState or a ShellScreen).
    QWidget *current() const { return m_current; }
    // The module in force: Nav's module, or the first module for an unknown id.
    const ModuleDef &module() const;

private:
    static QHash<QString, ScreenFactory> &factories();
    DB &m_db;
    Nav &m_nav;
    QVBoxLayout *m_box;
    QScrollArea *m_scroll;
    QWidget *m_current = nullptr;
    QString m_key;
};
