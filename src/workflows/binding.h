#pragma once
#include <QtCore/QString>

class DB;

// A two-way view of one field of one stored record: the one path by which an
// editor writes to the store. The store must outlive the binding.
class RecBinding
{
public:
    RecBinding(DB &db, QString id, QString key);
    // The field's text; the empty text when the record does not exist.
    QString get() const;
    // Stores `value` with the change hooks; an equal value or a missing record does nothing.
    void set(const QString &value) const;

    // The bound record and field.
    const QString &id() const { return m_id; }
    const QString &key() const { return m_key; }

private:
    DB *m_db;
    QString m_id;
    QString m_key;
};

// The binding of field `key` of the record `id`.
RecBinding recBinding(DB &db, const QString &id, const QString &key);
