#include "money.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace Money {

QString fmt(qint64 cents, bool symbol)
{
    // Work in unsigned so that the most negative amount has a magnitude too.
    const quint64 mag = cents < 0 ? quint64(0) - quint64(cents) : quint64(cents);
    const QString digits = QString::number(mag / 100);
    QString grouped;
    grouped.reserve(digits.size() + digits.size() / 3);
    for (qsizetype k = 0; k < digits.size(); ++k) {
        if (k > 0 && (digits.size() - k) % 3 == 0)
            grouped.append(u',');
        grouped.append(digits.at(k));
    }
    const quint64 rest = mag % 100;
    QString out;
    if (cents < 0)
        out.append(u'-');
    if (symbol)
        out.append(u'$');
    out.append(grouped)
        .append(u'.')
        .append(QChar(u'0' + int(rest / 10)))
        .append(QChar(u'0' + int(rest % 10)));
    return out;
}

namespace {

// The whitespace set without line ends: the tab and every Unicode space (the
// no-break space of a pasted amount among them).
bool isBlank(QChar c)
{
    return c == u'\t' || c.category() == QChar::Separator_Space;
}

QStringView trimmed(QStringView s)
{
    while (!s.isEmpty() && isBlank(s.front()))
        s = s.mid(1);
    while (!s.isEmpty() && isBlank(s.back()))
        s.chop(1);
    return s;
}

bool allDigits(QStringView s)
{
    for (QChar c : s)
        if (c < u'0' || c > u'9')
            return false;
    return true;
}

MoneyParse fail(ParseError e)
{
    return {0, e};
}

} // namespace

MoneyParse parseChecked(QStringView text)
{
    QStringView s = trimmed(text);
    if (s.isEmpty())
        return {};
    bool negative = false;
    if (s.size() >= 2 && s.front() == u'(' && s.back() == u')') {
        negative = true;
        s = trimmed(s.mid(1, s.size() - 2));
        if (s.startsWith(u'-'))
            return fail(ParseError::invalid);
    } else if (s.startsWith(u'-')) {
        negative = true;
        s = s.mid(1);
    }
    if (s.startsWith(u'$'))
        s = s.mid(1);
    if (s.startsWith(u'-')) {
        if (negative)
            return fail(ParseError::invalid);
        negative = true;
        s = s.mid(1);
    }
    if (s.isEmpty())
        return fail(ParseError::invalid);

    const qsizetype dot = s.indexOf(u'.');
    QStringView whole = dot < 0 ? s : s.left(dot);
    const QStringView fraction = dot < 0 ? QStringView() : s.mid(dot + 1);
    if (fraction.contains(u'.'))
        return fail(ParseError::invalid);
    if (!allDigits(fraction))
        return fail(ParseError::invalid);
    if (whole.isEmpty() && fraction.isEmpty())
        return fail(ParseError::invalid);

    QString digits;
    if (whole.contains(u',')) {
        const auto groups = whole.split(u',');
        for (qsizetype k = 0; k < groups.size(); ++k) {
            const qsizetype n = groups.at(k).size();
            if (k == 0 ? (n < 1 || n > 3) : n != 3)
                return fail(ParseError::invalid);
            digits.append(groups.at(k));
        }
    } else {
        digits = whole.toString();
    }
    if (!allDigits(digits))
        return fail(ParseError::invalid);
    qsizetype lead = 0;
    while (lead < digits.size() && digits.at(lead) == u'0')
        ++lead;
    digits = digits.mid(lead);
    if (digits.size() > 9)
        return fail(ParseError::tooLarge);

    // Exact decimal: whole dollars, two digits of cents, and the third digit
    // decides the half-up rounding of everything beyond.
    qint64 cents = digits.isEmpty() ? 0 : digits.toLongLong() * 100;
    auto digitAt = [&](qsizetype k) { return k < fraction.size() ? fraction.at(k).unicode() - u'0' : 0; };
    cents += digitAt(0) * 10 + digitAt(1);
    if (digitAt(2) >= 5)
        cents += 1;
    if (cents > kMaxTyped)
        return fail(ParseError::tooLarge);
    return {negative ? -cents : cents, std::nullopt};
}

QString message(ParseError error)
{
    switch (error) {
    case ParseError::invalid: return u"Not a valid amount. Use a form like 1,234.56 or (5.00)."_s;
    case ParseError::tooLarge: return u"Too large. The most a money box takes is $999,999,999.99."_s;
    }
    return QString();
}

qint64 add(qint64 a, qint64 b)
{
    qint64 r;
    if (__builtin_add_overflow(a, b, &r))
        qFatal("Trestle stopped: the sum of %lld and %lld cents is beyond the 64-bit range.", (long long)a,
               (long long)b);
    return r;
}

qint64 sub(qint64 a, qint64 b)
{
    qint64 r;
    if (__builtin_sub_overflow(a, b, &r))
        qFatal("Trestle stopped: %lld minus %lld cents is beyond the 64-bit range.", (long long)a,
               (long long)b);
    return r;
}

qint64 fromDouble(double cents)
{
    const double r = std::round(cents);
    if (!std::isfinite(r) || r >= 9223372036854775808.0 || r < -9223372036854775808.0)
        qFatal("Trestle stopped: the amount %g cents is not a finite number within the 64-bit range.", cents);
    return static_cast<qint64>(r);
}

} // namespace Money
