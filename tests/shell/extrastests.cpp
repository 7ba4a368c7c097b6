// The panels around a record's lines on a private store: change-order status
// buttons, estimate totals and budget, assemblies, bid award, waiver warning,
// timecard hours, unit-item overrun and certificate expiry.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "look/buttons.h"
#include "shell/bidleveling.h"
#include "shell/moduleextras.h"
#include "shell/moduleextraspanels.h"
#include "shell/nav.h"
#include "shell/totalsbox.h"
#include "shell/waiverpanel.h"
#include "store/db.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

using namespace Qt::StringLiterals;

using Rows = QList<TotalsBox::Row>;

class ExtrasTests : public QObject
{
    Q_OBJECT

    static Rec project(DB &db)
    {
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        return db.add(
            u"project"_s, {}, {},
            {{u"name"_s, u"Harbor Lofts"_s}, {u"address"_s, u"12 Pier Rd"_s}, {u"contract"_s, u"500000"_s}});
    }

    static Rec estimate(DB &db, const Rec &p)
    {
        const Rec est = db.add(
            u"estimate"_s, p.id, {},
            {{u"title"_s, u"Shell"_s}, {u"number"_s, u"4"_s}, {u"markup"_s, u"10"_s}, {u"tax"_s, u"5"_s}});
        db.add(u"est_line"_s, p.id, est.id,
               {{u"qty"_s, u"1"_s}, {u"unitCost"_s, u"30000"_s}, {u"sort"_s, u"1"_s}});
        db.add(u"est_line"_s, p.id, est.id,
               {{u"qty"_s, u"2"_s}, {u"unitCost"_s, u"35000"_s}, {u"sort"_s, u"2"_s}});
        return est;
    }

private Q_SLOTS:
    void cleanup() { DateFmt::setToday({}); }

