// Display texts of numbers, fields and dates.
#include "testmain.h"

#include "calc/datefmt.h"
#include "calc/fmt.h"
#include "catalog/modules.h"
#include "store/db.h"

#include <clocale>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {
const TestMain::RegisterChild todayChild(u"today"_s, [](const QStringList &) {
    std::printf("%s\n", qPrintable(DateFmt::iso(DateFmt::today())));
    return 0;
});
} // namespace

class FmtTests : public QObject
{
    Q_OBJECT
    std::unique_ptr<DB> m_db;
    QHash<QString, QString> m_ids; // "@name" placeholders of records made for references

private Q_SLOTS:
    void numbers_data()
    {
        QTest::addColumn<char>("fn"); // q: Fmt::qty, n: Fmt::num, s: Fmt::shortMoney
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        const struct
        {
            char fn;
            double value;
            const char *text;
        } rows[] = {
            // clang-format off
            {'q', 3, "3"}, {'q', 0, "0"}, {'q', -0.0, "0"}, {'q', 12.5, "12.5"}, {'q', 1234.567, "1,234.57"},
            {'q', 1234567, "1,234,567"}, {'q', -1234.5, "-1,234.5"}, {'q', -0.001, "0"},
            {'q', 999.999, "1,000"},
            // Half to even on the exact binary value: 0.125 and 0.375 are exact ties, 2.675 is below one.
            {'q', 0.125, "0.12"}, {'q', 0.375, "0.38"}, {'q', 2.675, "2.67"}, {'q', 0.1 + 0.2, "0.3"},
            {'q', 1e21, "1,000,000,000,000,000,000,000"},
            {'n', 1250, "1250"}, {'n', -3, "-3"}, {'n', -0.0, "0"}, {'n', 12.5, "12.5"},
            {'n', 0.1 + 0.2, "0.30000000000000004"}, {'n', 999999999999999.0, "999999999999999"},
            {'s', 2500000, "$2.5M"}, {'s', 1e6, "$1.0M"}, {'s', 45000, "$45K"}, {'s', 999999, "$1000K"},
            {'s', 750, "$750"}, {'s', 999.4, "$999"}, {'s', 0, "$0"}, {'s', -45000, "$-45K"},
            {'s', 2500, "$2K"}, // printf's "%.0f" rounds an exact half to even
            // clang-format on
        };
        for (const auto &r : rows)
            QTest::addRow("%c(%.17g)", r.fn, r.value) << r.fn << r.value << QString::fromUtf8(r.text);
    }
    void numbers()
    {
        QFETCH(char, fn);
        QFETCH(double, value);
        QFETCH(QString, text);
        QCOMPARE(fn == 'q' ? Fmt::qty(value) : fn == 'n' ? Fmt::num(value) : Fmt::shortMoney(value), text);
    }
    void numReadsBack()
    {
        // The number editor reads the text back with the record's own reader.
        for (double v : {1e15, 1e300, 5e-324, 123456.789, -0.000123, 1.0 / 3})
            QCOMPARE(RecText::parseDouble(Fmt::num(v)), std::optional<double>(v));
    }

