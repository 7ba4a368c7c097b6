#include "dbindex.h"

namespace {
const QString kCompany = QStringLiteral("company");

template<class Key> void take(QHash<Key, RecIndex::Bucket> &map, const Key &key, const StoredRec *rec)
{
    auto it = map.find(key);
    if (it == map.end())
        return;
    it->remove(rec);
    if (it->isEmpty())
        map.erase(it);
}
} // namespace

void RecIndex::add(const StoredRec *stored)
{
    const Rec *rec = &stored->rec;
    m_ck[CompanyKind(rec->company, rec->kind)].insert(stored);
    if (!rec->project.isEmpty())
        m_project[ProjectKind(rec->project, rec->kind)].insert(stored);
    if (!rec->parent.isEmpty())
        m_parent[rec->parent].insert(stored);
    if (rec->kind == kCompany)
        m_companies.insert(stored);
}

void RecIndex::remove(const StoredRec *stored)
{
    const Rec *rec = &stored->rec;
    take(m_ck, CompanyKind(rec->company, rec->kind), stored);
    if (!rec->project.isEmpty())
        take(m_project, ProjectKind(rec->project, rec->kind), stored);
    if (!rec->parent.isEmpty())
        take(m_parent, rec->parent, stored);
    if (rec->kind == kCompany)
        m_companies.remove(stored);
}

void RecIndex::clear()
{
    m_ck.clear();
    m_project.clear();
    m_parent.clear();
    m_companies.clear();
}

const RecIndex::Bucket *RecIndex::candidates(const QString &kind, const QString &company,
                                             const QString *project, const QString *parent) const
{
    static const Bucket none;
    const Bucket *best = nullptr;
    auto consider = [&](const auto &map, const auto &key) {
        auto it = map.constFind(key);
        const Bucket *b = it == map.cend() ? &none : &it.value();
        if (!best || b->size() < best->size())
            best = b;
    };
    if (kind == kCompany)
        best = &m_companies;
    else
        consider(m_ck, CompanyKind(company, kind));
    if (project && !project->isEmpty())
        consider(m_project, ProjectKind(*project, kind));
    if (parent && !parent->isEmpty())
        consider(m_parent, *parent);
    return best;
}

const RecIndex::Bucket *RecIndex::byParent(const QString &parent) const
{
    auto it = m_parent.constFind(parent);
    return it == m_parent.cend() ? nullptr : &it.value();
}

QList<const RecIndex::Bucket *> RecIndex::byProject(const QString &project) const
{
    QList<const Bucket *> out;
    for (auto it = m_project.cbegin(); it != m_project.cend(); ++it)
        if (it.key().first == project)
            out.append(&it.value());
    return out;
}

QList<const RecIndex::Bucket *> RecIndex::byCompany(const QString &company) const
{
    QList<const Bucket *> out;
    for (auto it = m_ck.cbegin(); it != m_ck.cend(); ++it)
        if (it.key().first == company)
            out.append(&it.value());
    return out;
}
