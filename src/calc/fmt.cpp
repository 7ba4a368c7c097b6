#include "fmt.h"

#include "catalog/modules.h"
#include "datefmt.h"
#include "money.h"
#include "store/db.h"

#include <charconv>
#include <cmath>

using namespace Qt::StringLiterals;

namespace Fmt {

namespace {
QString group(const QString &digits)
{
    QString out;
    for (qsizetype k = 0; k < digits.size(); ++k) {
        if (k > 0 && (digits.size() - k) % 3 == 0)
            out.append(u',');
        out.append(digits.at(k));
    }
    return out;
}

// printf's "%.Nf" in the C locale: the exact binary value rounded half to even.
// Not printf itself, whose decimal point follows the process locale, and not
// QString::asprintf, which rounds halves away from zero.
QString fixed(double value, int decimals)
{
    char buf[400];
    auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, decimals);
    return QString::fromLatin1(buf, ec == std::errc() ? ptr - buf : 0);
}
} // namespace

QString value(const DB &db, const Rec &rec, const FD &fd)
{
    const QString text = rec.f.value(fd.key);
    switch (fd.type.kind) {
    case FT::choice:
        if (fd.key == u"kind")
            for (const auto &[key, label] : Modules::waiverKinds())
                if (key == text)
                    return label;
        return capitalizedIfLower(text);
    case FT::ref:
    case FT::refIn: return db.label(text);
    case FT::money: return text.isEmpty() ? QString() : Money::fmt(rec.i(fd.key), true);
    case FT::number: return text.isEmpty() ? QString() : qty(rec.d(fd.key));
    case FT::percent: return text.isEmpty() ? QString() : text + u'%';
    case FT::date: return DateFmt::show(text);
    case FT::boolean: return text == u"1" ? u"Yes"_s : u"No"_s;
    case FT::text:
    case FT::longText:
    case FT::time: return text;
    }
    return text;
}

QString qty(double value)
{
    if (!std::isfinite(value))
        return num(value);
    // Rounds the exact binary value, ties to even, as a decimal formatter does.
    QString s = fixed(value, 2);
    if (s.contains(u'.')) {
        while (s.endsWith(u'0'))
            s.chop(1);
        if (s.endsWith(u'.'))
            s.chop(1);
    }
    const bool negative = s.startsWith(u'-');
    if (negative)
        s.remove(0, 1);
    const qsizetype dot = s.indexOf(u'.');
    QString out = group(dot < 0 ? s : s.left(dot)) + (dot < 0 ? QString() : s.mid(dot));
    // A value that rounds to nothing is shown as 0, never as -0.
    if (negative && out != u"0")
        out.prepend(u'-');
    return out;
}

QString num(double value)
{
    if (std::isfinite(value) && value == std::trunc(value) && std::fabs(value) < 1e15)
        return QString::number(static_cast<qint64>(value));
    char buf[64];
    auto [ptr, ec] = std::to_chars(buf, buf + sizeof buf, value);
    return QString::fromLatin1(buf, ec == std::errc() ? ptr - buf : 0);
}

QString shortMoney(double dollars)
{
    const double mag = std::fabs(dollars);
    if (mag >= 1e6)
        return u'$' + fixed(dollars / 1e6, 1) + u'M';
    if (mag >= 1000)
        return u'$' + fixed(dollars / 1000, 0) + u'K';
    return u'$' + fixed(dollars, 0);
}

} // namespace Fmt
