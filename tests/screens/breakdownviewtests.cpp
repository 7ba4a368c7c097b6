// The breakdown window on a private store: figures on the money screens open
// it, a row opens its record and the window stays where it was, a figure of
// figures opens in turn and Back returns to the row left, a change to a record
// shows at once in place, and the PDF and CSV carry what the window shows.
#include "testmain.h"

#include "calc/budget.h"
#include "calc/money.h"
#include "catalog/modules.h"
#include "documents/pdfcheck.h"
#include "interchange/csv.h"
#include "look/buttons.h"
#include "screens/breakdownview.h"
#include "screens/budgetscreen.h"
#include "screens/figurelink.h"
#include "screens/hubscreen.h"
#include "screens/jobcostscreen.h"
#include "screens/kpitile.h"
#include "screens/moneygrid.h"
#include "screens/wipscheduleview.h"
#include "shell/moduleextras.h"
#include "shell/nav.h"
#include "shell/totalsbox.h"
#include "store/db.h"
#include "workflows/wipschedule.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>

using namespace Qt::StringLiterals;

namespace {

struct Shop
{
    DB db;
    Nav nav;
    Rec project;
    QString concrete;
    QList<Rec> cards;
    Shop()
    {
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        project =
            db.add(u"project"_s, {}, {},
                   {{u"name"_s, u"Harbor Lofts"_s}, {u"number"_s, u"HL-1"_s}, {u"contract"_s, u"1000000"_s}});
        concrete = db.costCodes().at(0).id;
        db.add(u"budget_line"_s, project.id, {}, {{u"costCode"_s, concrete}, {u"original"_s, u"500000"_s}});
        const Rec co =
            db.add(u"co"_s, project.id, {}, {{u"kind"_s, u"owner"_s}, {u"status"_s, u"approved"_s}});
        db.add(u"co_line"_s, project.id, co.id, {{u"costCode"_s, concrete}, {u"amount"_s, u"25000"_s}});
        // Enough timecards that the table scrolls.
        for (int i = 0; i < 60; ++i)
            cards << db.add(u"timecard"_s, project.id, {},
                            {{u"costCode"_s, concrete},
                             {u"date"_s, u"2026-10-%1"_s.arg(1 + i % 28, 2, 10, QChar(u'0'))},
                             {u"in"_s, u"07:00"_s},
                             {u"out"_s, u"15:30"_s},
                             {u"break"_s, u"30"_s},
                             {u"rate"_s, QString::number(4000 + i)}});
        nav.setProjectID(project.id);
    }
};

// The row of the table whose record is `id`.
int rowOf(const BreakdownView &view, const QString &id)
{
    const QList<Calc::Part> &rows = view.breakdown().rows;
    for (int r = 0; r < rows.size(); ++r)
        if (rows.at(r).record == id)
            return r;
    return -1;
}

} // namespace

class BreakdownViewTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Each tile and each figure of the job-cost grid opens the breakdown it stands for.
    void jobCostFigures_data()
    {
        QTest::addColumn<int>("tile");
        QTest::addColumn<QString>("figure");
        QTest::newRow("revised budget") << 0 << u"jobcost.budget"_s;
        QTest::newRow("committed") << 1 << u"jobcost.committed"_s;
        QTest::newRow("actual") << 2 << u"jobcost.actual"_s;
        QTest::newRow("variance") << 3 << u"jobcost.variance"_s;
    }

    void jobCostFigures()
    {
        QFETCH(int, tile);
        QFETCH(QString, figure);
        Shop s;
        QWidget window;
        JobCostScreen screen(ScreenContext{s.db, s.nav, *Modules::get(u"jobcost")}, &window);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        KPITile *t = screen.tiles().at(tile);
        QTest::mouseClick(t, Qt::LeftButton);
        auto *view = window.findChild<BreakdownView *>(u"breakdown"_s);
        QVERIFY2(view, "a click on the tile opened no breakdown");
        QCOMPARE(view->breakdown().ref, (FigureRef{figure, s.project.id, {}}));
        // The tile's figure is the breakdown's total, in the same words.
        QCOMPARE(Money::fmt(view->breakdown().total), t->value());

        // The cost code's cell of the same column, by Enter on it.
        const QString code = screen.grid()->keys().first();
        auto *cell = screen.grid()->cell<MoneyCell>(code, 2 + tile);
        QVERIFY(cell);
        cell->setFocus();
        QTest::keyClick(cell, Qt::Key_Return);
        QCOMPARE(view->breakdown().ref, (FigureRef{figure, s.project.id, code}));
        QCOMPARE(view->breakdown().total, cell->value());
        view->back();
        QCOMPARE(view->breakdown().ref.subject, QString());
    }

    // The budget screen's tiles, and a figure cell of its grid.
    void budgetFigures_data()
    {
        QTest::addColumn<int>("tile");
        QTest::addColumn<QString>("figure");
        QTest::newRow("original contract") << 0 << u"contract.original"_s;
        QTest::newRow("revised contract") << 1 << u"contract.revised"_s;
        QTest::newRow("revised cost budget") << 2 << u"budget.revised"_s;
        QTest::newRow("projected margin") << 3 << u"budget.margin"_s;
        QTest::newRow("pending exposure") << 4 << u"contract.pending"_s;
    }

    void budgetFigures()
    {
        QFETCH(int, tile);
        QFETCH(QString, figure);
        Shop s;
        QWidget window;
        BudgetScreen screen(ScreenContext{s.db, s.nav, *Modules::get(u"budget")}, &window);
        window.show();
        KPITile *t = screen.tiles().at(tile);
        QTest::mouseClick(t, Qt::LeftButton);
        auto *view = window.findChild<BreakdownView *>(u"breakdown"_s);
        QVERIFY2(view, "a click on the tile opened no breakdown");
        QCOMPARE(view->breakdown().ref, (FigureRef{figure, s.project.id, {}}));
        QCOMPARE(Money::fmt(view->breakdown().total), t->value());
    }

    // The hub's tiles add up what it lists; a card's figures open that project's, leaving the choice alone.
    void hubFigures_data()
    {
        QTest::addColumn<int>("tile");
        QTest::addColumn<QString>("figure");
        QTest::newRow("revised contracts") << 0 << u"hub.revised"_s;
        QTest::newRow("pending exposure") << 1 << u"hub.pending"_s;
        QTest::newRow("billed") << 2 << u"hub.billed"_s;
        QTest::newRow("retainage") << 3 << u"hub.retainage"_s;
        QTest::newRow("cost") << 4 << u"hub.cost"_s;
    }

    void hubFigures()
    {
        QFETCH(int, tile);
        QFETCH(QString, figure);
        Shop s;
        s.nav.setProjectID(QString());
        QWidget window;
        HubScreen screen(ScreenContext{s.db, s.nav, *Modules::get(u"hub")}, &window);
        window.show();
        KPITile *t = screen.tiles().at(tile);
        QTest::mouseClick(t, Qt::LeftButton);
        auto *view = window.findChild<BreakdownView *>(u"breakdown"_s);
        QVERIFY2(view, "a click on the tile opened no breakdown");
        QCOMPARE(view->breakdown().ref, (FigureRef{figure, {}, {}}));
        QCOMPARE(Money::fmt(view->breakdown().total), t->value());

        QVERIFY(!screen.cards().isEmpty());
        QTest::mouseClick(screen.cards().first()->figures().at(1), Qt::LeftButton);
        QCOMPARE(view->breakdown().ref, (FigureRef{u"project.billed"_s, s.project.id, {}}));
        QCOMPARE(s.nav.projectID(), QString());
    }

    // A job's cell of the WIP schedule opens its column's figure, by a click or by the keyboard.
    void wipScheduleCells()
    {
        Shop s;
        WipScheduleTable table;
        table.setSchedule(WipSchedule::of(s.db));
        table.resize(table.sizeHint());
        table.show();
        QVERIFY(QTest::qWaitForWindowExposed(&table));
        QSignalSpy opened(&table, &WipScheduleTable::figureOpened);
        int job = -1;
        for (int r = 0; r < table.rows().size(); ++r)
            if (table.rows().at(r).kind == WipScheduleTable::Kind::Job &&
                !table.rows().at(r).project.isEmpty())
                job = r;
        QVERIFY(job > 0);
        // The middle of the job's over-billings cell, found as the table finds it.
        QPoint at(-1, -1);
        for (int y = 0; y < table.height() && at.x() < 0; y += 2)
            for (int x = 0; x < table.width(); x += 3)
                if (table.cellAt({x, y}) == std::pair{job, 12}) {
                    at = {x + 8, y + 6};
                    break;
                }
        QVERIFY(at.x() >= 0);
        QTest::mouseClick(&table, Qt::LeftButton, {}, at);
        QCOMPARE(opened.size(), 1);
        QCOMPARE(opened.at(0).at(0).value<FigureRef>(), (FigureRef{u"wip.overbilled"_s, s.project.id, {}}));
        // Left skips nothing that opens: billed to date; % complete opens nothing and is passed over.
        table.setFocus();
        QTest::keyClick(&table, Qt::Key_Left);
        QTest::keyClick(&table, Qt::Key_Return);
        QCOMPARE(opened.last().at(0).value<FigureRef>().name, u"wip.billed"_s);
        for (int k = 0; k < 4; ++k)
            QTest::keyClick(&table, Qt::Key_Left);
        QCOMPARE(table.current(), (std::pair{job, 6}));
        // A total's cell opens nothing.
        QTest::keyClick(&table, Qt::Key_Down);
        QCOMPARE(table.current().first, job);
    }

    // A row opens its record in the main window; the breakdown keeps its row and scroll.
    void rowOpensRecordAndStays()
    {
        Shop s;
        QWidget window;
        window.show();
        BreakdownView *view =
            BreakdownView::show(&window, s.db, s.nav, {u"jobcost.actual"_s, s.project.id, {}});
        view->resize(700, 300);
        QVERIFY(QTest::qWaitForWindowExposed(view));
        QAbstractItemModel *model = view->table()->model();
        QCOMPARE(model->rowCount(), s.cards.size());
        const int row = 45;
        view->table()->setCurrentIndex(model->index(row, 2));
        view->table()->scrollTo(model->index(row, 0));
        const int scroll = view->table()->verticalScrollBar()->value();
        QVERIFY(scroll > 0);
        const QString id = view->breakdown().rows.at(row).record;

        QTest::keyClick(view->table(), Qt::Key_Return);
        QCOMPARE(s.nav.module(), u"timecards"_s);
        QCOMPARE(s.nav.selected(u"timecards"_s), id);
        // Coming back: the same figure, row and place.
        QCOMPARE(view->breakdown().ref.name, u"jobcost.actual"_s);
        QCOMPARE(view->table()->currentIndex().row(), row);
        QCOMPARE(view->table()->verticalScrollBar()->value(), scroll);

        // The record changes: its row shows the new amount on the next turn, in place.
        Rec card = *s.db.get(id);
        card.f.insert(u"out"_s, u"17:30"_s);
        s.db.save(card);
        QTRY_COMPARE(view->breakdown().rows.at(rowOf(*view, id)).amount,
                     Money::fromDouble(10.0 * double(card.i(u"rate"))));
        QCOMPARE(view->table()->currentIndex().row(), rowOf(*view, id));
        QCOMPARE(view->table()->verticalScrollBar()->value(), scroll);
        QCOMPARE(model->index(rowOf(*view, id), 4).data().toString(),
                 Money::fmt(Money::fromDouble(10.0 * double(card.i(u"rate")))));
        QCOMPARE(view->breakdown().total, jobCost(s.db, s.project.id).total.actual);

        // A removed record leaves, and the row the user was on goes with it, not the whole place.
        s.db.remove(s.cards.first().id);
        QTRY_COMPARE(model->rowCount(), s.cards.size() - 1);
        QCOMPARE(rowOf(*view, s.cards.first().id), -1);
    }

    // A figure of figures opens each in turn; Back returns to the row left.
    void figureOfFigures()
    {
        Shop s;
        QWidget window;
        BreakdownView *view =
            BreakdownView::show(&window, s.db, s.nav, {u"budget.revised"_s, s.project.id, {}});
        QCOMPARE(view->table()->model()->rowCount(), 2);
        QVERIFY(!view->backButton()->isEnabled());
        const QString module = s.nav.module();
        view->table()->setCurrentIndex(view->table()->model()->index(1, 0));
        view->activate(1);
        QCOMPARE(view->breakdown().ref.name, u"budget.approved"_s);
        QCOMPARE(view->breakdown().total, 25000);
        QVERIFY(view->backButton()->isEnabled());
        QCOMPARE(s.nav.module(), module); // nothing opened in the main window
        view->back();
        QCOMPARE(view->breakdown().ref.name, u"budget.revised"_s);
        QCOMPARE(view->table()->currentIndex().row(), 1);
        QCOMPARE(view->breakdown().total, 525000);
    }

    // The PDF and the CSV: the figure's name, the project, the rule, the rows and the total.
    // The totals of a record editor open into the records they are made of, and
    // each one's breakdown comes to the amount the box shows.
    void editorTotalsOpenIntoTheirRecords_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("figures");
        QTest::newRow("estimate") << u"estimate"_s << 4;
        QTest::newRow("change order") << u"co"_s << 3;
        QTest::newRow("invoice") << u"invoice"_s << 4;
        QTest::newRow("purchase order") << u"po"_s << 1;
        QTest::newRow("contract") << u"project"_s << 4;
    }
    void editorTotalsOpenIntoTheirRecords()
    {
        QFETCH(QString, kind);
        QFETCH(int, figures);
        Shop shop;
        FigureLink::installForTotals();
        DB &db = shop.db;
        QString id = shop.project.id;
        if (kind == u"estimate" || kind == u"invoice" || kind == u"po") {
            const QString line = kind == u"estimate"  ? u"est_line"_s
                                 : kind == u"invoice" ? u"inv_line"_s
                                                      : u"po_line"_s;
            const Rec rec = db.add(kind, shop.project.id, {},
                                   {{u"markup"_s, u"10"_s}, {u"tax"_s, u"7.25"_s}, {u"ret"_s, u"5"_s}});
            for (const auto &[qty, price] : {std::pair{u"3"_s, u"12345"_s}, std::pair{u"2.5"_s, u"999"_s}})
                db.add(
                    line, shop.project.id, rec.id,
                    {{u"qty"_s, qty}, {u"unitPrice"_s, price}, {u"unitCost"_s, price}, {u"amount"_s, price}});
            id = rec.id;
        } else if (kind == u"co") {
            id = db.list(u"co"_s).first().id;
        }
        const ModuleDef *m = Modules::ofKind(kind);
        QVERIFY2(m, qPrintable(kind));
        std::unique_ptr<QWidget> after(makeModuleExtrasAfterLines(db, shop.nav, *m, id, nullptr));
        std::unique_ptr<QWidget> before(makeModuleExtras(db, shop.nav, *m, id, nullptr));
        TotalsBox *box = after ? after->findChild<TotalsBox *>() : nullptr;
        if (!box && before)
            box = before->findChild<TotalsBox *>();
        QVERIFY2(box, qPrintable(kind));
        int linked = 0;
        for (int i = 0; i < box->rows().size(); ++i) {
            const std::optional<FigureRef> ref = FigureLink::refOf(box->amountAt(i));
            if (!ref)
                continue;
            ++linked;
            const std::optional<Breakdown> b = Explain::explain(db, *ref);
            QVERIFY2(b, qPrintable(ref->name));
            // Retainage stands as a deduction in the box.
            const qint64 shown = box->rows().at(i).second;
            QCOMPARE(b->total, ref->name == u"invoice.retainage" ? Money::sub(0, shown) : shown);
        }
        QCOMPARE(linked, figures);
    }

    void pdfAndCsv()
    {
        Shop s;
        QWidget window;
        BreakdownView *view =
            BreakdownView::show(&window, s.db, s.nav, {u"budget.revised"_s, s.project.id, {}});
        QTemporaryDir dir;
        const QString pdf = dir.filePath(u"b.pdf"_s);
        QVERIFY(view->savePdf(pdf));
        // TRESTLE_KEEP_PDF=<folder> keeps the file for a look with pdftoppm.
        if (const QString keep = qEnvironmentVariable("TRESTLE_KEEP_PDF"); !keep.isEmpty()) {
            QFile::remove(keep + u"/breakdown.pdf"_s);
            QFile::copy(pdf, keep + u"/breakdown.pdf"_s);
        }
        const QList<QStringList> pages = PdfCheck::pageWords(pdf);
        QCOMPARE(pages.size(), 1);
        const QString text = pages.first().join(u' ');
        for (const QString &want :
             {u"Revised budget"_s, u"Harbor Lofts"_s, u"Rule:"_s, u"original budget + approved"_s,
              u"Original budget"_s, u"Approved changes"_s, u"$5,250.00"_s})
            QVERIFY2(text.contains(want), qPrintable(want + u" not in: "_s + text));

        const QString csv = dir.filePath(u"b.csv"_s);
        QVERIFY(view->saveCsv(csv));
        QFile file(csv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString body = QString::fromUtf8(file.readAll());
        QVERIFY2(body.contains(u"budget.original"_s), qPrintable(body));
        QVERIFY2(body.contains(u"5250.00"_s), qPrintable(body));
        QVERIFY2(body.contains(u"\nTotal,"_s) || body.contains(u"\r\nTotal,"_s), qPrintable(body));
    }
};

TRESTLE_TEST(BreakdownViewTests);
#include "breakdownviewtests.moc"
