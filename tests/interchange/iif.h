#pragma once
// Reads an IIF file back into transactions, for the tests.
#include <QtCore/QStringList>

namespace IIF {

struct Txn
{
    QList<QStringList> lines; // TRNS then SPL lines, split at tabs
    qint64 sum = 0;           // the amounts in cents
};

// Amount text "-12.34" to cents; a malformed amount fails the caller's check by returning a huge value.
inline qint64 cents(const QString &text)
{
    const bool neg = text.startsWith(u'-');
    const QStringList parts = text.mid(neg ? 1 : 0).split(u'.');
    if (parts.size() != 2 || parts.at(1).size() != 2)
        return std::numeric_limits<qint64>::max() / 4;
    const qint64 v = parts.at(0).toLongLong() * 100 + parts.at(1).toLongLong();
    return neg ? -v : v;
}

inline QList<Txn> read(const QString &text)
{
    QList<Txn> out;
    const QStringList lines = text.split(u'\n');
    for (qsizetype k = 3; k < lines.size(); ++k) {
        const QStringList cols = lines.at(k).split(u'\t');
        if (cols.first() == u"TRNS")
            out.append(Txn());
        if (cols.first() == u"TRNS" || cols.first() == u"SPL") {
            out.last().lines.append(cols);
            out.last().sum += cents(cols.value(6));
        }
    }
    return out;
}

} // namespace IIF
