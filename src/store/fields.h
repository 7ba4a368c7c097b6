#pragma once
#include <QtCore/QList>
#include <QtCore/QString>

#include <string>

// The text fields of a record: a small map of key to text.
// Invariant: entries are sorted by keyLess and keys are unique, so two maps with
// the same pairs compare equal whatever order they were filled in. Kept as one
// flat list because a record has a handful of fields and there are hundreds of
// thousands of records in memory.
class Fields
{
public:
    struct Entry
    {
        QString key;
        QString value;
        bool operator==(const Entry &) const = default;
    };

    Fields() = default;
    Fields(std::initializer_list<std::pair<QString, QString>> pairs);

    // The text of `key`, or the empty text when absent.
    QString value(QStringView key) const;
    // A const result, so that `f[key] = value` (which would change a copy) does not compile.
    const QString operator[](QStringView key) const { return value(key); }
    bool contains(QStringView key) const;
    // Sets `key` to `value` (an empty value is stored, not removed).
    void insert(const QString &key, const QString &value);
    void remove(QStringView key);

    qsizetype size() const { return m_entries.size(); }
    bool isEmpty() const { return m_entries.isEmpty(); }
    QStringList keys() const;
    QList<Entry>::const_iterator begin() const { return m_entries.cbegin(); }
    QList<Entry>::const_iterator end() const { return m_entries.cend(); }

    bool operator==(const Fields &) const = default;

    // Builds from pairs that are already sorted by keyLess and unique (the
    // JSON reader sorts before calling this).
    static Fields fromSorted(QList<Entry> entries);
    // The order of entries: shorter keys first, then by code units. Any total
    // order would do; this one compares without a call into the library.
    static bool keyLess(QStringView a, QStringView b)
    {
        if (a.size() != b.size())
            return a.size() < b.size();
        return std::char_traits<char16_t>::compare(a.utf16(), b.utf16(), size_t(a.size())) < 0;
    }

private:
    qsizetype find(QStringView key, bool *found) const;
    QList<Entry> m_entries;
};

size_t qHash(const Fields &fields, size_t seed = 0) noexcept;
