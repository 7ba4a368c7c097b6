// What a screen reader is told about the painted parts of the screens: the
// schedule and figure grids as tables, a chart's data, tiles, pills, bars,
// segmented controls and decorative symbols.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "look/segment.h"
#include "look/statuspill.h"
#include "screens/accessible.h"
#include "screens/gantt.h"
#include "screens/ganttview.h"
#include "screens/kpitile.h"
#include "screens/moneygrid.h"
#include "screens/projectchart.h"
#include "screens/schedulescreen.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/numberfield.h"
#include "store/db.h"

#include <QtCharts/QChartView>
#include <QtGui/QAccessible>
#include <QtGui/QPixmap>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace {

QAccessibleInterface *iface(QObject *o)
{
    return QAccessible::queryAccessibleInterface(o);
}

QString name(QAccessibleInterface *i)
{
    return i ? i->text(QAccessible::Name) : u"<none>"_s;
}

// Every cell of row `row` of a table interface, by name.
QStringList rowNames(QAccessibleTableInterface *table, int row)
{
    QStringList out;
    for (int c = 0; c < table->columnCount(); ++c)
        out << name(table->cellAt(row, c));
    return out;
}

} // namespace

class AccessibleTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ScreenAccess::install(); }
    void cleanup() { DateFmt::setToday(QDate()); }

    // Each task is a row with its dates, length, predecessors, lag and progress;
    // a task taken away takes its row with it.
    void scheduleChartIsATableOfTasks()
    {
        DateFmt::setToday(QDate(2026, 3, 14));
        DB db;
        Nav nav;
        db.createCompany(u"Acme Builders"_s, u"Olive Owner"_s, u"CO"_s);
        const Rec p =
            db.add(u"project"_s, {}, {}, {{u"name"_s, u"Clubhouse"_s}, {u"start"_s, u"2026-03-02"_s}});
        const Rec dig = db.add(
            u"task"_s, p.id, {},
            {{u"name"_s, u"Dig"_s}, {u"duration"_s, u"5"_s}, {u"sort"_s, u"1"_s}, {u"progress"_s, u"40"_s}});
        const Rec pour = db.add(u"task"_s, p.id, {},
                                {{u"name"_s, u"Pour"_s},
                                 {u"duration"_s, u"1"_s},
                                 {u"sort"_s, u"2"_s},
                                 {u"preds"_s, dig.id},
                                 {u"lag"_s, u"2"_s},
                                 {u"progress"_s, u"0"_s}});
        nav.setProjectID(p.id);
        ScheduleScreen screen({db, nav, *Modules::get(u"schedule")});
        QAccessibleInterface *chart = iface(screen.view()->canvas());
        QVERIFY(chart);
        QCOMPARE(chart->role(), QAccessible::Table);
        QVERIFY(!name(chart).isEmpty());
        QAccessibleTableInterface *table = chart->tableInterface();
        QVERIFY(table);
        QCOMPARE(table->rowCount(), 2);
        QCOMPARE(chart->child(0)->role(), QAccessible::ColumnHeader);
        QCOMPARE(name(chart->child(0)), u"Task"_s);
        QCOMPARE(rowNames(table, 0), QStringList({u"Dig"_s, u"Mar 2, 2026"_s, u"Mar 7, 2026"_s, u"5 days"_s,
                                                  u"None"_s, u"None"_s, u"40%"_s}));
        QCOMPARE(rowNames(table, 1), QStringList({u"Pour"_s, u"Mar 9, 2026"_s, u"Mar 10, 2026"_s, u"1 day"_s,
                                                  u"Dig"_s, u"2 days"_s, u"0%"_s}));
        // A cell found through the children is the same the table hands out, and knows its place.
        QAccessibleInterface *cell = chart->child(table->columnCount() * 2 + 4);
        QCOMPARE(cell, table->cellAt(1, 4));
        QCOMPARE(chart->indexOfChild(cell), table->columnCount() * 2 + 4);
        QCOMPARE(cell->tableCellInterface()->columnHeaderCells().value(0), chart->child(4));

        db.remove(pour.id);
        screen.refresh();
        QCOMPARE(table->rowCount(), 1);
        QVERIFY(!cell->isValid());
        QCOMPARE(name(table->cellAt(0, 0)), u"Dig"_s);
    }

    // A figure grid is a table whose cells are its own widgets; a box typed in
    // is named after its column and its row, and follows a renamed row.
    void figureGridIsATableOfItsCells()
    {
        MoneyGrid grid({{u"Item"_s, 40, false}, {u"Description"_s, 0, false}, {u"This period"_s, 100}});
        grid.setAccessibleName(u"Continuation sheet"_s);
        QString typed;
        QHash<QString, QLabel *> descriptions;
        grid.sync({u"a"_s, u"b"_s}, [&](const QString &key, QWidget *row) {
            auto *item = MoneyGrid::text(row);
            item->setText(key == u"a" ? u"1"_s : u"2"_s);
            auto *description = MoneyGrid::text(row);
            description->setText(key == u"a" ? u"Sitework"_s : u"Concrete"_s);
            descriptions.insert(key, description);
            return MoneyGrid::Cells{item, description,
                                    new NumberField(TextBinding::local(&typed), true, {}, row)};
        });
        QAccessibleInterface *table = iface(&grid);
        QCOMPARE(table->role(), QAccessible::Table);
        QCOMPARE(name(table), u"Continuation sheet"_s);
        QAccessibleTableInterface *t = table->tableInterface();
        QVERIFY(t);
        QCOMPARE(t->rowCount(), 2);
        QCOMPARE(t->columnCount(), 3);
        QCOMPARE(t->columnDescription(2), u"This period"_s);
        QCOMPARE(t->cellAt(1, 1)->object(), descriptions.value(u"b"_s));

        auto *box = grid.cell<NumberField>(u"b"_s, 2);
        QCOMPARE(box->box()->accessibleName(), u"This period, 2 Concrete"_s);
        QAccessibleInterface *row = iface(box->parentWidget());
        QCOMPARE(row->role(), QAccessible::Row);
        QCOMPARE(name(row), u"2 Concrete"_s);

        descriptions.value(u"b"_s)->setText(u"Footings"_s);
        grid.nameInputs();
        QCOMPARE(box->box()->accessibleName(), u"This period, 2 Footings"_s);
        QCOMPARE(name(row), u"2 Footings"_s);
    }

    // A chart's bars read as a table under its title, a category a row.
    void chartDataIsATable()
    {
        ProjectChart chart;
        chart.setGroups({{u"Clubhouse"_s, 123456, 50000, 40000}, {u"Warehouse"_s, 100, 0, 5}});
        auto *view = chart.findChild<QChartView *>();
        QVERIFY(view);
        QAccessibleInterface *table = iface(view);
        QCOMPARE(table->role(), QAccessible::Table);
        QCOMPARE(name(table), u"Contract · billed · cost by project"_s);
        QAccessibleTableInterface *t = table->tableInterface();
        QCOMPARE(t->rowCount(), 2);
        QCOMPARE(rowNames(t, 0), QStringList({u"Clubhouse"_s, u"$1,234.56"_s, u"$500.00"_s, u"$400.00"_s}));
        QCOMPARE(rowNames(t, 1), QStringList({u"Warehouse"_s, u"$1.00"_s, u"$0.00"_s, u"$0.05"_s}));
    }

    void tilesPillsAndBarsSayTheirWords_data()
    {
        QTest::addColumn<QString>("which");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("more"); // the description, or the value of a bar
        QTest::addColumn<int>("role");
        QTest::newRow("tile") << u"tile"_s << u"Contract: $1,200.00"_s << u"2 change orders"_s
                              << int(QAccessible::StaticText);
        QTest::newRow("warning tile") << u"warn"_s << u"Contract: $1,200.00"_s
                                      << u"Warning: 2 change orders"_s << int(QAccessible::StaticText);
        QTest::newRow("pill") << u"pill"_s << u"Status: Paid"_s << QString() << int(QAccessible::StaticText);
        QTest::newRow("bar over budget")
            << u"bar"_s << u"Share spent"_s << u"125%"_s << int(QAccessible::ProgressBar);
    }
    void tilesPillsAndBarsSayTheirWords()
    {
        QFETCH(QString, which);
        QFETCH(QString, name);
        QFETCH(QString, more);
        QFETCH(int, role);
        std::unique_ptr<QWidget> w;
        if (which == u"tile" || which == u"warn") {
            auto *tile = new KPITile(u"Contract"_s, u"doc.text.fill"_s);
            tile->setValue(u"$1,200.00"_s);
            tile->setNote(u"2 change orders"_s);
            tile->setWarn(which == u"warn");
            w.reset(tile);
        } else if (which == u"pill") {
            w = std::make_unique<StatusPill>(u"paid"_s);
        } else {
            auto *bar = new GlowBar;
            bar->setFraction(1.25);
            w.reset(bar);
        }
        QAccessibleInterface *i = iface(w.get());
        QCOMPARE(int(i->role()), role);
        QCOMPARE(i->text(QAccessible::Name), name);
        if (which == u"bar") {
            QCOMPARE(i->text(QAccessible::Value), more);
            QCOMPARE(i->valueInterface()->currentValue().toDouble(), 125.0);
        } else if (!more.isEmpty()) {
            QCOMPARE(i->text(QAccessible::Description), more);
        }
    }

    // The pill follows its word: a reader never hears the last one.
    void pillFollowsItsWord()
    {
        StatusPill pill(u"draft"_s);
        QAccessibleInterface *i = iface(&pill);
        QCOMPARE(name(i), u"Status: Draft"_s);
        pill.setText(u"Submitted"_s);
        QCOMPARE(name(i), u"Status: Submitted"_s);
    }

    void choiceIsNamedByItsLabelAndSaysItsChoice_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("value");
        QTest::newRow("chosen") << u"Commercial"_s << u"Commercial"_s;
        QTest::newRow("nothing chosen") << QString() << u"Choose…"_s;
        QTest::newRow("unknown stored value") << u"Industrial"_s << u"Choose…"_s;
    }
    void choiceIsNamedByItsLabelAndSaysItsChoice()
    {
        QFETCH(QString, stored);
        QFETCH(QString, value);
        DB db;
        QString typed = stored;
        FieldEditor editor(db, {u"type"_s, u"Type"_s, FT::makeChoice({u"Residential"_s, u"Commercial"_s})},
                           TextBinding::local(&typed), QString(), false);
        QAccessibleInterface *i = iface(editor.control());
        QCOMPARE(i->role(), QAccessible::ComboBox);
        QCOMPARE(name(i), u"Type"_s);
        QCOMPARE(i->text(QAccessible::Value), value);
        QCOMPARE(i->childCount(), 1);
        QVERIFY(i->actionInterface()->actionNames().contains(QAccessibleActionInterface::showMenuAction()));
    }

    // A segmented control is a list of tabs; pressing one chooses it as a click would.
    void segmentIsAListOfTabs()
    {
        FWSegment segment({u"WIP Report"_s, u"WIP Schedule"_s});
        QSignalSpy chosen(&segment, &FWSegment::currentChanged);
        QAccessibleInterface *list = iface(&segment);
        QCOMPARE(list->role(), QAccessible::PageTabList);
        QCOMPARE(list->childCount(), 2);
        QAccessibleInterface *second = list->child(1);
        QCOMPARE(second->role(), QAccessible::PageTab);
        QCOMPARE(name(second), u"WIP Schedule"_s);
        QVERIFY(!second->state().selected);
        QCOMPARE(list->indexOfChild(second), 1);
        second->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(segment.current(), 1);
        QCOMPARE(chosen.size(), 1);
        QVERIFY(second->state().selected);
        QVERIFY(!list->child(0)->state().selected);
    }

    // A symbol alone beside words is passed over; a label with words, or a named symbol, is read.
    void decorationIsPassedOver_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("accessibleName");
        QTest::addColumn<bool>("passedOver");
        QTest::newRow("symbol") << QString() << QString() << true;
        QTest::newRow("named symbol") << QString() << u"Linked to the budget"_s << false;
        QTest::newRow("words") << u"All clear"_s << QString() << false;
    }
    void decorationIsPassedOver()
    {
        QFETCH(QString, text);
        QFETCH(QString, accessibleName);
        QFETCH(bool, passedOver);
        // As the screens make them: the symbol or words first, then any name.
        QLabel label;
        if (text.isEmpty()) {
            QPixmap symbol(16, 16);
            symbol.fill(Qt::red);
            label.setPixmap(symbol);
        } else {
            label.setText(text);
        }
        if (!accessibleName.isEmpty())
            label.setAccessibleName(accessibleName);
        label.show();
        QAccessibleInterface *i = iface(&label);
        QCOMPARE(bool(i->state().invisible), passedOver);
    }
};

TRESTLE_TEST(AccessibleTests);
#include "accessibletests.moc"
