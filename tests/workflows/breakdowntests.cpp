// Breakdowns against the figures the screens show: on random companies and on
// the sample company, every figure's rows add up to it to the cent, each row's
// record is there and belongs to the project, a figure made of figures agrees
// with each of them, and a change to one record changes its row alone.
#include "testmain.h"

#include "calc/budget.h"
#include "calc/money.h"
#include "calc/payapp.h"
#include "calc/rules.h"
#include "calc/totals.h"
#include "interchange/sample.h"
#include "store/db.h"
#include "workflows/breakdown.h"
#include "workflows/figures.h"
#include "workflows/wipschedule.h"

#include <QtCore/QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {

QString n(qint64 v)
{
    return QString::number(v);
}

// A project of every kind of money record, made as a user would make them.
Rec randomProject(DB &db, QRandomGenerator &rnd, int index)
{
    const auto money = [&rnd](int low, int high) { return qint64(rnd.bounded(low, high)); };
    const QStringList statuses{u"Active"_s, u"On hold"_s, u"Complete"_s, u"Closeout"_s};
    const Rec p = db.add(u"project"_s, {}, {},
                         {{u"name"_s, u"Job "_s + n(index)},
                          {u"number"_s, u"R-"_s + n(index)},
                          {u"status"_s, statuses.at(int(rnd.bounded(qsizetype(statuses.size()))))},
                          {u"contract"_s, n(rnd.bounded(4) == 0 ? 0 : money(100000, 90000000))}});
    QStringList codes{QString()};
    for (int c = 0; c < 3; ++c)
        codes << db.add(u"cost_code"_s, {}, {},
                        {{u"code"_s, u"0"_s + n(index) + n(c)}, {u"name"_s, u"Work"_s}})
                     .id;
    auto code = [&] { return codes.at(int(rnd.bounded(qsizetype(codes.size())))); };
    // The first project always has a budget; the others may have none.
    if (index == 0 || rnd.bounded(5) > 0)
        for (int i = 0; i < 4; ++i)
            db.add(u"budget_line"_s, p.id, {},
                   {{u"costCode"_s, code()}, {u"original"_s, n(money(0, 9000000))}});
    for (const QString &status : {u"approved"_s, u"pending"_s, u"rejected"_s})
        for (const QString &kind : {u"owner"_s, u"sub"_s}) {
            const Rec co = db.add(u"co"_s, p.id, {},
                                  {{u"kind"_s, kind},
                                   {u"status"_s, status},
                                   {u"markup"_s, u"12.5"_s},
                                   {u"date"_s, u"2026-0"_s + n(rnd.bounded(1, 9)) + u"-11"_s}});
            for (int l = 0; l < 2; ++l)
                db.add(u"co_line"_s, p.id, co.id,
                       {{u"costCode"_s, code()}, {u"amount"_s, n(money(-50000, 400000))}});
        }
    for (const QString &status : {u"Draft"_s, u"Issued"_s, u"Received"_s, u"Void"_s}) {
        const Rec po = db.add(u"po"_s, p.id, {}, {{u"status"_s, status}, {u"costCode"_s, code()}});
        for (int l = 0; l < 3; ++l)
            db.add(u"po_line"_s, p.id, po.id,
                   {{u"costCode"_s, l == 0 ? QString() : code()},
                    {u"qty"_s, QString::number(rnd.bounded(1, 400) / 3.0, 'g', 10)},
                    {u"unitCost"_s, n(money(1, 90000))}});
    }
    for (int i = 0; i < 12; ++i) {
        const QString date = u"2026-%1-%2"_s.arg(rnd.bounded(1, 13), 2, 10, QChar(u'0'))
                                 .arg(rnd.bounded(1, 28), 2, 10, QChar(u'0'));
        db.add(u"expense"_s, p.id, {},
               {{u"costCode"_s, code()}, {u"amount"_s, n(money(-2000, 900000))}, {u"date"_s, date}});
        db.add(u"timecard"_s, p.id, {},
               {{u"costCode"_s, code()},
                {u"date"_s, date},
                {u"in"_s, u"07:00"_s},
                {u"out"_s, i % 5 == 0 ? u"03:10"_s : u"15:4"_s + n(i % 10)},
                {u"break"_s, n(rnd.bounded(0, 45))},
                {u"rate"_s, n(money(1500, 9000))}});
    }
    const Rec machine = db.add(u"equipment"_s, {}, {}, {{u"name"_s, u"Loader"_s}, {u"rate"_s, u"12575"_s}});
    for (const QString &which : {machine.id, u"GONE"_s})
        db.add(u"equip_log"_s, p.id, {},
               {{u"equipment"_s, which}, {u"hours"_s, u"7.35"_s}, {u"costCode"_s, code()}});
    QList<Rec> sov;
    for (int i = 0; i < 3; ++i)
        sov << db.add(u"sov_line"_s, p.id, {},
                      {{u"scheduled"_s, n(money(100000, 5000000))}, {u"sort"_s, n(i)}});
    const QStringList appStatus{u"paid"_s, u"approved"_s, u"submitted"_s, u"draft"_s};
    for (int a = 0; a < 4; ++a) {
        const Rec app = db.add(u"pay_app"_s, p.id, {},
                               {{u"number"_s, n(a + 1)},
                                {u"status"_s, appStatus.at(a)},
                                {u"retWork"_s, a == 3 ? u"0"_s : u"10"_s},
                                {u"retMat"_s, u"5"_s}});
        for (const Rec &line : sov)
            if (rnd.bounded(3) > 0)
                setPayLine(db, app, line.id, money(-1000, 90000), money(0, 3) == 0 ? money(0, 50000) : 0);
    }
    for (const QString &status : {u"Draft"_s, u"Sent"_s, u"Void"_s}) {
        const Rec inv = db.add(u"invoice"_s, p.id, {},
                               {{u"status"_s, status}, {u"tax"_s, u"8.25"_s}, {u"ret"_s, u"10"_s}});
        for (int l = 0; l < 2; ++l)
            db.add(u"inv_line"_s, p.id, inv.id, {{u"qty"_s, u"2.5"_s}, {u"unitPrice"_s, n(money(1, 99999))}});
    }
    db.add(u"payment"_s, p.id, {}, {{u"direction"_s, u"Received"_s}, {u"amount"_s, n(money(1, 500000))}});
    db.add(u"payment"_s, p.id, {}, {{u"direction"_s, u"Paid out"_s}, {u"amount"_s, u"999"_s}});
    const Rec est = db.add(u"estimate"_s, p.id, {}, {{u"markup"_s, u"15"_s}, {u"tax"_s, u"7.75"_s}});
    for (int l = 0; l < 3; ++l)
        db.add(u"est_line"_s, p.id, est.id, {{u"qty"_s, u"0.333"_s}, {u"unitCost"_s, n(money(1, 99999))}});
    const Rec item = db.add(u"unit_item"_s, p.id, {},
                            {{u"bidQty"_s, u"1200"_s}, {u"unitPrice"_s, u"1875"_s}, {u"unit"_s, u"SY"_s}});
    for (const QString &qty : {u"120.5"_s, u"33.25"_s, u"-4"_s})
        db.add(u"qty_log"_s, p.id, {}, {{u"item"_s, item.id}, {u"qty"_s, qty}});
    return p;
}

