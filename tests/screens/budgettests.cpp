// The budget and job-cost screens on a private store: which budget figures
// are editable, removing and adding lines, and costs against the budget.
#include "testmain.h"

#include "catalog/modules.h"
#include "documents/printsource.h"
#include "look/buttons.h"
#include "screens/budgetscreen.h"
#include "screens/jobcostscreen.h"
#include "screens/kpitile.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/numberfield.h"
#include "shell/pickproject.h"
#include "store/db.h"

#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

class BudgetTests : public QObject
{
    Q_OBJECT

    struct Shop
    {
        DB db;
        Nav nav;
        Rec project;
        QString concrete, framing;
        Shop()
        {
            db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
            project =
                db.add(u"project"_s, {}, {}, {{u"name"_s, u"Harbor Lofts"_s}, {u"contract"_s, u"1000000"_s}});
            const QList<Rec> codes = db.costCodes();
            concrete = codes.at(0).id;
            framing = codes.at(1).id;
            nav.setProjectID(project.id);
        }
        void line(const QString &code, qint64 cents)
        {
            db.add(u"budget_line"_s, project.id, {},
                   {{u"costCode"_s, code}, {u"original"_s, QString::number(cents)}});
        }
        // A change order of the project with one line of `cents` on `code`.
        void co(const QString &status, const QString &code, qint64 cents)
        {
            const Rec co = db.add(u"co"_s, project.id, {}, {{u"kind"_s, u"owner"_s}, {u"status"_s, status}});
            db.add(u"co_line"_s, project.id, co.id,
                   {{u"costCode"_s, code},
                    {u"qty"_s, u"1"_s},
                    {u"unitCost"_s, QString::number(cents)},
                    {u"amount"_s, QString::number(cents)}});
        }
    };

    static std::unique_ptr<BudgetScreen> budgetScreen(Shop &s)
    {
        return std::make_unique<BudgetScreen>(ScreenContext{s.db, s.nav, *Modules::get(u"budget")});
    }

    static QString rowOf(const MoneyGrid *grid, const QString &code)
    {
        for (const QString &key : grid->keys())
            if (key.section(u'\x1f', 0, 0) == code)
                return key;
        return {};
    }

private Q_SLOTS:
    void editableOnlyForOneLine_data()
    {
        QTest::addColumn<int>("lines");
        QTest::addColumn<bool>("viaCO");
        QTest::addColumn<bool>("editable");
        QTest::newRow("one line") << 1 << false << true;
        QTest::newRow("one line and a change order") << 1 << true << true;
        QTest::newRow("two lines") << 2 << false << false;
        QTest::newRow("change order only") << 0 << true << false;
    }
    void editableOnlyForOneLine()
    {
        QFETCH(int, lines);
        QFETCH(bool, viaCO);
        QFETCH(bool, editable);
        Shop s;
        for (int i = 0; i < lines; ++i)
            s.line(s.concrete, 50000);
        if (viaCO)
            s.co(u"approved"_s, s.concrete, 7000);
        auto screen = budgetScreen(s);
        const QString key = rowOf(screen->grid(), s.concrete);
        QVERIFY(!key.isEmpty());
        QCOMPARE(screen->grid()->cell<NumberField>(key, 1) != nullptr, editable);
        QCOMPARE(screen->grid()->cell<FWChromeButton>(key, 6) != nullptr, editable);
        QCOMPARE(screen->grid()->cell<MoneyCell>(key, 1) != nullptr, !editable);
        if (!editable)
            QCOMPARE(screen->grid()->cell<MoneyCell>(key, 1)->value(), qint64(lines * 50000));
        // The revised figure takes the approved change order.
        QCOMPARE(screen->grid()->cell<MoneyCell>(key, 3)->value(),
                 qint64(lines * 50000 + (viaCO ? 7000 : 0)));
        // The total row is never editable.
        QVERIFY(screen->grid()->cell<MoneyCell>(BudgetScreen::totalKey(), 1));
    }

