// Random typed amounts against an independent reader: the grammar as one
// regular expression, the rounding by comparing digit strings.
#include "testmain.h"

#include "calc/money.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

MoneyParse reference(const QString &text)
{
    // Parenthesised: optional dollar inside. Otherwise: minus, dollar, minus, at most one minus.
    static const QRegularExpression re(
        uR"(^[\t\p{Zs}]*(?:\([\t\p{Zs}]*(\$?)([0-9]*)(\.([0-9]*))?[\t\p{Zs}]*\))"
        uR"(|(-?)\$?(-?)([0-9]*)(\.([0-9]*))?)[\t\p{Zs}]*\z)"_s);
    static const QRegularExpression blank(uR"(^[\t\p{Zs}]*\z)"_s);
    if (blank.match(text).hasMatch())
        return {};
    const auto m = re.match(text);
    if (!m.hasMatch())
        return {0, ParseError::invalid};
    const bool parens = m.capturedStart(1) >= 0;
    const bool minus1 = !m.captured(5).isEmpty(), minus2 = !m.captured(6).isEmpty();
    if (minus1 && minus2)
        return {0, ParseError::invalid};
    const bool negative = parens || minus1 || minus2;
    QString whole = m.captured(parens ? 2 : 7);
    const QString fraction = m.captured(parens ? 4 : 9);
    if (whole.isEmpty() && fraction.isEmpty())
        return {0, ParseError::invalid};
    while (whole.startsWith(u'0'))
        whole.remove(0, 1);
    if (whole.size() > 9)
        return {0, ParseError::tooLarge};
    // Cents are the whole digits and two fraction digits; the rest rounds up at one half.
    const QString rest = fraction.mid(2);
    const bool up = !rest.isEmpty() && rest >= u"5"_s + QString(rest.size() - 1, u'0');
    const QString whole2 = whole + QString(fraction + u"00"_s).left(2);
    const qint64 cents = whole2.toLongLong() + (up ? 1 : 0);
    if (cents > 99999999999)
        return {0, ParseError::tooLarge};
    return {negative ? -cents : cents, std::nullopt};
}

QString digits(QRandomGenerator &rng, int n)
{
    QString s;
    for (int k = 0; k < n; ++k)
        s.append(QChar(u'0' + rng.bounded(10)));
    return s;
}

QString pick(QRandomGenerator &rng, const QStringList &from)
{
    return from.at(rng.bounded(int(from.size())));
}

// Mostly well-formed amounts, often near a rule's edge, sometimes damaged.
QString shaped(QRandomGenerator &rng)
{
    QString whole = rng.bounded(8) == 0 ? u"999999999"_s : digits(rng, rng.bounded(12));
    if (rng.bounded(6) == 0)
        whole.prepend(QString(rng.bounded(1, 5), u'0'));
    if (rng.bounded(3) == 0) { // grouping: mostly right, sometimes a comma anywhere
        if (rng.bounded(3) > 0)
            for (qsizetype k = whole.size() - 3; k > 0; k -= 3)
                whole.insert(k, u',');
        else
            whole.insert(rng.bounded(int(whole.size()) + 1), u',');
    }
    QString number = whole;
    if (rng.bounded(2) == 0)
        number += u'.' + (rng.bounded(10) == 0 ? digits(rng, rng.bounded(30)) : digits(rng, rng.bounded(5)));
    const QString sign = pick(rng, {u""_s, u""_s, u"-"_s, u"$"_s, u"-$"_s, u"$-"_s, u"--"_s, u"$$"_s});
    const QString blank = pick(rng, {u""_s, u""_s, u" "_s, u"\t"_s, u" \t "_s, u"\u00A0"_s, u"\u2009 "_s});
    QString text = sign + number;
    if (rng.bounded(5) == 0)
        text = u"("_s + blank + text + blank + u")"_s;
    text = blank + text + pick(rng, {u""_s, u" "_s, u"\t"_s, u"\u202F"_s});
    if (rng.bounded(10) == 0 && !text.isEmpty())
        text[rng.bounded(int(text.size()))] = pick(rng, {u"x"_s, u"."_s, u","_s, u"-"_s, u"("_s}).at(0);
    return text;
}

QString noise(QRandomGenerator &rng)
{
    static const QString alphabet = u"0123456789.,$-() \t0123456789.e+\n\u00A0\uFF15"_s;
    QString s;
    for (int n = rng.bounded(12); n > 0; --n)
        s.append(alphabet.at(rng.bounded(int(alphabet.size()))));
    return s;
}

} // namespace

class MoneyFuzz : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void randomTexts()
    {
        QRandomGenerator rng(20260315);
        int accepted = 0, compared = 0;
        for (int n = 0; n < 200000; ++n) {
            const QString text = n % 2 ? noise(rng) : shaped(rng);
            const MoneyParse r = Money::parseChecked(text);
            if (r.ok()) {
                ++accepted;
                QVERIFY2(r.cents >= -Money::kMaxTyped && r.cents <= Money::kMaxTyped, qPrintable(text));
                for (bool symbol : {true, false}) {
                    const MoneyParse back = Money::parseChecked(Money::fmt(r.cents, symbol));
                    QVERIFY2(back.ok() && back.cents == r.cents, qPrintable(text));
                }
            }
            if (!text.contains(u',')) {
                ++compared;
                const MoneyParse ref = reference(text);
                QVERIFY2(ref.error == r.error, qPrintable(u"«"_s + text + u"»"_s));
                QVERIFY2(!ref.ok() || ref.cents == r.cents, qPrintable(u"«"_s + text + u"»"_s));
            }
        }
        // The generator must keep reaching the accepting paths, or the checks above prove little.
        QVERIFY2(accepted > 40000, qPrintable(QString::number(accepted)));
        QVERIFY(compared > 100000);
    }
};

TRESTLE_TEST(MoneyFuzz);
#include "moneyfuzz.moc"
