// Typed values read into stored text, as every editor and `trestle set` read
// them, and the options a choice or reference offers.
#include "testmain.h"

#include "calc/fieldinput.h"
#include "calc/money.h"
#include "catalog/modules.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace {
const QString kNotANumber = u"Not a number."_s;
const QString kNotADate = u"Not a date. Use a form like 2026-11-15 or Nov 15, 2026."_s;

void addTypedColumns()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("error");
}

void compareTyped(const FieldInput::Typed &got)
{
    QFETCH(QString, stored);
    QFETCH(QString, error);
    QCOMPARE(got.error, error);
    QCOMPARE(got.stored, error.isEmpty() ? stored : QString());
}
} // namespace

class FieldInputTests : public QObject
{
    Q_OBJECT
    std::unique_ptr<DB> m_db;
    QHash<QString, QString> m_ids; // "@name" placeholders of the records made below
    QString m_project;

    QString resolve(const QString &text) const { return text.startsWith(u'@') ? m_ids.value(text) : text; }

private Q_SLOTS:
    void initTestCase()
    {
        m_db = std::make_unique<DB>();
        DB &db = *m_db;
        m_ids[u"@other"_s] = db.createCompany(u"Elsewhere"_s, u"Ed"_s, u"NV"_s).id;
        m_ids[u"@elsewhere"_s] = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Far Away Co"_s}}).id;
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s); // current from here on
        m_ids[u"@acme"_s] = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Acme Supply"_s}}).id;
        m_ids[u"@ridge1"_s] = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Ridge Electric"_s}}).id;
        m_ids[u"@ridge2"_s] = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Ridge Electric"_s}}).id;
        m_project = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Clubhouse"_s}}).id;
        const QString otherProject = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Depot"_s}}).id;
        m_ids[u"@item"_s] =
            db.add(u"unit_item"_s, m_project, {}, {{u"number"_s, u"4"_s}, {u"title"_s, u"Curb"_s}}).id;
        m_ids[u"@farItem"_s] =
            db.add(u"unit_item"_s, otherProject, {}, {{u"number"_s, u"9"_s}, {u"title"_s, u"Gutter"_s}}).id;
        m_ids[u"@concrete"_s] = db.code(u"03-000"_s);
        QVERIFY(!m_ids[u"@concrete"_s].isEmpty());
    }
    void cleanupTestCase() { m_db.reset(); }

    void money_data()
    {
        addTypedColumns();
        QTest::newRow("grouped") << u"1,234.56"_s << u"123456"_s << QString();
        QTest::newRow("dollar sign") << u"$1,234.56"_s << u"123456"_s << QString();
        QTest::newRow("credit in brackets") << u"(5.00)"_s << u"-500"_s << QString();
        QTest::newRow("empty clears") << QString() << QString() << QString();
        QTest::newRow("blanks clear") << u"  "_s << QString() << QString();
        QTest::newRow("stray letter") << u"1,2x"_s << QString() << Money::message(ParseError::invalid);
        QTest::newRow("past the largest")
            << u"1000000000"_s << QString() << Money::message(ParseError::tooLarge);
    }
    void money()
    {
        QFETCH(QString, typed);
        compareTyped(FieldInput::money(typed));
    }

    void number_data()
    {
        addTypedColumns();
        QTest::newRow("percent sign") << u"10%"_s << u"10"_s << QString();
        QTest::newRow("grouping") << u"1,500"_s << u"1500"_s << QString();
        QTest::newRow("blanks around") << u" 2.50 "_s << u"2.5"_s << QString();
        QTest::newRow("negative") << u"-3"_s << u"-3"_s << QString();
        QTest::newRow("empty clears") << QString() << QString() << QString();
        QTest::newRow("word") << u"abc"_s << QString() << kNotANumber;
        QTest::newRow("half typed") << u"1e"_s << QString() << kNotANumber;
        // Stored, these would stop the program the first time a total reads them.
        QTest::newRow("infinity") << u"inf"_s << QString() << kNotANumber;
        QTest::newRow("not a number") << u"nan"_s << QString() << kNotANumber;
        QTest::newRow("overflows to infinity") << u"1e400"_s << QString() << kNotANumber;
    }
    void number()
    {
        QFETCH(QString, typed);
        compareTyped(FieldInput::number(typed));
    }

    void date_data()
    {
        addTypedColumns();
        QTest::newRow("stored form") << u"2026-11-15"_s << u"2026-11-15"_s << QString();
        QTest::newRow("shown form") << u"Nov 15, 2026"_s << u"2026-11-15"_s << QString();
        QTest::newRow("shown form, loose blanks") << u" Nov  5, 2026 "_s << u"2026-11-05"_s << QString();
        QTest::newRow("empty clears") << QString() << QString() << QString();
        QTest::newRow("no such day") << u"2026-02-30"_s << QString() << kNotADate;
        QTest::newRow("day first") << u"15/11/2026"_s << QString() << kNotADate;
        QTest::newRow("short year") << u"26-11-15"_s << QString() << kNotADate;
        QTest::newRow("US month first") << u"1/5/2026"_s << u"2026-01-05"_s << QString();
        QTest::newRow("US padded, two-digit year") << u"01/05/26"_s << u"2026-01-05"_s << QString();
        QTest::newRow("US two-digit year of the last century")
            << u"12/31/99"_s << u"1999-12-31"_s << QString();
        QTest::newRow("US no such day") << u"2/30/2026"_s << QString() << kNotADate;
        QTest::newRow("US three-digit year") << u"1/5/202"_s << QString() << kNotADate;
        QTest::newRow("US missing part") << u"1//2026"_s << QString() << kNotADate;
        QTest::newRow("US letters") << u"1/a/2026"_s << QString() << kNotADate;
    }
    void date()
    {
        QFETCH(QString, typed);
        compareTyped(FieldInput::date(typed));
    }

    void boolean_data()
    {
        addTypedColumns();
        for (const char *yes : {"1", "yes", "True", " on "})
            QTest::newRow(yes) << QString::fromLatin1(yes) << u"1"_s << QString();
        for (const char *no : {"0", "No", "false", "off"})
            QTest::newRow(no) << QString::fromLatin1(no) << u"0"_s << QString();
        QTest::newRow("empty") << QString() << QString() << u"Not yes or no."_s;
        QTest::newRow("maybe") << u"maybe"_s << QString() << u"Not yes or no."_s;
    }
    void boolean()
    {
        QFETCH(QString, typed);
        compareTyped(FieldInput::boolean(typed));
    }

    // Choices and references read against the options, for a record of the
    // current company's first project.
    void read_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("line");
        addTypedColumns();
        const QString statuses = u"Not one of the choices: Pending, Approved, Rejected, Void."_s;
        QTest::newRow("choice by value")
            << u"cos"_s << u"status"_s << false << u"approved"_s << u"approved"_s << QString();
        QTest::newRow("choice by label")
            << u"cos"_s << u"status"_s << false << u"Approved"_s << u"approved"_s << QString();
        QTest::newRow("choice in any case")
            << u"projects"_s << u"status"_s << false << u"on HOLD"_s << u"On hold"_s << QString();
        QTest::newRow("waiver kind by long name")
            << u"waivers"_s << u"kind"_s << false << u"Conditional Waiver and Release on Final Payment"_s
            << u"conditional_final"_s << QString();
        QTest::newRow("choice not offered")
            << u"cos"_s << u"status"_s << false << u"maybe"_s << QString() << statuses;
        QTest::newRow("choice never empty")
            << u"cos"_s << u"status"_s << false << QString() << QString() << statuses;
        QTest::newRow("ref by name") << u"cos"_s << u"sub"_s << false << u"acme supply"_s << u"@acme"_s
                                     << QString();
        QTest::newRow("ref by id") << u"cos"_s << u"sub"_s << false << u"@ridge2"_s << u"@ridge2"_s
                                   << QString();
        QTest::newRow("ref cleared") << u"cos"_s << u"sub"_s << false << QString() << QString() << QString();
        QTest::newRow("ref cleared by its dash")
            << u"cos"_s << u"sub"_s << false << u"—"_s << QString() << QString();
        QTest::newRow("ref name shared") << u"cos"_s << u"sub"_s << false << u"Ridge Electric"_s << QString()
                                         << u"More than one choice is named “Ridge Electric”; give its id."_s;
        QTest::newRow("ref unknown") << u"cos"_s << u"sub"_s << false << u"Nobody"_s << QString()
                                     << u"No contact named “Nobody”."_s;
        QTest::newRow("ref of another company")
            << u"cos"_s << u"sub"_s << false << u"@elsewhere"_s << QString()
            << QString(u"No contact named “"_s + m_ids.value(u"@elsewhere"_s) + u"”."_s);
        QTest::newRow("cost code by label")
            << u"cos"_s << u"costCode"_s << true << u"03-000 Concrete"_s << u"@concrete"_s << QString();
        QTest::newRow("cost code by code alone")
            << u"cos"_s << u"costCode"_s << true << u"03-000"_s << u"@concrete"_s << QString();
        QTest::newRow("refIn by label")
            << u"qtylogs"_s << u"item"_s << false << u"#4 Curb"_s << u"@item"_s << QString();
        QTest::newRow("refIn of another project")
            << u"qtylogs"_s << u"item"_s << false << u"@farItem"_s << QString()
            << QString(u"No unit item named “"_s + m_ids.value(u"@farItem"_s) + u"” in this project."_s);
        QTest::newRow("money field") << u"cos"_s << u"amount"_s << true << u"$1,500"_s << u"150000"_s
                                     << QString();
        QTest::newRow("free text kept as typed") << u"cos"_s << u"title"_s << false << u"  Extra  footing "_s
                                                 << u"  Extra  footing "_s << QString();
        // What a field's meaning allows: shares of a whole, percentages, a state's letters.
        const QString share = u"Must be from 0 to 100 %."_s;
        QTest::newRow("retainage in range")
            << u"projects"_s << u"retainage"_s << false << u"10%"_s << u"10"_s << QString();
        QTest::newRow("retainage at 100")
            << u"projects"_s << u"retainage"_s << false << u"100"_s << u"100"_s << QString();
        QTest::newRow("retainage over 100")
            << u"projects"_s << u"retainage"_s << false << u"150"_s << QString() << share;
        QTest::newRow("retainage below 0")
            << u"projects"_s << u"retainage"_s << false << u"-5"_s << QString() << share;
        QTest::newRow("retainage cleared")
            << u"projects"_s << u"retainage"_s << false << QString() << QString() << QString();
        QTest::newRow("markup over 100 is a markup")
            << u"estimates"_s << u"markup"_s << false << u"150"_s << u"150"_s << QString();
        QTest::newRow("markup below 0")
            << u"estimates"_s << u"markup"_s << false << u"-1"_s << QString() << u"Can't be below 0 %."_s;
        const QString notState = u"Not a US state. Use its two letters, such as CO."_s;
        QTest::newRow("state") << u"projects"_s << u"state"_s << false << u"CO"_s << u"CO"_s << QString();
        QTest::newRow("state in lower case")
            << u"projects"_s << u"state"_s << false << u" co "_s << u"CO"_s << QString();
        QTest::newRow("state by its name")
            << u"projects"_s << u"state"_s << false << u"Colorado"_s << QString() << notState;
        QTest::newRow("state not a state")
            << u"projects"_s << u"state"_s << false << u"XX"_s << QString() << notState;
        QTest::newRow("state cleared")
            << u"projects"_s << u"state"_s << false << QString() << QString() << QString();
    }
    void read()
    {
        QFETCH(QString, module);
        QFETCH(QString, key);
        QFETCH(bool, line);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QFETCH(QString, error);
        const ModuleDef *m = Modules::get(module);
        QVERIFY(m);
        const FD *fd = line ? m->lineField(key) : m->field(key);
        QVERIFY(fd);
        const FieldInput::Typed got = FieldInput::read(*m_db, *fd, resolve(typed), m_project);
        QCOMPARE(got.error, error);
        QCOMPARE(got.stored, resolve(stored));
    }

    // A record of another company reads its references among that company's records.
    void refOfTheRecordsCompany()
    {
        const FD fd{u"sub"_s, u"Sub"_s, FT::makeRef(u"contact"_s)};
        const auto got = FieldInput::read(*m_db, fd, u"Far Away Co"_s, {}, m_ids.value(u"@other"_s));
        QCOMPARE(got.error, QString());
        QCOMPARE(got.stored, m_ids.value(u"@elsewhere"_s));
    }

    void choiceLabels_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("label");
        QTest::newRow("waiver kind by long name") << u"waivers"_s << u"kind"_s << u"unconditional_final"_s
                                                  << u"Unconditional Waiver and Release on Final Payment"_s;
        QTest::newRow("lower-case word raised") << u"waivers"_s << u"status"_s << u"signed"_s << u"Signed"_s;
        QTest::newRow("capitalised word as is") << u"pos"_s << u"status"_s << u"Issued"_s << u"Issued"_s;
    }
    void choiceLabels()
    {
        QFETCH(QString, module);
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QString, label);
        const FieldInput::Options options = FieldInput::options(*m_db, *Modules::get(module)->field(key), {});
        auto it =
            std::find_if(options.cbegin(), options.cend(), [&](const auto &o) { return o.first == value; });
        QVERIFY(it != options.cend());
        QCOMPARE(it->second, label);
    }

    void refInLabels_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("label");
        QTest::newRow("item and description") << u"3"_s << u"02-100"_s << u"#3 02-100 Site clearing"_s;
        QTest::newRow("title when no item") << u"3"_s << QString() << u"#3 Sitework"_s;
        QTest::newRow("store label when no number") << QString() << u"02-100"_s << u"Sitework"_s;
    }
    void refInLabels()
    {
        QFETCH(QString, number);
        QFETCH(QString, item);
        QFETCH(QString, label);
        DB db;
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
        Fields f{{u"title"_s, u"Sitework"_s}, {u"description"_s, u"Site clearing"_s}};
        if (!number.isEmpty())
            f.insert(u"number"_s, number);
        if (!item.isEmpty())
            f.insert(u"item"_s, item);
        const Rec target = db.add(u"estimate"_s, {}, {}, f);
        QCOMPARE(FieldInput::refInLabel(db, target), label);
    }
};

TRESTLE_TEST(FieldInputTests);
#include "fieldinputtests.moc"