    // Each click goes through the approval operation, which keeps exactly one
    // "CO-n" line while an owner order stands approved.
    void coStatusButtons_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QStringList>("clicks");
        QTest::addColumn<int>("coLines");
        QTest::newRow("owner approved") << u"owner"_s << QStringList{u"approved"_s} << 1;
        QTest::newRow("approve, pending, approve")
            << u"owner"_s << QStringList{u"approved"_s, u"pending"_s, u"approved"_s} << 1;
        QTest::newRow("void takes it back") << u"owner"_s << QStringList{u"approved"_s, u"void"_s} << 0;
        QTest::newRow("sub makes none") << u"sub"_s << QStringList{u"approved"_s} << 0;
    }
    void coStatusButtons()
    {
        QFETCH(QString, kind);
        QFETCH(QStringList, clicks);
        QFETCH(int, coLines);
        DB db;
        const Rec p = project(db);
        const Rec co = db.add(u"co"_s, p.id, {},
                              {{u"number"_s, u"3"_s},
                               {u"title"_s, u"Extra steel"_s},
                               {u"kind"_s, kind},
                               {u"status"_s, u"pending"_s},
                               {u"markup"_s, u"10"_s}});
        db.add(u"co_line"_s, p.id, co.id, {{u"amount"_s, u"10000"_s}});
        ChangeOrderPanel panel(db, co.id);
        QCOMPARE(panel.totals()->rows(),
                 (Rows{{u"Subtotal"_s, 10000}, {u"Markup 10%"_s, 1000}, {u"Change order total"_s, 11000}}));
        for (const QString &word : clicks) {
            panel.statusButton(word)->click();
            panel.refresh();
        }
        QCOMPARE(db.get(co.id)->f.value(u"status"_s), clicks.last());
        const QList<Rec> sov = db.list(u"sov_line"_s, {.project = p.id});
        QCOMPARE(sov.size(), coLines);
        if (coLines == 1) {
            QCOMPARE(sov[0].f.value(u"item"_s), u"CO-3"_s);
            QCOMPARE(sov[0].f.value(u"scheduled"_s), u"11000"_s);
        }
        const QString note = panel.findChild<QLabel *>(u"note"_s)->text();
        QVERIFY(note.startsWith(kind == u"owner"_s ? u"Approving an owner"_s : u"Approved sub"_s));
    }

    void estimateTotalsAndBudget()
    {
        DB db;
        Nav nav;
        const Rec p = project(db);
        const Rec est = estimate(db, p);
        QWidget *w = makeModuleExtrasAfterLines(db, nav, *Modules::get(u"estimates"), est.id, nullptr);
        std::unique_ptr<QWidget> owner(w);
        auto *panel = qobject_cast<EstimateTotalsPanel *>(w);
        QVERIFY(panel);
        QCOMPARE(panel->totals()->rows(), (Rows{{u"Subtotal"_s, 100000},
                                                {u"Markup 10%"_s, 10000},
                                                {u"Tax 5%"_s, 5500},
                                                {u"Proposal total"_s, 115500}}));
        const auto *note = panel->findChild<QLabel *>(u"note"_s);
        QVERIFY(note);
        QCOMPARE(note->text(),
                 u"Lines are quantity × unit cost. Markup applies to the subtotal; tax applies to "
                 u"subtotal + markup."_s);
        // A new line shows in the same box on the next refresh.
        TotalsBox *box = panel->totals();
        db.add(u"est_line"_s, p.id, est.id, {{u"qty"_s, u"1"_s}, {u"unitCost"_s, u"100"_s}});
        dynamic_cast<Refreshable *>(w)->refresh();
        QCOMPARE(panel->totals(), box);
        QCOMPARE(box->rows().first().second, 100100);

        panel->findChild<FWChromeButton *>(u"useAsBudget"_s)->click();
        QCOMPARE(db.get(p.id)->f.value(u"contract"_s), QString::number(box->rows().last().second));
        QCOMPARE(db.count(u"budget_line"_s, {.project = p.id}), 1);
        QCOMPARE(nav.module(), u"budget"_s);
        QCOMPARE(EstimateTotalsPanel::proposalFileName(est), u"Proposal 4 Shell.pdf"_s);
    }

    void assemblyAdder_data()
    {
        QTest::addColumn<bool>("choose");
        QTest::addColumn<QString>("qty");
        QTest::addColumn<QStringList>("lineQtys");
        QTest::newRow("at a quantity") << true << u"3"_s << QStringList{u"0.38"_s, u"6.0"_s};
        QTest::newRow("grouped quantity") << true << u"1,200"_s << QStringList{u"150.0"_s, u"2400.0"_s};
        QTest::newRow("no assembly chosen") << false << u"3"_s << QStringList{};
    }
    void assemblyAdder()
    {
        QFETCH(bool, choose);
        QFETCH(QString, qty);
        QFETCH(QStringList, lineQtys);
        DB db;
        Nav nav;
        const Rec p = project(db);
        const Rec est = db.add(u"estimate"_s, p.id, {}, {{u"title"_s, u"Slab"_s}});
        const Rec asmRec = db.add(u"assembly"_s, {}, {}, {{u"name"_s, u"4in slab"_s}, {u"unit"_s, u"SF"_s}});
        db.add(u"asm_line"_s, {}, asmRec.id,
               {{u"description"_s, u"Concrete"_s},
                {u"qtyPer"_s, u"0.125"_s},
                {u"unitCost"_s, u"900"_s},
                {u"sort"_s, u"1"_s}});
        db.add(u"asm_line"_s, {}, asmRec.id,
               {{u"description"_s, u"Mesh"_s},
                {u"qtyPer"_s, u"2"_s},
                {u"unitCost"_s, u"50"_s},
                {u"sort"_s, u"2"_s}});
        std::unique_ptr<QWidget> w(makeModuleExtras(db, nav, *Modules::get(u"estimates"), est.id, nullptr));
        auto *combo = w->findChild<QComboBox *>(u"assembly"_s);
        QCOMPARE(combo->count(), 1);
        QCOMPARE(combo->itemText(0), u"4in slab (per SF)"_s);
        if (choose)
            combo->setCurrentIndex(0);
        QTest::keyClicks(w->findChild<QLineEdit *>(u"qty"_s), qty);
        w->findChild<FWChromeButton *>(u"addAssembly"_s)->click();
        QStringList got;
        for (const Rec &line : db.list(u"est_line"_s, {.parent = est.id}))
            got << line.f.value(u"qty"_s);
        QCOMPARE(got, lineQtys);
    }

    void bidAward()
    {
        DB db;
        const Rec p = project(db);
        const Rec pkg =
            db.add(u"bid_package"_s, p.id, {}, {{u"title"_s, u"Framing"_s}, {u"status"_s, u"Open"_s}});
        auto bid = [&](const QString &name, const QString &base, const QString &plugs) {
            const Rec c = db.add(u"contact"_s, {}, {}, {{u"name"_s, name}});
            return db.add(u"bid"_s, p.id, pkg.id,
                          {{u"bidder"_s, c.id}, {u"base"_s, base}, {u"plugs"_s, plugs}});
        };
        const Rec a = bid(u"Alder"_s, u"100000"_s, u"5000"_s);
        const Rec b = bid(u"Birch"_s, u"102000"_s, u"0"_s);
        bid(u"Cedar"_s, u"99000"_s, u"10000"_s);
        BidLevelingPanel panel(db, pkg.id);
        QCOMPARE(panel.spreadText(), u"Spread between low and high: $70.00"_s);

        panel.findChild<FWChromeButton *>(u"award:"_s + a.id)->click();
        panel.refresh();
        QCOMPARE(db.get(a.id)->f.value(u"status"_s), u"awarded"_s);
        QVERIFY(!panel.findChild<FWChromeButton *>(u"award:"_s + a.id));
        QVERIFY(panel.findChild<QLabel *>(u"awarded"_s));
        const QList<Rec> pos = db.list(u"po"_s, {.project = p.id});
        QCOMPARE(pos.size(), 1);
        QCOMPARE(db.list(u"po_line"_s, {.parent = pos[0].id}).first().f.value(u"unitCost"_s), u"105000"_s);

        // Moving the award takes it from the first bidder.
        panel.findChild<FWChromeButton *>(u"award:"_s + b.id)->click();
        panel.refresh();
        QCOMPARE(db.get(a.id)->f.value(u"status"_s), QString());
        QVERIFY(panel.findChild<FWChromeButton *>(u"award:"_s + a.id));
        QCOMPARE(db.count(u"po"_s, {.project = p.id}), 2);
    }

    void waiverWarning_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("warning");
        QTest::newRow("lower case with blanks")
            << u"az "_s
            << u"AZ requires a statutory lien-waiver form. Use the official state "
               u"wording; this generic form may not be valid there."_s;
        QTest::newRow("no state") << QString() << QString();
        QTest::newRow("state without a form") << u"CO"_s << QString();
    }
    void waiverWarning()
    {
        QFETCH(QString, state);
        QFETCH(QString, warning);
        DB db;
        const Rec p = project(db);
        const Rec w = db.add(u"waiver"_s, p.id, {},
                             {{u"kind"_s, u"conditional_progress"_s},
                              {u"amount"_s, u"250000"_s},
                              {u"customer"_s, u"Bay Dev"_s},
                              {u"state"_s, state}});
        WaiverPanel panel(db, w.id);
        QCOMPARE(panel.warning(), warning);
        QVERIFY(panel.preview().contains(
            u"Upon receipt by the undersigned of a payment in the sum of $2,500.00"_s));
        QVERIFY(panel.preview().contains(u"Harbor Lofts, located at 12 Pier Rd"_s));
    }

    void timecardHours_data()
    {
        QTest::addColumn<QString>("in");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("breakMin");
        QTest::addColumn<QString>("hours");
        QTest::addColumn<qint64>("cost");
        QTest::newRow("day shift") << u"07:00"_s << u"15:30"_s << u"30"_s << u"8.00 h"_s << qint64(36000);
        QTest::newRow("overnight") << u"22:00"_s << u"06:00"_s << u"0"_s << u"8.00 h"_s << qint64(36000);
        QTest::newRow("no clock out") << u"07:00"_s << QString() << u"0"_s << u"0.00 h"_s << qint64(0);
        QTest::newRow("clock out blanks") << u"07:00"_s << u" \t"_s << u"30"_s << u"0.00 h"_s << qint64(0);
        QTest::newRow("no clock in") << QString() << u"15:30"_s << u"0"_s << u"0.00 h"_s << qint64(0);
        QTest::newRow("quarter hours") << u"07:00"_s << u"07:20"_s << u"0"_s << u"0.33 h"_s << qint64(1485);
    }
    void timecardHours()
    {
        QFETCH(QString, in);
        QFETCH(QString, out);
        QFETCH(QString, breakMin);
        QFETCH(QString, hours);
        QFETCH(qint64, cost);
        DB db;
        const Rec p = project(db);
        const Rec tc =
            db.add(u"timecard"_s, p.id, {},
                   {{u"in"_s, in}, {u"out"_s, out}, {u"break"_s, breakMin}, {u"rate"_s, u"4500"_s}});
        TimecardHours box(db, tc.id);
        QCOMPARE(box.totals()->overlay(), hours);
        QCOMPARE(box.totals()->rows(), (Rows{{u"Hours"_s, cost}}));
    }

    void unitItemOverrun_data()
    {
        QTest::addColumn<QString>("bidQty");
        QTest::addColumn<QString>("earnedLabel");
        QTest::addColumn<QString>("overrun");
        QTest::newRow("within the bid") << u"20"_s << u"Earned to date (12.5 CY, 62.5%)"_s << QString();
        QTest::newRow("no bid quantity") << u"0"_s << u"Earned to date (12.5 CY)"_s
                                         << u"Quantity overrun: 12.5 CY over the bid quantity."_s;
        QTest::newRow("over the bid") << u"10"_s << u"Earned to date (12.5 CY, 125.0%)"_s
                                      << u"Quantity overrun: 2.5 CY over the bid quantity."_s;
    }
    void unitItemOverrun()
    {
        QFETCH(QString, bidQty);
        QFETCH(QString, earnedLabel);
        QFETCH(QString, overrun);
        DB db;
        const Rec p = project(db);
        const Rec item = db.add(u"unit_item"_s, p.id, {},
                                {{u"bidQty"_s, bidQty}, {u"unitPrice"_s, u"1000"_s}, {u"unit"_s, u"CY"_s}});
        db.add(u"qty_log"_s, p.id, {}, {{u"item"_s, item.id}, {u"qty"_s, u"10"_s}});
        db.add(u"qty_log"_s, p.id, {}, {{u"item"_s, item.id}, {u"qty"_s, u"2.5"_s}});
        db.add(u"qty_log"_s, p.id, {}, {{u"item"_s, item.id}, {u"qty"_s, QString()}});
        UnitItemEarned panel(db, item.id);
        QCOMPARE(panel.totals()->rows().last(), (TotalsBox::Row{earnedLabel, 12500}));
        QCOMPARE(panel.overrun(), overrun);
    }

    void complianceNotice_data()
    {
        QTest::addColumn<QString>("expires");
        QTest::addColumn<QString>("text");
        QTest::newRow("no date") << QString() << QString();
        QTest::newRow("30 days out") << u"2026-07-01"_s
                                     << u"Expires in 30 day(s). Request a renewed certificate now."_s;
        QTest::newRow("31 days out") << u"2026-07-02"_s << QString();
        QTest::newRow("expired")
            << u"2026-05-27T00:00"_s
            << u"Expired 5 day(s) ago. Don't let this sub on site or pay until a current "
               u"certificate is on file."_s;
    }
    void complianceNotice()
    {
        QFETCH(QString, expires);
        QFETCH(QString, text);
        DateFmt::setToday(QDate(2026, 6, 1));
        DB db;
        project(db);
        const Rec cert = db.add(u"compliance"_s, {}, {}, {{u"expires"_s, expires}});
        ComplianceNotice notice(db, cert.id);
        QCOMPARE(notice.text(), text);
    }

    void missingRecordDrawsNothing()
    {
        DB db;
        Nav nav;
        project(db);
        for (const ModuleDef &m : Modules::all()) {
            QVERIFY(!makeModuleExtras(db, nav, m, u"gone"_s, nullptr));
            QVERIFY(!makeModuleExtrasAfterLines(db, nav, m, u"gone"_s, nullptr));
            QVERIFY(!makeLinesEditor(db, nav, m, u"gone"_s, nullptr));
        }
    }
};

TRESTLE_TEST(ExtrasTests);
#include "extrastests.moc"
