#include "modulearea.h"

#include "emptystate.h"
#include "fieldeditors.h"
#include "nav.h"
#include "placeholders.h"

#include "catalog/modules.h"
#include "catalog/roles.h"
#include "store/db.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QScrollArea>

using namespace Qt::StringLiterals;

ModuleArea::ModuleArea(DB &db, Nav &nav, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_nav(nav)
    , m_box(new QVBoxLayout(this))
    , m_scroll(new QScrollArea(this))
{
    m_box->setContentsMargins(0, 0, 0, 0);
    // A screen wider or taller than the window at a large zoom scrolls here instead of
    // pushing the window past the edge of the screen.
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->viewport()->setAutoFillBackground(false);
    m_box->addWidget(m_scroll);
    FieldLook::thinScrollBars(m_scroll);
    refresh();
}

QHash<QString, ScreenFactory> &ModuleArea::factories()
{
    static QHash<QString, ScreenFactory> map;
    return map;
}

void ModuleArea::registerScreen(const QString &screen, const ScreenFactory &factory)
{
    factories().insert(screen, factory);
}

const ModuleDef &ModuleArea::module() const
{
    const ModuleDef *m = Modules::get(m_nav.module());
    return m ? *m : Modules::all().first();
}

void ModuleArea::refresh()
{
    const ModuleDef &m = module();
    const QString role = m_db.role();
    const bool company = m_db.company().has_value();
    const bool allowed = Roles::mayOpen(role, m);
    // What decides the kind of view; the screen itself follows Nav in refresh().
    const QString key = !company   ? u"none"_s
                        : !allowed ? u"refused|"_s + m.id + u'|' + role
                                   : u"screen|"_s + m.id + u'|' + m_db.companyID();
    if (key == m_key && m_current) {
        if (auto *screen = qobject_cast<ShellScreen *>(m_current))
            screen->refresh();
        return;
    }
    m_key = key;
    QWidget *next = nullptr;
    if (!company) {
        auto *e =
            new EmptyState(u"building.columns"_s, u"No company yet"_s, u"Create your company to start."_s);
        e->addAction(u"New Company…"_s, [this] { m_nav.setNewCompany(true); });
        next = e;
    } else if (!allowed) {
        next = new EmptyState(u"lock.fill"_s, u"Not available for your role"_s, Roles::refusal(role, m));
    } else {
        const QString name = m.screen.value_or(QString());
        auto it = factories().constFind(name);
        const ScreenContext ctx{m_db, m_nav, m};
        ShellScreen *screen = it != factories().cend() ? (*it)(ctx) : nullptr;
        next = screen ? screen : Placeholders::make(ctx);
    }
    // Taken out, not deleted at once: the old screen may be the one whose signal led here.
    if (QWidget *old = m_scroll->takeWidget())
        old->deleteLater();
    m_current = next;
    m_scroll->setWidget(m_current);
    // The scroll area makes its widget opaque; the window's own backdrop shows through instead.
    m_current->setAutoFillBackground(false);
    m_current->show();
}
