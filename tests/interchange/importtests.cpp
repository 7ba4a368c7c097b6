#include "testmain.h"

#include "calc/datefmt.h"
#include "importtest.h"
#include "interchange/backup.h"
#include "interchange/csv.h"
#include "interchange/importwrite.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

using ImportTest::planOf;

namespace {

// Every record of the store, by id, for comparing a whole store before and after.
QHash<QString, Rec> everything(const DB &db)
{
    QHash<QString, Rec> all;
    db.forEach([&](const Rec &r) {
        Rec copy = r;
        copy.updated = 0;
        all.insert(r.id, copy);
    });
    return all;
}

const QString kLists =
    u"!HDR\tPROD\tVER\r\n"
    u"HDR\tQuickBooks Pro\t32.0\r\n"
    u"!ACCNT\tNAME\tACCNTTYPE\r\n"
    u"ACCNT\tChecking\tBANK\r\n"
    u"ACCNT\tJob Materials\tCOGS\r\n"
    u"!CUST\tNAME\tBADDR1\tBADDR2\tBADDR3\tPHONE1\tEMAIL\tCOMPANYNAME\tTAXID\tNOTE\t\r\n"
    u"CUST\tHarbor Street LLC\t\"Harbor Street, LLC\"\t40 Harbor St\tPortland OR 97201\t"
    u"(503) 555-0140\tap@harbor.example\tHarbor Street LLC\t93-1234567\t\t\r\n"
    u"CUST\tHarbor Street LLC:Phase 2 Offices\t\t\t\t\t\t\t\t\"2nd floor, \"\"east\"\" wing\"\t\r\n"
    u"ENDGRP\r\n"
    u"!VEND\tNAME\tVTYPE\t1099\tPHONE1\tADDR1\r\n"
    u"VEND\tBolt Electric\tSubcontractors\tN\t503-555-0177\t9 Volt Way\r\n"
    u"VEND\tCedar Lumber\tSuppliers\tN\t\t\r\n"
    u"VEND\tDan Ortiz Drywall\t\tY\t\t\r\n"
    u"!EMP\tNAME\tPHONE1\tEMAIL\r\n"
    u"EMP\tMia Chen\t503-555-0199\tmia@example.com\r\n"
    u"!OTHERNAME\tNAME\r\n"
    u"OTHERNAME\tCity Inspector\r\n"
    u"!INVITEM\tNAME\tINVITEMTYPE\tDESC\r\n"
    u"INVITEM\t01-000\tSERV\tGeneral Conditions\r\n"
    u"INVITEM\tLabor:09-250\tSERV\tGypsum board\r\n"
    u"INVITEM\tNails\tPART\tBox of nails\r\n"
    u"!TRNS\tTRNSID\r\n!SPL\tSPLID\r\n!ENDTRNS\r\n"_s;

} // namespace

class ImportTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { DateFmt::setToday(QDate(2026, 11, 25)); }

    // A company's QuickBooks lists come in whole, and a second import of the same file adds nothing.
    void iifListsAndReimport()
    {
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        const qsizetype codesBefore = db.count(u"cost_code"_s);
        Import::Plan plan = planOf(db, {{u"lists.iif"_s, kLists}});
        QVERIFY2(plan.errors().isEmpty(), qPrintable(plan.errors().join(u'\n')));
        QCOMPARE(plan.summary(), (QStringList{u"contacts: 5 new, 0 updated, 0 unchanged"_s,
                                              u"team members: 1 new, 0 updated, 0 unchanged"_s,
                                              u"cost codes: 1 new, 1 updated, 0 unchanged"_s,
                                              u"items that are not cost codes: 1 not imported"_s,
                                              u"projects: 1 new, 0 updated, 0 unchanged"_s,
                                              u"ACCNT: 2 rows not imported"_s}));
        QVERIFY(Import::write(db, plan, false).ok);

        QHash<QString, Rec> byName;
        db.visit(u"contact"_s, {}, [&](const Rec &r) { byName.insert(r.f.value(u"name"), r); });
        QCOMPARE(byName.size(), 5);
        const Rec harbor = byName.value(u"Harbor Street LLC"_s);
        QCOMPARE(harbor.f.value(u"type"), u"Client / Owner"_s);
        QCOMPARE(harbor.f.value(u"address"), u"Harbor Street, LLC, 40 Harbor St, Portland OR 97201"_s);
        QCOMPARE(harbor.f.value(u"phone"), u"(503) 555-0140"_s);
        QCOMPARE(byName.value(u"Bolt Electric"_s).f.value(u"type"), u"Subcontractor"_s);
        QCOMPARE(byName.value(u"Cedar Lumber"_s).f.value(u"type"), u"Vendor / Supplier"_s);
        QCOMPARE(byName.value(u"Dan Ortiz Drywall"_s).f.value(u"type"), u"Subcontractor"_s);
        QCOMPARE(byName.value(u"City Inspector"_s).f.value(u"type"), u"Other"_s);
        const QList<Rec> projects = db.list(u"project"_s);
        QCOMPARE(projects.size(), 1);
        QCOMPARE(projects.first().f.value(u"name"), u"Phase 2 Offices"_s);
        QCOMPARE(projects.first().f.value(u"client"), harbor.id);
        QCOMPARE(projects.first().f.value(u"notes"), u"2nd floor, \"east\" wing"_s);
        QCOMPARE(db.list(u"user"_s).size(), 2);
        QCOMPARE(db.count(u"cost_code"_s), codesBefore + 1);
        QCOMPARE(db.label(db.code(u"09-250"_s)), u"09-250 Gypsum board"_s);
        QCOMPARE(db.label(db.code(u"01-000"_s)), u"01-000 General Conditions"_s);

        const QHash<QString, Rec> before = everything(db);
        plan = planOf(db, {{u"lists.iif"_s, kLists}});
        for (const auto &[kind, count] : plan.counts()) {
            QCOMPARE(count.fresh, 0);
            QCOMPARE(count.updated, 0);
        }
        QVERIFY(Import::write(db, plan, false).ok);
        QCOMPARE(everything(db), before);
    }

    // A newer export of the same list: names matched whatever their case and
    // spacing, changes taken, only the new name added.
    void newerExportUpdates()
    {
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        QVERIFY(Import::write(
                    db, planOf(db, {{u"clients.csv"_s, u"Name,Phone\nAce Roofing,503-555-0100\n"_s}}), false)
                    .ok);
        const Import::Plan plan =
            planOf(db, {{u"clients.csv"_s,
                         u"Customer,Main Phone,Main Email\n  ace  ROOFING ,503-555-0111,\nBay Homes,,\n"_s}});
        QCOMPARE(plan.summary(), QStringList{u"contacts: 1 new, 1 updated, 0 unchanged"_s});
        QVERIFY(Import::write(db, plan, false).ok);
        const QList<Rec> contacts = db.list(u"contact"_s);
        QCOMPARE(contacts.size(), 2);
        QCOMPARE(contacts.first().f.value(u"name"),
                 u"Ace Roofing"_s); // the stored name stays as it was typed
        QCOMPARE(contacts.first().f.value(u"phone"), u"503-555-0111"_s);
        QCOMPARE(contacts.last().f.value(u"type"), u"Client / Owner"_s);
    }

    void columns_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("key");
        QTest::newRow("catalog label, other case and spacing")
            << u"contact"_s << u"  e MAIL "_s << u"email"_s;
        QTest::newRow("catalog key") << u"equipment"_s << u"unitNo"_s << u"unitNo"_s;
        QTest::newRow("QuickBooks customer list") << u"contact"_s << u"Customer"_s << u"name"_s;
        QTest::newRow("QuickBooks main phone") << u"contact"_s << u"Main Phone"_s << u"phone"_s;
        QTest::newRow("QuickBooks bill-to line") << u"contact"_s << u"Bill to 3"_s << u"address"_s;
        QTest::newRow("IIF address line") << u"contact"_s << u"BADDR5"_s << u"address"_s;
        QTest::newRow("QuickBooks 1099 flag") << u"contact"_s << u"Eligible for 1099"_s << u"is1099"_s;
        QTest::newRow("tax id has no field") << u"contact"_s << u"TAXID"_s << QString();
        QTest::newRow("employee rate") << u"user"_s << u"Hourly Rate"_s << u"rate"_s;
        QTest::newRow("cost code description") << u"cost_code"_s << u"Description"_s << u"name"_s;
        QTest::newRow("open job billed") << u"open_job"_s << u"Billed to Date"_s << u"billed"_s;
        QTest::newRow("open job line billed") << u"open_job"_s << u"Line billed to date"_s << u"lineBilled"_s;
        QTest::newRow("unknown") << u"project"_s << u"Favourite colour"_s << QString();
    }
    // Columns are matched to fields by catalog label or key and by the names other programs give them.
    void columns()
    {
        QFETCH(QString, kind);
        QFETCH(QString, header);
        QFETCH(QString, key);
        QCOMPARE(Import::matchColumn(kind, header), key);
    }

    void badRow_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("phone") << u"clients.csv"_s << u"Name,Phone\nAce,555-0100-22\nBee,call me\n"_s
                               << u"clients.csv:3: Phone: \u201Ccall me\u201D is not a phone number."_s;
        QTest::newRow("e-mail after a multi-line note")
            << u"vendors.csv"_s << u"Name,Notes,Email\nAce,\"two\nlines\",a@b.co\nBee,,bee at example\n"_s
            << u"vendors.csv:4: Email: \u201Cbee at example\u201D is not an e-mail address."_s;
        QTest::newRow("money")
            << u"team.csv"_s << u"Name,Hourly Rate\nMia,$12.5x\n"_s
            << u"team.csv:2: Labor cost per hour: Not a valid amount. Use a form like 1,234.56 or (5.00)."_s;
        QTest::newRow("date")
            << u"equipment.csv"_s << u"Name,Unit #,Next service due\nLoader,L-1,13/1/2026\n"_s
            << u"equipment.csv:2: Next service due: Not a date. Use a form like 2026-11-15 or "
               u"Nov 15, 2026."_s;
        QTest::newRow("choice")
            << u"contacts.csv"_s << u"Name,Type\nAce,Plumber\n"_s
            << u"contacts.csv:2: Type: Not one of the choices: Client / Owner, Subcontractor, "
               u"Vendor / Supplier, Architect, Engineer, Inspector, Other."_s;
        QTest::newRow("no name") << u"clients.csv"_s << u"Name,Phone\n,503-555-0100\n"_s
                                 << u"clients.csv:2: Name: empty; every row needs one."_s;
        QTest::newRow("twice in one file")
            << u"cost codes.csv"_s << u"Code,Name\n31-000,Earthwork\n31 - 000,Dirt\n"_s
            << u"cost codes.csv:3: \u201C31 - 000 Dirt\u201D is on line 2 already."_s;
        QTest::newRow("unknown client of a job")
            << u"projects.csv"_s << u"Job number,Project name,Client\n7,Barn,Nobody Farms\n"_s
            << u"projects.csv:2: Client / owner: No contact named \u201CNobody Farms\u201D."_s;
    }
    // A bad row is named by file, line and column, and nothing of the file is written.
    void badRow()
    {
        QFETCH(QString, file);
        QFETCH(QString, text);
        QFETCH(QString, error);
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        const QHash<QString, Rec> before = everything(db);
        const Import::Plan plan = planOf(db, {{file, text}});
        QCOMPARE(plan.errors(), QStringList{error});
        const Import::Outcome out = Import::write(db, plan, false);
        QVERIFY(!out.ok);
        QCOMPARE(out.error, u"Nothing was imported: 1 row is bad."_s);
        QCOMPARE(everything(db), before);
    }

    // The good rows alone when asked, and the bad one back as a file to fix.
    void skipBadRows()
    {
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        const Import::Plan plan =
            planOf(db, {{u"clients.csv"_s, u"Name,Phone\nAce,503-555-0100\nBee,12\n\"Cox, Ann\",\n"_s}});
        QVERIFY(Import::write(db, plan, true).ok);
        QCOMPARE(db.count(u"contact"_s), 2);
        const auto files = plan.badRowFiles();
        QCOMPARE(files.size(), 1);
        QCOMPARE(files.first().first, u"clients - rows to fix.csv"_s);
        QCOMPARE(files.first().second,
                 u"Name,Phone,Problem\r\nBee,12,Phone: \u201C12\u201D is not a phone number.\r\n"_s);
    }

    // The bad rows of an IIF list come back as a CSV that imports into the same list once fixed.
    void badRowsOfIIFComeBackAsTheirList()
    {
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        const QString iif = u"!CUST\tNAME\tPHONE1\tBADDR1\r\nCUST\tAce Homes\t503-555-0100\t1 Elm\r\n"
                            u"CUST\tBay Homes\t12\t2 Oak\r\n"_s;
        const Import::Plan plan = planOf(db, {{u"lists.iif"_s, iif}});
        QCOMPARE(plan.errors(), QStringList{u"lists.iif:3: Phone: \u201C12\u201D is not a phone number."_s});
        const auto files = plan.badRowFiles();
        QCOMPARE(files.size(), 1);
        QCOMPARE(files.first().first, u"lists customers - rows to fix.csv"_s);
        QString fixed = files.first().second;
        fixed.replace(u",12,"_s, u",503-555-0101,"_s);
        const Import::Plan again = planOf(db, {{files.first().first, fixed}});
        QCOMPARE(again.errors(), QStringList());
        QVERIFY(Import::write(db, again, false).ok);
        const QList<Rec> contacts = db.list(u"contact"_s);
        QCOMPARE(contacts.size(), 1);
        QCOMPARE(contacts.first().f.value(u"type"), u"Client / Owner"_s);
        QCOMPARE(contacts.first().f.value(u"address"), u"2 Oak"_s);
    }

    // Undo takes the whole import back, unless something it wrote changed since.
    void undo()
    {
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Ace"_s}, {u"phone"_s, u"503-555-0100"_s}});
        const QHash<QString, Rec> before = everything(db);
        const QString csv = u"Name,Phone\nAce,503-555-0199\nBee,503-555-0101\n"_s;

        Import::Outcome out = Import::write(db, planOf(db, {{u"clients.csv"_s, csv}}), false);
        QVERIFY(out.ok);
        QCOMPARE(db.count(u"contact"_s), 2);
        QVERIFY(Import::undo(db, out.undo));
        QCOMPARE(everything(db), before);

        out = Import::write(db, planOf(db, {{u"clients.csv"_s, csv}}), false);
        Rec bee = db.list(u"contact"_s).last();
        bee.f.insert(u"email"_s, u"bee@example.com"_s);
        db.save(bee);
        QString why;
        QVERIFY(!Import::undo(db, out.undo, &why));
        QCOMPARE(why, u"\u201CBee\u201D changed after the import, so the import can no longer be undone."_s);
        QCOMPARE(db.count(u"contact"_s), 2);
    }

    // The CSV export edited in a spreadsheet and brought back: ids update in
    // place, a row without one is added, references between the files hold.
    void exportRoundTrip()
    {
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        const Rec ace =
            db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Ace"_s}, {u"type"_s, u"Subcontractor"_s}});
        const Rec tower =
            db.add(u"project"_s, {}, {}, {{u"name"_s, u"Tower"_s}, {u"contract"_s, u"100000"_s}});
        db.add(u"punch"_s, tower.id, {}, {{u"title"_s, u"Paint"_s}, {u"assignee"_s, ace.id}});
        QTemporaryDir dir;
        const ExportResult r = Backup::exportCSV(db, dir.path());
        QVERIFY(r.ok);

        // Edit: rename the contact, change the contract (whole cents), add a punch item for Tower.
        const auto edit =
            [&](const QString &name,
                const std::function<void(QList<Import::Table::Row> &, const QStringList &)> &fn) {
                QFile f(QDir(r.folder).filePath(name));
                QVERIFY(f.open(QIODevice::ReadOnly));
                Import::Table t = Import::csv(name, QString::fromUtf8(f.readAll()));
                f.close();
                fn(t.rows, t.header);
                QList<QStringList> rows{t.header};
                for (const auto &row : std::as_const(t.rows)) {
                    QStringList cells = row.cells;
                    while (cells.size() < t.header.size())
                        cells.append(QString());
                    rows.append(cells);
                }
                QVERIFY(CSV::save(rows, f.fileName()));
            };
        edit(u"contact.csv"_s, [](auto &rows, const QStringList &h) {
            rows[0].cells[h.indexOf(u"name"_s)] = u"Ace Electric"_s;
        });
        edit(u"project.csv"_s, [](auto &rows, const QStringList &h) {
            rows[0].cells[h.indexOf(u"contract"_s)] = u"12500000"_s;
        });
        edit(u"punch.csv"_s, [&](auto &rows, const QStringList &h) {
            Import::Table::Row row;
            row.cells = QStringList(h.size());
            row.cells[1] = u"Tower"_s;
            row.cells[h.indexOf(u"title"_s)] = u"Caulk windows"_s;
            row.cells[h.indexOf(u"assignee"_s)] = ace.id;
            rows.append(row);
        });

        const Import::Source source = Import::read(r.folder);
        QVERIFY(source.error.isEmpty());
        const Import::Plan plan = Import::plan(db, Import::sheets(source.tables));
        QCOMPARE(plan.errors(), QStringList());
        QVERIFY(plan.summary().contains(u"contacts: 0 new, 1 updated, 0 unchanged"_s));
        QVERIFY(plan.summary().contains(u"projects: 0 new, 1 updated, 0 unchanged"_s));
        QVERIFY(plan.summary().contains(u"punch list: 1 new, 0 updated, 1 unchanged"_s));
        const qsizetype recordsBefore = db.size();
        QVERIFY(Import::write(db, plan, false).ok);
        QCOMPARE(db.size(), recordsBefore + 1);
        QCOMPARE(db.get(ace.id)->f.value(u"name"), u"Ace Electric"_s);
        QCOMPARE(db.get(tower.id)->i(u"contract"), 12500000);
        const QList<Rec> punch = db.list(u"punch"_s, {.project = tower.id});
        QCOMPARE(punch.size(), 2);
        QCOMPARE(punch.last().f.value(u"assignee"), ace.id);
    }

    void storedBad_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("amount as typed, not cents")
            << u"project.csv"_s << u"id,project,parent,contract,name\n,,,\"1,250.00\",Barn\n"_s
            << u"project.csv:2: Original contract: \u201C1,250.00\u201D is not whole cents, as the export "
               u"writes "
               u"amounts."_s;
        QTest::newRow("order that is not a number")
            << u"punch.csv"_s << u"id,project,parent,sort,title\n,,,first,Paint\n"_s
            << u"punch.csv:2: sort: \u201Cfirst\u201D is not a whole number that fits."_s;
        QTest::newRow("amount past 64 bits")
            << u"sov_line.csv"_s << u"id,project,parent,scheduled\n,,,99999999999999999999\n"_s
            << u"sov_line.csv:2: scheduled: \u201C99999999999999999999\u201D is not "
               u"a whole number that fits."_s;
        QTest::newRow("reference to nothing") << u"punch.csv"_s << u"id,project,parent,assignee\n,,,NOPE\n"_s
                                              << u"punch.csv:2: Assigned to: No record has the id NOPE."_s;
        QTest::newRow("project by a name unknown")
            << u"punch.csv"_s << u"id,project,parent,title\n,Nowhere,,Paint\n"_s
            << u"punch.csv:2: project: no project named \u201CNowhere\u201D."_s;
    }
    // Files of the export are read as stored; what the program could not read back is refused.
    void storedBad()
    {
        QFETCH(QString, file);
        QFETCH(QString, text);
        QFETCH(QString, error);
        DB db;
        db.createCompany(u"Fenton Builders"_s, u"Sam"_s, u"OR"_s);
        const Import::Plan plan = planOf(db, {{file, text}});
        QCOMPARE(plan.errors(), QStringList{error});
    }
};

TRESTLE_TEST(ImportTests);
#include "importtests.moc"
