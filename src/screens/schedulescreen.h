#pragma once
#include "shell/modulearea.h"

class GanttView;
class QVBoxLayout;

// The module "schedule": the chosen project's tasks beside their bar chart,
// or the request to choose a project.
class ScheduleScreen : public ShellScreen
{
    Q_OBJECT
public:
    explicit ScheduleScreen(const ScreenContext &ctx, QWidget *parent = nullptr);
    void refresh() override;
    // The schedule shown, or null while no project is chosen.
    GanttView *view() const { return m_view; }

    // Registers the screen with the module area.
    static void registerScreen();

private:
    void rebuild();
    DB &m_db;
    Nav &m_nav;
    const ModuleDef &m_m;
    QVBoxLayout *m_box;
    QWidget *m_body = nullptr;
    GanttView *m_view = nullptr;
    QString m_key;
};
