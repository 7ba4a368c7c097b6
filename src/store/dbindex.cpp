#include "dbindex.h"

namespace {
const QString kCompany = QStringLiteral("company");

void take(QHash<QString, RecIndex::Bucket> &map, const QString &key, const Rec *rec)
{
    auto it = map.find(key);
    if (it == map.end())
        return;
    it->remove(rec);
    if (it->isEmpty())
        map.erase(it);
}
} // namespace

QString RecIndex::ckKey(const QString &company, const QString &kind)
{
    // U+001F cannot occur in an id or a kind, so the pair is unambiguous.
    return company + QChar(0x1f) + kind;
}

void RecIndex::add(const Rec *rec)
{
    m_ck[ckKey(rec->company, rec->kind)].insert(rec);
    if (!rec->project.isEmpty())
        m_project[rec->project].insert(rec);
    if (!rec->parent.isEmpty())
        m_parent[rec->parent].insert(rec);
    if (rec->kind == kCompany)
        m_companies.insert(rec);
}

void RecIndex::remove(const Rec *rec)
{
    take(m_ck, ckKey(rec->company, rec->kind), rec);
    if (!rec->project.isEmpty())
        take(m_project, rec->project, rec);
    if (!rec->parent.isEmpty())
        take(m_parent, rec->parent, rec);
    if (rec->kind == kCompany)
        m_companies.remove(rec);
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
    auto consider = [&](const QHash<QString, Bucket> &map, const QString &key) {
        auto it = map.constFind(key);
        const Bucket *b = it == map.cend() ? &none : &it.value();
        if (!best || b->size() < best->size())
            best = b;
    };
    if (kind == kCompany)
        best = &m_companies;
    else
        consider(m_ck, ckKey(company, kind));
    if (project && !project->isEmpty())
        consider(m_project, *project);
    if (parent && !parent->isEmpty())
        consider(m_parent, *parent);
    return best;
}

const RecIndex::Bucket *RecIndex::byParent(const QString &parent) const
{
    auto it = m_parent.constFind(parent);
    return it == m_parent.cend() ? nullptr : &it.value();
}

const RecIndex::Bucket *RecIndex::byProject(const QString &project) const
{
    auto it = m_project.constFind(project);
    return it == m_project.cend() ? nullptr : &it.value();
}

QList<const RecIndex::Bucket *> RecIndex::byCompany(const QString &company) const
{
    QList<const Bucket *> out;
    const QString prefix = company + QChar(0x1f);
    for (auto it = m_ck.cbegin(); it != m_ck.cend(); ++it)
        if (it.key().startsWith(prefix))
            out.append(&it.value());
    return out;
}
