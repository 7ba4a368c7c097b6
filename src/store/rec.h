#pragma once
#include "fields.h"

#include <QtCore/QString>

// The one generic record: what it means is decided by `kind` and the keys of `f`.
// Invariants: `id` is an upper-case UUID text and never reused; a company
// record holds its own id in `company`; `created`/`updated` are seconds since
// 1970 (UTC) with a fraction.
struct Rec
{
    QString id;
    QString kind;
    QString company;
    QString project;
    QString parent;
    double created = 0;
    double updated = 0;
    Fields f;

    // Whole number of field `key`: a plain integer text, else the truncated
    // double; 0 when unreadable. A value beyond 64 bits stops the program.
    qint64 i(QStringView key) const;
    // Double of field `key` in the C locale; 0 when unreadable.
    double d(QStringView key) const;

    bool operator==(const Rec &) const = default;
};

size_t qHash(const Rec &rec, size_t seed = 0) noexcept;

namespace RecText {
// Reads a whole text as a decimal integer (optional sign, digits only, fits 64 bits).
std::optional<qint64> parseInt(QStringView text);
// Reads a whole text as a C-locale double (strtod rules, no leading blanks).
std::optional<double> parseDouble(QStringView text);
} // namespace RecText

// A new upper-case UUID text.
QString newID();
// Seconds since 1970 with a fraction; strictly increasing within the process so
// records made one after another keep their order.
double nowSeconds();
