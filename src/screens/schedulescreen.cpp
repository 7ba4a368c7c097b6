#include "schedulescreen.h"

#include "ganttview.h"

#include "look/fwui.h"
#include "shell/nav.h"
#include "shell/pickproject.h"
#include "store/db.h"

#include <QtWidgets/QBoxLayout>

using namespace Qt::StringLiterals;

ScheduleScreen::ScheduleScreen(const ScreenContext &ctx, QWidget *parent)
    : ShellScreen(parent)
    , m_db(ctx.db)
    , m_nav(ctx.nav)
    , m_m(ctx.module)
    , m_box(new QVBoxLayout(this))
{
    // Sizes are fixed when the rows are made, so a new zoom makes them again.
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        m_key.clear();
        rebuild();
    });
    rebuild();
}

void ScheduleScreen::refresh()
{
    rebuild();
}

void ScheduleScreen::rebuild()
{
    const FWUI &ui = FWUI::shared();
    m_box->setContentsMargins(ui.px(24), ui.px(18), ui.px(24), ui.px(18));
    const std::optional<Rec> project = m_nav.project(m_db);
    const QString key = project ? project->id : u"pick|"_s + QString::number(m_db.count(u"project"_s));
    if (key == m_key) {
        if (m_view)
            m_view->refresh();
        return;
    }
    m_key = key;
    delete m_body;
    m_view = nullptr;
    if (project) {
        m_view = new GanttView(m_db, *project, m_m, this);
        m_body = m_view;
    } else {
        m_body = new PickProject(m_db, m_nav, m_m, this);
    }
    m_box->addWidget(m_body, 1);
}

void ScheduleScreen::registerScreen()
{
    ModuleArea::registerScreen(u"schedule"_s,
                               [](const ScreenContext &ctx) { return new ScheduleScreen(ctx); });
}
