#pragma once
#include "rec.h"

#include <QtCore/QByteArray>

#include <optional>

class StringPool;

// The stored JSON form of a record: one compact object with the members id,
// kind, company, project, parent, created, updated (seconds since 1970) and f
// (an object of strings). Reading is strict: all eight members are required,
// with their exact types; unknown members are ignored.
namespace RecJSON {
QByteArray encode(const Rec &rec);
// Nothing when the text is not valid JSON or not a record of the exact shape.
// With a pool, repeated texts (kinds, ids, keys, dates) share one copy.
std::optional<Rec> decode(QByteArrayView json, StringPool *pool = nullptr);
} // namespace RecJSON

// Shares equal short texts between records so that years of records with the
// same company, kind, keys and common values hold each text once. Keyed by the
// UTF-8 bytes, so the loader can look a text up before converting it.
class StringPool
{
public:
    QString intern(QByteArrayView utf8);
    QString intern(const QString &text);
    void reserve(qsizetype n) { m_pool.reserve(n); }
    qsizetype size() const { return m_pool.size(); }

private:
    // Longer texts (notes, descriptions) are rarely repeated and are not pooled.
    static constexpr qsizetype kMaxShared = 48;
    QHash<QByteArray, QString> m_pool;
};
