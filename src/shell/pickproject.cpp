#include "pickproject.h"

#include "nav.h"

#include "catalog/moduledef.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

PickProject::PickProject(DB &db, Nav &nav, const ModuleDef &m, QWidget *parent)
    : EmptyState(m.symbol, u"Choose a project"_s, m.title + u" works on one project at a time."_s, parent)
{
    const QList<Rec> projects = db.list(u"project"_s);
    for (const Rec &p : projects) {
        const QString id = p.id;
        addAction(
            p.f[u"number"] + u' ' + p.f[u"name"], [&nav, id] { nav.setProjectID(id); }, false);
    }
    if (projects.isEmpty())
        addAction(u"New Project…"_s, [&nav] { nav.setNewProject(true); });
}