// Every breakdown the program can make of the current company: each figure of
// each project, by cost code, and of each record it has a figure for.
QList<FigureRef> everyRef(const DB &db)
{
    QList<FigureRef> refs;
    const QList<Rec> projects = db.list(u"project"_s);
    for (const Explain::Figure &f : Explain::figures()) {
        if (f.subject.isEmpty()) {
            if (!f.needsProject)
                refs << FigureRef{f.name, {}, {}};
            for (const Rec &p : projects)
                if (f.needsProject || f.name.startsWith(u"hub."))
                    refs << FigureRef{f.name, p.id, {}};
        } else if (f.subject == u"cost_code") {
            for (const Rec &p : projects) {
                refs << FigureRef{f.name, p.id, {}} << FigureRef{f.name, p.id, Explain::kUncoded};
                for (const QString &code : jobCost(db, p.id).order)
                    if (!code.isEmpty())
                        refs << FigureRef{f.name, p.id, code};
            }
        } else {
            for (const Rec &r : db.list(f.subject))
                refs << FigureRef{f.name, {}, r.id};
        }
    }
    return refs;
}

// What a figure adds up to, as the screens and documents show it.
std::optional<qint64> shown(const DB &db, const FigureRef &ref)
{
    const Rec *project = db.find(ref.project);
    const Rec *subject = db.find(ref.subject);
    const QString &name = ref.name;
    if (name.startsWith(u"jobcost.") && ref.subject.isEmpty()) {
        const Calc::JobCost jc = jobCost(db, ref.project);
        if (name == u"jobcost.budget")
            return jc.total.budget;
        if (name == u"jobcost.committed")
            return jc.total.committed;
        if (name == u"jobcost.actual")
            return jc.total.actual;
        return Calc::variance(jc.total);
    }
    if (name.startsWith(u"payapp.") && subject) {
        const PayAppData d = payAppData(db, *subject);
        const Calc::G702 &g = d.calc.g702;
        const QHash<QString, qint64> lines{{u"payapp.original"_s, g.l1},
                                           {u"payapp.changes"_s, g.l2},
                                           {u"payapp.contractsum"_s, g.l3},
                                           {u"payapp.completed"_s, g.l4},
                                           {u"payapp.retainage.work"_s, g.l5a},
                                           {u"payapp.retainage.stored"_s, g.l5b},
                                           {u"payapp.retainage"_s, g.l5},
                                           {u"payapp.earned"_s, g.l6},
                                           {u"payapp.previous"_s, g.l7},
                                           {u"payapp.due"_s, g.l8},
                                           {u"payapp.balance"_s, g.l9},
                                           {u"payapp.scheduled"_s, d.calc.totals.scheduled},
                                           {u"payapp.workprevious"_s, d.calc.totals.previous},
                                           {u"payapp.thisperiod"_s, d.calc.totals.thisPeriod},
                                           {u"payapp.stored"_s, d.calc.totals.stored},
                                           {u"payapp.tofinish"_s, d.calc.totals.balance}};
        return lines.value(name);
    }
    if (name.startsWith(u"wip.") && project) {
        if (!WipSchedule::listed(project->f.value(u"status")))
            return std::nullopt;
        const WipLine l = WipSchedule::line(*project, ProjectFigures::of(db, *project));
        const QHash<QString, qint64> cols{{u"wip.contract"_s, l.contract},
                                          {u"wip.estimatedcost"_s, l.estimatedCost},
                                          {u"wip.grossprofit"_s, l.estimatedProfit},
                                          {u"wip.costtodate"_s, l.costToDate},
                                          {u"wip.costtocomplete"_s, l.costToComplete},
                                          {u"wip.earned"_s, l.earned},
                                          {u"wip.profittodate"_s, l.profitToDate},
                                          {u"wip.lossprovision"_s, l.lossProvision},
                                          {u"wip.billed"_s, l.billed},
                                          {u"wip.overbilled"_s, l.overBilled},
                                          {u"wip.underbilled"_s, l.underBilled},
                                          {u"wip.backlog"_s, l.backlog}};
        return cols.value(name);
    }
    if (name.startsWith(u"contract.") && project) {
        const Calc::ContractSummary c = contract(db, *project);
        return name == u"contract.original"   ? c.original
               : name == u"contract.approved" ? c.approved
               : name == u"contract.pending"  ? c.pending
                                              : c.revised;
    }
    if (name == u"project.billed" && project)
        return ProjectFigures::of(db, *project).billed;
    if (name == u"project.retainage" && project)
        return ProjectFigures::of(db, *project).retainage;
    if (name == u"project.paid" && project)
        return ProjectFigures::of(db, *project).paid;
    if (name == u"co.total" && subject)
        return coTotals(db, *subject).total;
    if (name == u"invoice.due" && subject)
        return invoiceTotals(db, *subject).due;
    if (name == u"estimate.total" && subject)
        return estimateTotals(db, *subject).total;
    if (name == u"po.total" && subject)
        return poTotal(db, *subject);
    return std::nullopt;
}