    // The process takes its number locale from the environment; display must not.
    void numbersIgnoreProcessLocale()
    {
        const QByteArray before = std::setlocale(LC_NUMERIC, nullptr);
        bool comma = false;
        for (const char *name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"})
            if (!comma && std::setlocale(LC_NUMERIC, name))
                comma = true;
        QVERIFY2(comma, "no decimal-comma locale is installed (scripts/setup installs locales-all)");
        const QString got = Fmt::qty(1234.567) + u' ' + Fmt::shortMoney(2500000);
        std::setlocale(LC_NUMERIC, before.constData());
        QCOMPARE(got, u"1,234.57 $2.5M"_s);
    }

    void value_data()
    {
        m_db = std::make_unique<DB>();
        const Fields code = {{u"code"_s, u"03-000"_s}, {u"name"_s, u"Concrete"_s}};
        m_ids[u"@code"_s] = m_db->add(u"cost_code"_s, {}, {}, code).id;
        m_ids[u"@contact"_s] = m_db->add(u"contact"_s, {}, {}, {{u"name"_s, u"Hollis Supply"_s}}).id;
        m_ids[u"@app"_s] = m_db->add(u"pay_app"_s, u"P"_s, {}, {{u"number"_s, u"3"_s}}).id;

        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("stored"); // null: the key is absent
        QTest::addColumn<QString>("shown");
        const struct
        {
            const char *module, *key, *stored, *shown;
        } rows[] = {
            // clang-format off
            {"projects", "contract", nullptr, ""}, {"projects", "contract", "", ""},
            {"projects", "contract", "0", "$0.00"}, {"projects", "contract", "-123456", "-$1,234.56"},
            {"projects", "contract", "abc", "$0.00"},
            {"projects", "retainage", "7.50", "7.50%"}, {"projects", "retainage", "", ""},
            {"dailylogs", "crew", "1234.567", "1,234.57"}, {"dailylogs", "crew", "", ""},
            {"rfis", "costImpact", "1", "Yes"}, {"rfis", "costImpact", "0", "No"},
            {"rfis", "costImpact", "true", "No"}, {"rfis", "costImpact", nullptr, "No"},
            {"projects", "type", "Commercial", "Commercial"}, {"cos", "status", "pending", "Pending"},
            {"cos", "status", "in_progress", "In_progress"}, {"projects", "status", "archived", "Archived"},
            {"cos", "kind", "owner", "Owner"}, {"safety", "severity", "—", "—"},
            {"waivers", "kind", "unconditional_final", "Unconditional Waiver and Release on Final Payment"},
            {"waivers", "kind", "conditional_progress", "Conditional Waiver and Release on Progress Payment"},
            {"waivers", "kind", "final", "Final"},
            {"expenses", "costCode", "@code", "03-000 Concrete"},
            {"expenses", "vendor", "@contact", "Hollis Supply"}, {"expenses", "vendor", "0D1E", ""},
            {"expenses", "vendor", "", ""}, {"payments", "payApp", "@app", "3"},
            {"projects", "start", "2026-11-15", "Nov 15, 2026"}, {"projects", "start", "soon", "soon"},
            {"projects", "start", "", ""}, {"timecards", "in", "07:00", "07:00"},
            {"projects", "notes", " two\nlines ", " two\nlines "},
            // clang-format on
        };
        for (const auto &r : rows)
            QTest::addRow("%s.%s=%s", r.module, r.key, r.stored ? r.stored : "(absent)")
                << QString::fromUtf8(r.module) << QString::fromUtf8(r.key) << QString::fromUtf8(r.stored)
                << QString::fromUtf8(r.shown);
    }
    void value()
    {
        QFETCH(QString, module);
        QFETCH(QString, key);
        QFETCH(QString, stored);
        QFETCH(QString, shown);
        const FD *fd = Modules::get(module)->field(key);
        QVERIFY(fd);
        Rec rec;
        rec.kind = Modules::get(module)->kind;
        if (!stored.isNull())
            rec.f.insert(key, m_ids.value(stored, stored));
        QCOMPARE(Fmt::value(*m_db, rec, *fd), shown);
    }

    void dates_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown"); // as typed: not a readable date
        // clang-format off
        const char16_t *asTyped[] = {u"", u"2026-02-29", u"2026-13-01", u"0000-01-01", u"2026-1-5",
                                     u"2026/11/15", u"+026-11-15", u" 026-11-15", u"soon", u"2026-3-5 x",
                                     u"\u0662\u0660\u0662\u0666-11-15"};
        // clang-format on
        for (const char16_t *t : asTyped)
            QTest::addRow("«%s»", qPrintable(QString::fromUtf16(t)))
                << QString::fromUtf16(t) << QString::fromUtf16(t);
        QTest::newRow("date") << u"2026-11-15"_s << u"Nov 15, 2026"_s;
        QTest::newRow("single digits") << u"2026-01-05"_s << u"Jan 5, 2026"_s;
        QTest::newRow("leap day") << u"2024-02-29"_s << u"Feb 29, 2024"_s;
        QTest::newRow("date of a time") << u"2026-03-05T10:00:00"_s << u"Mar 5, 2026"_s;
        QTest::newRow("trailing words") << u"2026-03-05 noon"_s << u"Mar 5, 2026"_s;
    }
    void dates()
    {
        QFETCH(QString, text);
        QFETCH(QString, shown);
        QCOMPARE(DateFmt::show(text), shown);
        if (text.size() != 10)
            return;
        const auto date = DateFmt::parseIso(text);
        QCOMPARE(date.has_value(), shown != text);
        if (date)
            QCOMPARE(DateFmt::iso(*date), text);
    }

    void today()
    {
        DateFmt::setToday(QDate(2030, 1, 2));
        QCOMPARE(DateFmt::today(), QDate(2030, 1, 2));
        DateFmt::setToday(QDate());
        const QDate before = QDate::currentDate();
        const QDate now = DateFmt::today();
        QVERIFY(now == before || now == QDate::currentDate());
        // A child run fixes its day from the environment.
        qputenv("TRESTLE_TODAY", "2031-07-04");
        const auto p = TestMain::runChild(u"today"_s, {});
        qunsetenv("TRESTLE_TODAY");
        QCOMPARE(p->readAllStandardOutput().trimmed(), QByteArray("2031-07-04"));
    }

    void capitalizedIfLower_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        // clang-format off
        const char16_t *rows[][2] = {{u"", u""}, {u"pending", u"Pending"}, {u"in_progress", u"In_progress"},
                                     {u"on hold", u"On hold"}, {u"Draft", u"Draft"}, {u"1st", u"1st"},
                                     {u" pending", u" pending"}, {u"éa", u"Éa"}, {u"Éa", u"Éa"}, {u"—", u"—"}};
        // clang-format on
        for (const auto &r : rows)
            QTest::addRow("«%s»", qPrintable(QString::fromUtf16(r[0])))
                << QString::fromUtf16(r[0]) << QString::fromUtf16(r[1]);
    }
    void capitalizedIfLower()
    {
        QFETCH(QString, text);
        QFETCH(QString, shown);
        QCOMPARE(::capitalizedIfLower(text), shown);
    }
};

TRESTLE_TEST(FmtTests);
#include "fmttests.moc"
