#include "rec.h"

#include <QtCore/QHashFunctions>
#include <QtCore/QUuid>

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>

namespace RecText {

std::optional<qint64> parseInt(QStringView text)
{
    if (text.isEmpty() || text.size() > 40)
        return std::nullopt;
    char buf[41] = {};
    qsizetype n = 0;
    for (QChar c : text) {
        if (c.unicode() > 127)
            return std::nullopt;
        buf[n++] = char(c.unicode());
    }
    const char *first = buf;
    const char *last = buf + n;
    if (*first == '+')
        ++first; // from_chars takes '-' but not '+'
    if (first == last || *first == '+' || (*first == '-' && buf[0] == '+'))
        return std::nullopt;
    qint64 value = 0;
    auto [ptr, ec] = std::from_chars(first, last, value);
    if (ec != std::errc() || ptr != last)
        return std::nullopt;
    return value;
}

std::optional<double> parseDouble(QStringView text)
{
    if (text.isEmpty())
        return std::nullopt;
    const QByteArray bytes = text.toUtf8();
    const char *start = bytes.constData();
    // strtod would skip leading blanks; a stored number never has them.
    if (std::isspace(static_cast<unsigned char>(*start)))
        return std::nullopt;
    char *end = nullptr;
    // glibc's strtod_l with the C locale: the program never changes LC_NUMERIC,
    // but a user's locale must not turn "12.5" into 12.
    static locale_t cLocale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
    const double v = strtod_l(start, &end, cLocale);
    if (end == start || end != start + bytes.size())
        return std::nullopt;
    return v;
}

} // namespace RecText

qint64 Rec::i(QStringView key) const
{
    const QString text = f.value(key);
    if (text.isEmpty())
        return 0;
    if (auto v = RecText::parseInt(text))
        return *v;
    const double d = RecText::parseDouble(text).value_or(0.0);
    // 2^63 is exactly representable; anything at or beyond it does not fit.
    if (!std::isfinite(d) || d >= 9223372036854775808.0 || d < -9223372036854775808.0)
        qFatal("Trestle stopped: the field \"%s\" of record %s holds \"%s\", which is not a whole "
               "number within the 64-bit range.",
               qPrintable(key.toString()), qPrintable(id), qPrintable(text));
    return static_cast<qint64>(d); // truncation toward zero, on purpose
}

double Rec::d(QStringView key) const
{
    return RecText::parseDouble(f.value(key)).value_or(0.0);
}

size_t qHash(const Rec &r, size_t seed) noexcept
{
    QtPrivate::QHashCombine combine;
    seed = combine(seed, r.id);
    seed = combine(seed, r.kind);
    seed = combine(seed, r.company);
    seed = combine(seed, r.project);
    seed = combine(seed, r.parent);
    seed = combine(seed, r.created);
    seed = combine(seed, r.updated);
    return combine(seed, r.f);
}

QString newID()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

double nowSeconds()
{
    using namespace std::chrono;
    static double last = 0;
    const double now = duration<double>(system_clock::now().time_since_epoch()).count();
    // A microsecond step keeps readings distinct even when the clock has not moved.
    last = now > last ? now : last + 1e-6;
    return last;
}
