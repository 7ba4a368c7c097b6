#include "binding.h"

#include "changeorders.h"
#include "hooks.h"

#include "store/db.h"

using namespace Qt::StringLiterals;

RecBinding::RecBinding(DB &db, QString id, QString key)
    : m_db(&db)
    , m_id(std::move(id))
    , m_key(std::move(key))
{}

QString RecBinding::get() const
{
    const Rec *r = m_db->find(m_id);
    return r ? r->f.value(m_key) : QString();
}

void RecBinding::set(const QString &value) const
{
    std::optional<Rec> rec = m_db->get(m_id);
    if (!rec || rec->f.value(m_key) == value)
        return;
    const bool isCO = rec->kind == u"co";
    // A change order's status has consequences of its own.
    if (isCO && m_key == u"status") {
        setCOStatus(*m_db, *rec, value);
        return;
    }
    rec->f.insert(m_key, value);
    Hooks::didChange(*m_db, *rec, m_key);
    m_db->save(*rec);
    // The schedule-of-values line of an approved order follows its edited figures.
    if (isCO && rec->f.value(u"status") == u"approved")
        if (std::optional<Rec> saved = m_db->get(m_id))
            setCOStatus(*m_db, *saved, u"approved"_s);
}

RecBinding recBinding(DB &db, const QString &id, const QString &key)
{
    return RecBinding(db, id, key);
}
