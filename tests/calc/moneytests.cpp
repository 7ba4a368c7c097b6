// Reading, printing and checked arithmetic of amounts in cents.
#include "testmain.h"

#include "calc/money.h"

#include <bit>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {
constexpr qint64 kMin = std::numeric_limits<qint64>::min();
constexpr qint64 kMax = std::numeric_limits<qint64>::max();

// Child processes: each runs one checked operation and prints its result.
const TestMain::RegisterChild addChild(u"money-add"_s, [](const QStringList &a) {
    std::printf("%lld\n", (long long)Money::add(a[0].toLongLong(), a[1].toLongLong()));
    return 0;
});
const TestMain::RegisterChild subChild(u"money-sub"_s, [](const QStringList &a) {
    std::printf("%lld\n", (long long)Money::sub(a[0].toLongLong(), a[1].toLongLong()));
    return 0;
});
const TestMain::RegisterChild doubleChild(u"money-fromDouble"_s, [](const QStringList &a) {
    // The double travels as its bit pattern, so no text conversion can change it.
    std::printf("%lld\n", (long long)Money::fromDouble(std::bit_cast<double>(a[0].toULongLong())));
    return 0;
});
} // namespace

class MoneyTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void parse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("cents"); // meaningful when accepted
        QTest::addColumn<int>("error");    // -1 accepted, else a ParseError
        const int ok = -1, bad = int(ParseError::invalid), big = int(ParseError::tooLarge);
        const struct
        {
            const char16_t *text;
            qint64 cents;
            int error;
        } rows[] = {
            // clang-format off
            // Blanks and parentheses.
            {u"", 0, ok}, {u" \t  ", 0, ok}, {u"()", 0, bad}, {u"(  )", 0, bad}, {u"( 5.00 )", -500, ok},
            {u"\t($1,000.5)\t", -100050, ok}, {u"(-5)", 0, bad}, {u"($-5)", 0, bad}, {u"-(5)", 0, bad},
            {u"(5", 0, bad}, {u"5)", 0, bad}, {u"((5))", 0, bad}, {u"5\n", 0, bad},
            // Every Unicode space at the ends is trimmed (a pasted no-break space); line ends are not.
            {u"\u00A05.00", 500, ok}, {u"$5.00\u00A0", 500, ok}, {u"\u2009($1.50)\u202F", -150, ok},
            {u"\u3000\u2007 7 \t", 700, ok}, {u"( \u00A05)", -500, ok}, {u"\u00A0", 0, ok},
            {u"\r5", 0, bad}, {u"5\u2028", 0, bad}, {u"5\u00A0000", 0, bad},
            // Signs and the dollar.
            {u"1,234.56", 123456, ok}, {u"$1,234.56", 123456, ok}, {u"-$1,234.56", -123456, ok},
            {u"$-1,234.56", -123456, ok}, {u"($1,234.56)", -123456, ok}, {u"  $5  ", 500, ok},
            {u"--5", 0, bad}, {u"-$-5", 0, bad}, {u"$$5", 0, bad}, {u"5$", 0, bad}, {u"+5", 0, bad},
            {u"5-", 0, bad}, {u"$ 5", 0, bad}, {u"- 5", 0, bad}, {u"-", 0, bad}, {u"$", 0, bad},
            {u"-$", 0, bad}, {u"-0.00", 0, ok},
            // Decimal point and foreign characters.
            {u"5.", 500, ok}, {u".5", 50, ok}, {u"$.5", 50, ok}, {u"-.5", -50, ok}, {u".", 0, bad},
            {u"$.", 0, bad}, {u"1.2.3", 0, bad}, {u"1e5", 0, bad}, {u"1.234,5", 0, bad}, {u"\uFF15", 0, bad},
            {u"\u0665", 0, bad}, {u"1 234", 0, bad},
            // Grouping.
            {u"12,345,678.9", 1234567890, ok}, {u"1,234.", 123400, ok}, {u"12,34", 0, bad},
            {u"1234,567", 0, bad}, {u",123", 0, bad}, {u"1,234,", 0, bad}, {u"1,,234", 0, bad},
            {u",", 0, bad},
            // Rounding in exact decimal, halves away from zero; 2.675 as a double is below the half.
            {u"1.005", 101, ok}, {u"0.004", 0, ok}, {u"0.005", 1, ok}, {u"-0.005", -1, ok},
            {u"(0.005)", -1, ok}, {u"2.675", 268, ok}, {u"1.00499999999999999999999999", 100, ok},
            {u"0.005000000000000000000000000000000000000000000000", 1, ok}, {u"9.999", 1000, ok},
            // Limits: nine whole digits once leading zeros are gone.
            {u"0000000001234", 123400, ok}, {u"000000000999999999.99", 99999999999, ok},
            {u"999,999,999.99", 99999999999, ok}, {u"-999,999,999.99", -99999999999, ok},
            {u"1000000000", 0, big}, {u"(1,000,000,000)", 0, big}, {u"999999999.995", 0, big},
            {u"999999999.994999", 99999999999, ok}, {u"1234567890.x", 0, bad}, {u"12345678901x", 0, bad},
            // clang-format on
        };
        for (const auto &r : rows) {
            const QString text = QString::fromUtf16(r.text);
            QTest::addRow("«%s»", qPrintable(text)) << text << r.cents << r.error;
        }
    }
    void parse()
    {
        QFETCH(QString, text);
        QFETCH(qint64, cents);
        QFETCH(int, error);
        const MoneyParse r = Money::parseChecked(text);
        QCOMPARE(r.error.has_value() ? int(*r.error) : -1, error);
        if (r.ok())
            QCOMPARE(r.cents, cents);
    }

    void fmt_data()
    {
        QTest::addColumn<qint64>("cents");
        QTest::addColumn<QString>("text");
        const struct
        {
            qint64 cents;
            const char *text;
        } rows[] = {
            // clang-format off
            {0, "$0.00"}, {5, "$0.05"}, {-5, "-$0.05"}, {99, "$0.99"}, {100, "$1.00"}, {123456, "$1,234.56"},
            {-123456, "-$1,234.56"}, {12345678, "$123,456.78"}, {-123456789, "-$1,234,567.89"},
            {Money::kMaxTyped, "$999,999,999.99"}, {kMax, "$92,233,720,368,547,758.07"},
            {kMin, "-$92,233,720,368,547,758.08"},
            // clang-format on
        };
        for (const auto &r : rows)
            QTest::addRow("%lld", (long long)r.cents) << r.cents << QString::fromLatin1(r.text);
    }
    void fmt()
    {
        QFETCH(qint64, cents);
        QFETCH(QString, text);
        QCOMPARE(Money::fmt(cents), text);
        QCOMPARE(Money::fmt(cents, false), QString(text).remove(u'$'));
    }

    void message()
    {
        QCOMPARE(Money::message(ParseError::invalid),
                 u"Not a valid amount. Use a form like 1,234.56 or (5.00)."_s);
        QCOMPARE(Money::message(ParseError::tooLarge),
                 u"Too large. The most a money box takes is $999,999,999.99."_s);
    }

    void fromDouble_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<qint64>("cents");
        const struct
        {
            double value;
            qint64 cents;
        } rows[] = {
            // clang-format off
            {2.5, 3}, {-2.5, -3}, {0.5, 1}, {-0.5, -1}, {1.4999, 1}, {1e15 + 0.5, 1000000000000001},
            {0.49999999999999994, 0}, // floor(x + 0.5) would give 1
            // On the double as computed: no decimal correction.
            {1.005 * 100, qint64(std::round(1.005 * 100))}, {2.675 * 100, qint64(std::round(2.675 * 100))},
            {-9223372036854775808.0, kMin}, {9223372036854774784.0, 9223372036854774784},
            // clang-format on
        };
        for (const auto &r : rows)
            QTest::addRow("%.17g", r.value) << r.value << r.cents;
    }
    void fromDouble()
    {
        QFETCH(double, value);
        QFETCH(qint64, cents);
        QCOMPARE(Money::fromDouble(value), cents);
    }

    // An overflow must stop the program with a message, never wrap silently.
    void fatalStops_data()
    {
        QTest::addColumn<QString>("child");
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("result"); // empty: must stop
        const QString max = QString::number(kMax), min = QString::number(kMin);
        QTest::newRow("add to max") << u"money-add"_s << QStringList{QString::number(kMax - 1), u"1"_s}
                                    << max;
        QTest::newRow("add min and max") << u"money-add"_s << QStringList{min, max} << u"-1"_s;
        QTest::newRow("sub to min") << u"money-sub"_s << QStringList{u"-1"_s, max} << min;
        QTest::newRow("add over") << u"money-add"_s << QStringList{max, u"1"_s} << QString();
        QTest::newRow("add under") << u"money-add"_s << QStringList{min, u"-1"_s} << QString();
        QTest::newRow("sub over") << u"money-sub"_s << QStringList{max, u"-1"_s} << QString();
        QTest::newRow("sub under") << u"money-sub"_s << QStringList{min, u"1"_s} << QString();
        QTest::newRow("sub zero minus min") << u"money-sub"_s << QStringList{u"0"_s, min} << QString();
        auto bits = [](double v) { return QStringList{QString::number(std::bit_cast<quint64>(v))}; };
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("double fits") << u"money-fromDouble"_s << bits(-2.5) << u"-3"_s;
        QTest::newRow("nan") << u"money-fromDouble"_s << bits(std::nan("")) << QString();
        QTest::newRow("inf") << u"money-fromDouble"_s << bits(inf) << QString();
        QTest::newRow("-inf") << u"money-fromDouble"_s << bits(-inf) << QString();
        QTest::newRow("2^63") << u"money-fromDouble"_s << bits(9223372036854775808.0) << QString();
        QTest::newRow("1e19") << u"money-fromDouble"_s << bits(1e19) << QString();
        QTest::newRow("-1e19") << u"money-fromDouble"_s << bits(-1e19) << QString();
        QTest::newRow("rounds past -2^63")
            << u"money-fromDouble"_s << bits(-9223372036854777856.0) << QString();
    }
    void fatalStops()
    {
        QFETCH(QString, child);
        QFETCH(QStringList, args);
        QFETCH(QString, result);
        const auto p = TestMain::runChild(child, args);
        QCOMPARE(p->state(), QProcess::NotRunning);
        const QString out = QString::fromLocal8Bit(p->readAllStandardOutput()).trimmed();
        const QString err = QString::fromLocal8Bit(p->readAllStandardError());
        if (!result.isEmpty()) {
            QCOMPARE(p->exitStatus(), QProcess::NormalExit);
            QCOMPARE(p->exitCode(), 0);
            QCOMPARE(out, result);
            return;
        }
        QVERIFY2(p->exitStatus() == QProcess::CrashExit || p->exitCode() != 0, qPrintable(out));
        QVERIFY(out.isEmpty());
        QVERIFY2(err.contains(u"Trestle stopped") && err.contains(u"64-bit range"), qPrintable(err));
    }
};

TRESTLE_TEST(MoneyTests);
#include "moneytests.moc"