// The rules every breakdown keeps; `what` names it in a failure.
void checkAll(const DB &db)
{
    const QList<FigureRef> refs = everyRef(db);
    QVERIFY(refs.size() > 50);
    int checked = 0;
    for (const FigureRef &ref : refs) {
        const QString what = ref.name + u' ' + ref.project + u' ' + ref.subject;
        QString error;
        const std::optional<Breakdown> b = Explain::explain(db, ref, &error);
        if (!b) {
            // Only a project still bidding has no WIP line.
            const Rec *p = db.find(ref.project);
            QVERIFY2(ref.name.startsWith(u"wip.") && p && p->f.value(u"status") == u"Bidding",
                     qPrintable(what + u": "_s + error));
            continue;
        }
        ++checked;
        qint64 sum = 0;
        double qty = 0;
        for (const Calc::Part &row : b->rows) {
            sum = Money::add(sum, row.amount);
            qty += row.qty;
            if (!row.record.isEmpty()) {
                const Rec *rec = db.find(row.record);
                QVERIFY2(rec, qPrintable(what + u": no record "_s + row.record));
                const QString owner = rec->kind == u"project" ? rec->id : rec->project;
                if (!b->ref.project.isEmpty())
                    QVERIFY2(owner == b->ref.project, qPrintable(what + u": a row of another project"_s));
            }
            // A row that stands for a figure carries that figure (a product's row carries its rule instead).
            if (const std::optional<FigureRef> sub = Explain::subFigure(*b, row);
                sub && (row.rule.isEmpty() || !row.record.isEmpty())) {
                const std::optional<Breakdown> inner = Explain::explain(db, *sub, &error);
                QVERIFY2(inner, qPrintable(what + u" → "_s + sub->name + u": "_s + error));
                QVERIFY2(inner->total == row.amount || inner->total == -row.amount,
                         qPrintable(what + u" → "_s + sub->name + u": "_s + Money::fmt(inner->total) +
                                    u" against the row's "_s + Money::fmt(row.amount)));
            }
        }
        if (b->quantity)
            QCOMPARE(qty, b->qtyTotal);
        else
            QVERIFY2(sum == b->total, qPrintable(what + u": rows "_s + Money::fmt(sum) + u", total "_s +
                                                 Money::fmt(b->total)));
        if (const std::optional<qint64> figure = shown(db, b->ref))
            QVERIFY2(b->total == *figure, qPrintable(what + u": "_s + Money::fmt(b->total) + u" shown as "_s +
                                                     Money::fmt(*figure)));
        // The text ends with the total, after one line per row.
        const QStringList text = Explain::lines(*b);
        QCOMPARE(text.size(), b->rows.size() + 1);
        QCOMPARE(text.last(), u"Total\t"_s + Explain::totalText(*b));
        for (qsizetype i = 0; i + 1 < text.size(); ++i)
            QCOMPARE(text.at(i).count(u'\t'), 4);
    }
    QVERIFY(checked > 50);
}

} // namespace

class BreakdownTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void randomCompanies_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed : {1u, 7u, 42u, 2026u})
            QTest::newRow(qPrintable(u"seed %1"_s.arg(seed))) << seed;
    }

    void randomCompanies()
    {
        QFETCH(quint32, seed);
        QRandomGenerator rnd(seed);
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        for (int i = 0; i < 3; ++i)
            randomProject(db, rnd, i);
        checkAll(db);
    }

    void sampleCompany()
    {
        DB db;
        Sample::create(db);
        checkAll(db);
    }

    // The sample's job with cost and no budget, and its job billed with no contract.
    void sampleMarks_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("mark");
        QTest::newRow("no estimate") << u"GV-102"_s << u"No estimate"_s;
        QTest::newRow("no contract") << u"GV-103"_s << u"No contract"_s;
    }

    void sampleMarks()
    {
        QFETCH(QString, number);
        QFETCH(QString, mark);
        DB db;
        Sample::create(db);
        const QList<Rec> projects = db.list(u"project"_s);
        const auto it = std::find_if(projects.begin(), projects.end(),
                                     [&](const Rec &p) { return p.f.value(u"number") == number; });
        QVERIFY2(it != projects.end(), qPrintable(u"the sample has no "_s + number));
        const WipLine l = WipSchedule::line(*it, ProjectFigures::of(db, *it));
        QCOMPARE(WipSchedule::markText(l.mark), mark);
        QCOMPARE(l.estimatedProfit, 0);
        QVERIFY(l.earned <= std::max<qint64>(l.contract, 0));
        QVERIFY(l.earned <= std::max<qint64>(l.costToDate, 0));
        // The breakdown says which rule applied.
        const std::optional<Breakdown> earned = Explain::explain(db, {u"wip.earned"_s, it->id, {}});
        QVERIFY(earned);
        QVERIFY2(earned->rule.startsWith(mark), qPrintable(earned->rule));
    }

    // A timecard's hours changed: its row alone changes, and the total by as much.
    void oneRecordOneRow_data()
    {
        QTest::addColumn<QString>("figure");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("timecard hours") << u"jobcost.actual"_s << u"timecard"_s << u"out"_s << u"18:15"_s;
        QTest::newRow("bill amount") << u"jobcost.actual"_s << u"expense"_s << u"amount"_s << u"123456"_s;
        QTest::newRow("PO line price") << u"jobcost.committed"_s << u"po_line"_s << u"unitCost"_s << u"777"_s;
        QTest::newRow("budget line") << u"budget.original"_s << u"budget_line"_s << u"original"_s << u"5"_s;
        QTest::newRow("payment") << u"project.paid"_s << u"payment"_s << u"amount"_s << u"31415"_s;
    }

    void oneRecordOneRow()
    {
        QFETCH(QString, figure);
        QFETCH(QString, kind);
        QFETCH(QString, key);
        QFETCH(QString, value);
        QRandomGenerator rnd(5);
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        const Rec p = randomProject(db, rnd, 0);
        const FigureRef ref{figure, p.id, {}};
        const Breakdown before = *Explain::explain(db, ref);
        // The middle one of the rows of that kind, so that a shifted row would show.
        QList<Calc::Part> ofKind;
        for (const Calc::Part &row : before.rows)
            if (row.kind == kind)
                ofKind << row;
        QVERIFY2(!ofKind.isEmpty(), qPrintable(u"no row of kind "_s + kind));
        const Calc::Part target = ofKind.at(ofKind.size() / 2);
        Rec rec = *db.get(target.record);
        rec.f.insert(key, value);
        db.save(rec);
        const Breakdown after = *Explain::explain(db, ref);
        QCOMPARE(after.rows.size(), before.rows.size());
        int changed = 0;
        for (qsizetype i = 0; i < after.rows.size(); ++i) {
            const Calc::Part &a = after.rows.at(i);
            const auto was = std::find_if(before.rows.begin(), before.rows.end(),
                                          [&](const Calc::Part &b) { return b.record == a.record; });
            QVERIFY(was != before.rows.end());
            if (a.record == target.record) {
                QVERIFY(a.amount != was->amount);
                QCOMPARE(after.total - before.total, a.amount - was->amount);
                ++changed;
            } else {
                QCOMPARE(a.amount, was->amount);
                QCOMPARE(a.rule, was->rule);
            }
        }
        QCOMPARE(changed, 1);
    }

    // Bad references are refused in words, never answered with a wrong figure.
    void refused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("withProject");
        QTest::addColumn<QString>("subject");
        QTest::addColumn<QString>("why");
        QTest::newRow("unknown figure") << u"jobcost.nothing"_s << true << QString() << u"no figure"_s;
        QTest::newRow("project figure without a project")
            << u"jobcost.actual"_s << false << QString() << u"needs a project"_s;
        QTest::newRow("pay-app figure without the application")
            << u"payapp.due"_s << true << QString() << u"needs the id"_s;
        QTest::newRow("pay-app figure of a change order")
            << u"payapp.due"_s << true << u"CO"_s << u"no record of kind pay_app"_s;
        QTest::newRow("a cost code that is not one")
            << u"jobcost.actual"_s << true << u"NOPE"_s << u"no cost code"_s;
        QTest::newRow("a project figure given a record")
            << u"wip.earned"_s << true << u"CO"_s << u"takes no record"_s;
    }

    void refused()
    {
        QFETCH(QString, name);
        QFETCH(bool, withProject);
        QFETCH(QString, subject);
        QFETCH(QString, why);
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        const Rec p = db.add(u"project"_s, {}, {}, {{u"contract"_s, u"100"_s}});
        const Rec co = db.add(u"co"_s, p.id, {}, {{u"kind"_s, u"owner"_s}});
        QString error;
        const std::optional<Breakdown> b = Explain::explain(
            db, {name, withProject ? p.id : QString(), subject == u"CO" ? co.id : subject}, &error);
        QVERIFY(!b);
        QVERIFY2(error.contains(why), qPrintable(error));
    }
};

TRESTLE_TEST(BreakdownTests);
#include "breakdowntests.moc"
