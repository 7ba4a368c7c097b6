#include "fields.h"

#include <QtCore/QHashFunctions>

Fields::Fields(std::initializer_list<std::pair<QString, QString>> pairs)
{
    for (const auto &[k, v] : pairs)
        insert(k, v);
}

qsizetype Fields::find(QStringView key, bool *found) const
{
    auto it = std::lower_bound(m_entries.cbegin(), m_entries.cend(), key,
                               [](const Entry &e, QStringView k) { return keyLess(e.key, k); });
    *found = it != m_entries.cend() && !keyLess(key, it->key);
    return it - m_entries.cbegin();
}

QString Fields::value(QStringView key) const
{
    bool found = false;
    const qsizetype at = find(key, &found);
    return found ? m_entries.at(at).value : QString();
}

bool Fields::contains(QStringView key) const
{
    bool found = false;
    find(key, &found);
    return found;
}

void Fields::insert(const QString &key, const QString &value)
{
    bool found = false;
    const qsizetype at = find(key, &found);
    if (found)
        m_entries[at].value = value;
    else
        m_entries.insert(at, Entry{key, value});
}

void Fields::remove(QStringView key)
{
    bool found = false;
    const qsizetype at = find(key, &found);
    if (found)
        m_entries.remove(at);
}

QStringList Fields::keys() const
{
    QStringList out;
    out.reserve(m_entries.size());
    for (const Entry &e : m_entries)
        out.append(e.key);
    return out;
}

Fields Fields::fromSorted(QList<Entry> entries)
{
    Fields f;
    f.m_entries = std::move(entries);
    return f;
}

size_t qHash(const Fields &fields, size_t seed) noexcept
{
    QtPrivate::QHashCombine combine;
    for (const Fields::Entry &e : fields) {
        seed = combine(seed, e.key);
        seed = combine(seed, e.value);
    }
    return seed;
}
