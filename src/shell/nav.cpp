#include "nav.h"

#include "store/db.h"
#include "store/settings.h"

#include <QtCore/QCoreApplication>

using namespace Qt::StringLiterals;

Nav::Nav(QObject *parent)
    : QObject(parent)
    , m_module(u"hub"_s)
    , m_projectID(Settings::text(u"tl.project"_s))
{}

Nav &Nav::shared()
{
    static Nav *nav = new Nav(QCoreApplication::instance());
    return *nav;
}

void Nav::setModule(const QString &module)
{
    if (module == m_module)
        return;
    m_module = module;
    Q_EMIT changed();
}

void Nav::setProjectID(const QString &id)
{
    Settings::setText(u"tl.project"_s, id);
    if (id == m_projectID)
        return;
    m_projectID = id;
    Q_EMIT changed();
}

void Nav::setSelected(const QString &module, const QString &record)
{
    if (m_selected.value(module) == record && m_selected.contains(module))
        return;
    m_selected.insert(module, record);
    Q_EMIT changed();
}

void Nav::setNewProject(bool open)
{
    if (open == m_newProject)
        return;
    m_newProject = open;
    Q_EMIT changed();
}

void Nav::setNewCompany(bool open)
{
    if (open == m_newCompany)
        return;
    m_newCompany = open;
    Q_EMIT changed();
}

void Nav::setSearch(const QString &text)
{
    if (text == m_search)
        return;
    m_search = text;
    Q_EMIT changed();
}

std::optional<Rec> Nav::project(const DB &db) const
{
    std::optional<Rec> p = db.get(m_projectID);
    if (!p || p->kind != u"project" || p->company != db.companyID())
        return std::nullopt;
    return p;
}

void Nav::open(const QString &module, const std::optional<QString> &record,
               const std::optional<QString> &project)
{
    if (project)
        setProjectID(*project);
    if (record)
        setSelected(module, *record);
    setModule(module);
}