    void typingAndRemoving()
    {
        Shop s;
        s.line(s.concrete, 50000);
        auto screen = budgetScreen(s);
        const QString key = rowOf(screen->grid(), s.concrete);
        NumberField *box = screen->grid()->cell<NumberField>(key, 1);
        QVERIFY(box);
        QCOMPARE(box->box()->text(), u"500.00"_s);
        screen->show();
        screen->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(screen.get()));
        box->box()->setFocus();
        box->box()->selectAll();
        QTest::keyClicks(box->box(), u"1,234.5"_s);
        const Rec line = s.db.list(u"budget_line"_s).at(0);
        QCOMPARE(line.f.value(u"original"), u"123450"_s);
        // A refresh while typing keeps the same box, with what the user typed.
        screen->refresh();
        QCOMPARE(screen->grid()->cell<NumberField>(key, 1), box);
        QCOMPARE(box->box()->text(), u"1,234.5"_s);
        QCOMPARE(screen->grid()->cell<MoneyCell>(BudgetScreen::totalKey(), 3)->value(), qint64(123450));

        screen->grid()->cell<FWChromeButton>(key, 6)->click();
        QCOMPARE(s.db.count(u"budget_line"_s), 0);
        screen->refresh();
        QCOMPARE(screen->grid()->keys(), QStringList{BudgetScreen::totalKey()});
    }

    void addLine_data()
    {
        QTest::addColumn<bool>("coded");
        QTest::newRow("with a code") << true;
        QTest::newRow("uncoded") << false;
    }
    void addLine()
    {
        QFETCH(bool, coded);
        Shop s;
        auto screen = budgetScreen(s);
        if (coded) {
            const ThemedChoice::Options &options = screen->codeChoice()->options();
            const auto at = std::find_if(options.begin(), options.end(),
                                         [&](const auto &o) { return o.first == s.framing; });
            QVERIFY(at != options.end());
            Q_EMIT screen->codeChoice()->activated(int(at - options.begin()));
            QCOMPARE(screen->addCode, s.framing);
        }
        screen->addButton()->click();
        const QList<Rec> lines = s.db.list(u"budget_line"_s);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines[0].project, s.project.id);
        QCOMPARE(lines[0].f.value(u"original"), u"0"_s);
        QCOMPARE(lines[0].f.value(u"costCode"), coded ? s.framing : QString());
        QCOMPARE(lines[0].f.value(u"description"), coded ? s.db.label(s.framing) : QString());
        screen->refresh();
        const QString key = rowOf(screen->grid(), coded ? s.framing : QString());
        QCOMPARE(screen->grid()->cell<QLabel>(key, 0)->text(), coded ? s.db.label(s.framing) : u"Uncoded"_s);
    }

    void tiles()
    {
        Shop s;
        s.line(s.concrete, 600000);
        s.co(u"approved"_s, s.concrete, 100000);
        s.co(u"pending"_s, s.framing, 25000);
        auto screen = budgetScreen(s);
        const QList<KPITile *> &t = screen->tiles();
        QCOMPARE(t.size(), 5);
        QCOMPARE(t[0]->value(), u"$10,000.00"_s);
        QVERIFY(t[0]->note().startsWith(u"Approved changes"_s));
        // Revised cost budget 7,000.00 against the revised contract.
        QCOMPARE(t[2]->value(), u"$7,000.00"_s);
        QVERIFY(t[3]->note().endsWith(u'%'));
        QCOMPARE(t[4]->title(), u"Pending exposure"_s);
    }

    void noProjectShowsPicker()
    {
        Shop s;
        s.nav.setProjectID(QString());
        auto screen = budgetScreen(s);
        QVERIFY(!screen->bodyShown());
        QVERIFY(screen->picker());
        QCOMPARE(screen->picker()->title(), u"Choose a project"_s);
        s.nav.setProjectID(s.project.id);
        screen->refresh();
        QVERIFY(screen->bodyShown());
    }

    void costOutsideBudget()
    {
        Shop s;
        s.line(s.concrete, 100000);
        // Committed larger than actual drives the variance.
        const Rec po =
            s.db.add(u"po"_s, s.project.id, {}, {{u"status"_s, u"Issued"_s}, {u"costCode"_s, s.concrete}});
        s.db.add(u"po_line"_s, s.project.id, po.id, {{u"qty"_s, u"1"_s}, {u"unitCost"_s, u"120000"_s}});
        s.db.add(u"expense"_s, s.project.id, {}, {{u"costCode"_s, s.concrete}, {u"amount"_s, u"50000"_s}});
        // Spending on a code with no budget.
        s.db.add(u"expense"_s, s.project.id, {}, {{u"costCode"_s, s.framing}, {u"amount"_s, u"9000"_s}});
        JobCostScreen screen(ScreenContext{s.db, s.nav, *Modules::get(u"jobcost")});
        const MoneyGrid *grid = screen.grid();
        QCOMPARE(grid->keys(), (QStringList{s.concrete, s.framing, JobCostScreen::totalKey()}));

        QCOMPARE(grid->cell<MoneyCell>(s.concrete, 5)->value(), qint64(-20000));
        QCOMPARE(grid->cell<MoneyCell>(s.concrete, 5)->tint(), MoneyCell::red());
        QCOMPARE(grid->cell<QWidget>(s.concrete, 1)->findChild<QLabel *>()->text(), u"50.0%"_s);
        QCOMPARE(grid->cell<QWidget>(s.concrete, 1)->findChild<GlowBar *>()->fraction(), 0.5);

        QCOMPARE(grid->cell<MoneyCell>(s.framing, 2)->value(), qint64(0));
        QCOMPARE(grid->cell<MoneyCell>(s.framing, 4)->value(), qint64(9000));
        QCOMPARE(grid->cell<MoneyCell>(s.framing, 5)->value(), qint64(-9000));
        QCOMPARE(grid->cell<MoneyCell>(s.framing, 5)->tint(), MoneyCell::red());
        QCOMPARE(grid->cell<QWidget>(s.framing, 1)->findChild<QLabel *>()->text(), u"0.0%"_s);
        QCOMPARE(grid->cell<QWidget>(s.framing, 1)->findChild<GlowBar *>()->fraction(), 1.0);

        // The total's variance is taken on the totals: 100000 − max(120000, 59000).
        QCOMPARE(grid->cell<MoneyCell>(JobCostScreen::totalKey(), 5)->value(), qint64(-20000));
        QCOMPARE(screen.tiles().at(3)->value(), u"-$200.00"_s);
    }

    void spentFigures_data()
    {
        QTest::addColumn<qint64>("budget");
        QTest::addColumn<qint64>("actual");
        QTest::addColumn<double>("pct");
        QTest::addColumn<double>("fraction");
        QTest::newRow("nothing at all") << qint64(0) << qint64(0) << 0.0 << 0.0;
        QTest::newRow("a third") << qint64(300) << qint64(100) << 33.3 << 1.0 / 3.0;
        QTest::newRow("over") << qint64(1000) << qint64(1500) << 150.0 << 1.5;
        QTest::newRow("no budget, spent") << qint64(0) << qint64(1) << 0.0 << 1.0;
        QTest::newRow("no budget, refund") << qint64(0) << qint64(-5) << 0.0 << 0.0;
    }
    void spentFigures()
    {
        QFETCH(qint64, budget);
        QFETCH(qint64, actual);
        QFETCH(double, pct);
        QFETCH(double, fraction);
        const Calc::CostRow row{budget, 0, actual};
        QCOMPARE(JobCostScreen::spentPercent(row), pct);
        QCOMPARE(JobCostScreen::spentFraction(row), fraction);
    }

    void printJobs()
    {
        Shop s;
        s.line(s.concrete, 50000);
        const PrintJob budget = BudgetScreen::printJob(s.db, s.project.id);
        QCOMPARE(budget.title, u"Budget Harbor Lofts"_s);
        const std::optional<PrintSource> b = budget.make();
        QVERIFY(b);
        QVERIFY(b->html.contains(u"Project Budget"_s));
        QVERIFY(b->html.contains(u"$500.00"_s));
        const PrintJob cost = JobCostScreen::printJob(s.db, s.project.id);
        QCOMPARE(cost.title, u"Job Cost Harbor Lofts"_s);
        QVERIFY(cost.make()->html.contains(u"% spent"_s));
        // A project deleted since leaves nothing to print.
        s.db.remove(s.project.id);
        QVERIFY(!budget.make());
    }

    void emptyProjectHasZeroTotal()
    {
        Shop s;
        auto screen = budgetScreen(s);
        QCOMPARE(screen->grid()->keys(), QStringList{BudgetScreen::totalKey()});
        QCOMPARE(screen->grid()->cell<QLabel>(BudgetScreen::totalKey(), 0)->text(), u"TOTAL"_s);
        for (int c = 1; c <= 5; ++c)
            QCOMPARE(screen->grid()->cell<MoneyCell>(BudgetScreen::totalKey(), c)->value(), qint64(0));
    }
};

TRESTLE_TEST(BudgetTests);
#include "budgettests.moc"
