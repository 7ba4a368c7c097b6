// The generic record screen on a private store: search, columns, New with its
// defaults and numbering, empty states, the selection across refreshes, delete.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "shell/emptystate.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/recordeditor.h"
#include "shell/recordscreen.h"
#include "shell/recordscreenmodel.h"
#include "store/db.h"

#include <QtTest/QSignalSpy>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QTreeView>

using namespace Qt::StringLiterals;

namespace {

const ModuleDef &mod(QStringView id)
{
    return *Modules::get(id);
}

// A company with `projects` projects named P1, P2...
void company(DB &db, int projects = 0)
{
    db.createCompany(u"Acme Builders"_s, u"Olive Owner"_s, u"CO"_s);
    for (int i = 1; i <= projects; ++i)
        db.add(u"project"_s, {}, {}, {{u"name"_s, u"P"_s + QString::number(i)}, {u"state"_s, u"CA"_s}});
}

} // namespace

class RecordScreenTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        DateFmt::setToday(QDate(2026, 3, 14));
        Nav().setProjectID(QString()); // the chosen project is persisted between tests
    }
    void cleanup() { DateFmt::setToday(QDate()); }

    // An empty list offers what it needs: a project first when the list works on
    // one and there is none, else a new record of its own.
    void emptyListOffersItsAction_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<int>("projects");
        QTest::addColumn<QString>("button");
        QTest::addColumn<bool>("asksForProject");
        QTest::newRow("per project, none yet") << u"expenses"_s << 0 << u"New Project…"_s << true;
        QTest::newRow("per project, one there") << u"expenses"_s << 1 << u"New"_s << false;
        QTest::newRow("company-wide") << u"contacts"_s << 0 << u"New"_s << false;
    }
    void emptyListOffersItsAction()
    {
        QFETCH(QString, module);
        QFETCH(int, projects);
        QFETCH(QString, button);
        QFETCH(bool, asksForProject);
        DB db;
        Nav nav;
        company(db, projects);
        const qsizetype before = db.count(mod(module).kind);
        RecordScreen screen({db, nav, mod(module)});
        screen.refresh();
        QAbstractButton *offer = nullptr;
        for (QAbstractButton *b : screen.findChildren<QAbstractButton *>())
            if (b->text() == button && b->isVisibleTo(&screen) && b->parentWidget()->inherits("EmptyState"))
                offer = b;
        QVERIFY2(offer, qPrintable(button));
        offer->click();
        QCOMPARE(nav.newProject(), asksForProject);
        QCOMPARE(db.count(mod(module).kind), before + (asksForProject ? 0 : 1));
    }

    void search_data()
    {
        QTest::addColumn<QString>("needle");
        QTest::addColumn<int>("found");
        QTest::newRow("cents as stored") << u"1250"_s << 1;
        QTest::newRow("amount as shown does not match") << u"12.50"_s << 0;
        QTest::newRow("capitals match small letters") << u"LUMBER"_s << 1;
        QTest::newRow("small letters match capitals") << u"acme"_s << 1;
        QTest::newRow("field keys are not searched") << u"memo"_s << 0;
        QTest::newRow("a field not shown as a column counts") << u"receipt 77"_s << 1;
        QTest::newRow("empty keeps all") << QString() << 2;
    }
    void search()
    {
        QFETCH(QString, needle);
        QFETCH(int, found);
        DB db;
        Nav nav;
        company(db);
        db.add(u"expense"_s, {}, {}, {{u"amount"_s, u"1250"_s}, {u"memo"_s, u"lumber"_s}});
        db.add(u"expense"_s, {}, {}, {{u"amount"_s, u"900"_s}, {u"ref"_s, u"ACME receipt 77"_s}});
        RecordScreen screen({db, nav, mod(u"expenses")});
        QTest::keyClicks(screen.searchBox(), needle);
        QCOMPARE(screen.model()->rowCount(), found);
        QCOMPARE(screen.listShown(), found > 0);
    }

    // Typing narrows the rows already found, erasing widens them again, and a
    // record saved meanwhile is searched by its new values.
    void searchFollowsTypingAndSaves()
    {
        DB db;
        Nav nav;
        company(db);
        Rec a = db.add(u"expense"_s, {}, {}, {{u"memo"_s, u"Lumber"_s}});
        Rec b = db.add(u"expense"_s, {}, {}, {{u"ref"_s, u"ACME"_s}});
        RecordScreen screen({db, nav, mod(u"expenses")});
        QSignalSpy resets(screen.model(), &QAbstractItemModel::modelReset);
        QTest::keyClicks(screen.searchBox(), u"l"_s);
        QCOMPARE(screen.model()->rowCount(), 1);
        QTest::keyClicks(screen.searchBox(), u"um"_s);
        QCOMPARE(screen.model()->rowCount(), 1);
        QCOMPARE(resets.count(), 1); // the same row for "lu" and "lum": no reset
        QTest::keyClicks(screen.searchBox(), u"x"_s);
        QCOMPARE(screen.model()->rowCount(), 0);
        QTest::keyClick(screen.searchBox(), Qt::Key_Backspace);
        QCOMPARE(screen.model()->rowCount(), 1);
        QCOMPARE(screen.model()->index(0, 0).data(RecordListModel::IdRole).toString(), a.id);

        b.f.insert(u"memo"_s, u"lumber yard"_s);
        db.save(b);
        screen.refresh();
        QCOMPARE(screen.model()->rowCount(), 2);
        a.f.insert(u"memo"_s, u"Steel"_s);
        db.save(a);
        screen.refresh();
        QCOMPARE(screen.model()->rowCount(), 1);
        QCOMPARE(screen.model()->index(0, 0).data(RecordListModel::IdRole).toString(), b.id);
        QTest::keyClick(screen.searchBox(), Qt::Key_Backspace);
        QCOMPARE(screen.model()->rowCount(), 1); // "lu": still only the yard
        screen.searchBox()->selectAll();
        QTest::keyClick(screen.searchBox(), Qt::Key_Backspace);
        QCOMPARE(screen.model()->rowCount(), 2);
        QCOMPARE(screen.model()->rows().at(0).f.value(u"memo"), u"Steel"_s);
    }

    void columns_data()
    {
        QTest::addColumn<bool>("projectChosen");
        QTest::addColumn<QStringList>("heads");
        QTest::newRow("all projects")
            << false << QStringList{u"PROJECT"_s, u"#"_s, u"TITLE"_s, u"STATUS"_s, u"DATE"_s};
        QTest::newRow("one project") << true << QStringList{u"#"_s, u"TITLE"_s, u"STATUS"_s, u"DATE"_s};
    }
    void columns()
    {
        QFETCH(bool, projectChosen);
        QFETCH(QStringList, heads);
        DB db;
        Nav nav;
        company(db, 1);
        if (projectChosen)
            nav.setProjectID(db.list(u"project"_s).first().id);
        RecordScreen screen({db, nav, mod(u"estimates")});
        QStringList got;
        for (int i = 0; i < screen.model()->columnCount(); ++i)
            got << screen.model()->headerData(i, Qt::Horizontal, Qt::DisplayRole).toString();
        QCOMPARE(got, heads);
    }

    // A key no field defines is dropped; "number" always stands, headed "#".
    void columnKeys()
    {
        ModuleDef m = mod(u"contacts");
        m.columns = {u"number"_s, u"nosuch"_s, u"name"_s};
        const QList<FD> cols = RecordListModel::colDefs(m, true);
        QCOMPARE(cols.size(), 2);
        QCOMPARE(cols.at(0).label, u"#"_s);
        QCOMPARE(cols.at(1).key, u"name"_s);
    }

    // With no project chosen, New files the record under the first project and
    // the leading Project column names it.
    void newInPerProjectModule()
    {
        DB db;
        Nav nav;
        company(db, 2);
        const Rec first = db.list(u"project"_s).first();
        RecordScreen screen({db, nav, mod(u"estimates")});
        screen.newRecord();
        screen.refresh();
        const QList<Rec> made = db.list(u"estimate"_s);
        QCOMPARE(made.size(), 1);
        QCOMPARE(made.first().project, first.id);
        QCOMPARE(made.first().f.value(u"number"), u"1"_s);
        QCOMPARE(made.first().f.value(u"date"), u"2026-03-14"_s);
        QCOMPARE(nav.selected(u"estimates"_s), made.first().id);
        QCOMPARE(screen.model()->index(0, 0).data().toString(), db.label(first.id));
        QVERIFY(screen.editor());
        QCOMPARE(screen.editor()->recordId(), made.first().id);
        QCOMPARE(screen.list()->selectionModel()->currentIndex().row(), 0);
    }

    void newWithNoProjectAsksForOne()
    {
        DB db;
        Nav nav;
        company(db);
        RecordScreen screen({db, nav, mod(u"estimates")});
        QCOMPARE(screen.emptyState()->text(), u"Create a project first, then add estimates."_s);
        screen.newRecord();
        QVERIFY(nav.newProject());
        QCOMPARE(db.count(u"estimate"_s), 0);
    }

    // Projects are numbered by count, so deleting one gives a duplicate number.
    void projectNumbering()
    {
        DB db;
        Nav nav;
        company(db);
        RecordScreen screen({db, nav, mod(u"projects")});
        screen.newRecord();
        screen.newRecord();
        QList<Rec> projects = db.list(u"project"_s);
        QCOMPARE(projects.at(0).f.value(u"number"), u"001"_s);
        QCOMPARE(projects.at(1).f.value(u"number"), u"002"_s);
        QCOMPARE(projects.at(1).f.value(u"start"), u"2026-03-14"_s);
        QCOMPARE(projects.at(1).f.value(u"name"), u"New project"_s);
        db.remove(projects.at(0).id);
        screen.newRecord();
        projects = db.list(u"project"_s);
        QCOMPARE(projects.last().f.value(u"number"), u"002"_s);
    }

    void newRecordAdditions_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<bool>("projectExists");
        QTest::addColumn<QStringList>("expected"); // key=value; a bare key must be absent
        QTest::newRow("contact takes the first-name rule")
            << u"contacts"_s << true << QStringList{u"name=New contact"_s, u"type=Subcontractor"_s};
        QTest::newRow("waiver from company and project")
            << u"waivers"_s << true
            << QStringList{u"claimant=Acme Builders"_s, u"through=2026-03-14"_s, u"state=CA"_s,
                           u"customer="_s};
        QTest::newRow("waiver without a project record")
            << u"waivers"_s << false << QStringList{u"claimant=Acme Builders"_s, u"state"_s, u"customer"_s};
        QTest::newRow("timecard from the user") << u"timecards"_s << true << QStringList{u"rate=4500"_s};
    }
    void newRecordAdditions()
    {
        QFETCH(QString, module);
        QFETCH(bool, projectExists);
        QFETCH(QStringList, expected);
        DB db;
        Nav nav;
        company(db, 1);
        const Rec user = db.add(u"user"_s, {}, {}, {{u"name"_s, u"Uma"_s}, {u"rate"_s, u"4500"_s}});
        db.setUserID(user.id);
        nav.setProjectID(projectExists ? db.list(u"project"_s).first().id : u"GONE"_s);
        RecordScreen screen({db, nav, mod(module)});
        screen.newRecord();
        const std::optional<Rec> rec = db.get(nav.selected(module));
        QVERIFY(rec);
        for (const QString &e : expected) {
            const qsizetype eq = e.indexOf(u'=');
            if (eq < 0)
                QVERIFY2(!rec->f.contains(e), qPrintable(e));
            else
                QCOMPARE(rec->f.value(e.left(eq)), e.mid(eq + 1));
        }
        if (module == u"timecards")
            QCOMPARE(rec->f.value(u"worker"), user.id);
    }

    void emptyStates_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("search");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text");
        QTest::newRow("no records") << u"contacts"_s << QString() << u"No contacts yet"_s
                                    << u"Click New to add the first one."_s;
        QTest::newRow("search finds nothing")
            << u"contacts"_s << u"zzz"_s << u"No contacts yet"_s << u"Click New to add the first one."_s;
        QTest::newRow("per project with projects")
            << u"dailylogs"_s << QString() << u"No daily logs yet"_s << u"Click New to add the first one."_s;
    }
    void emptyStates()
    {
        QFETCH(QString, module);
        QFETCH(QString, search);
        QFETCH(QString, title);
        QFETCH(QString, text);
        DB db;
        Nav nav;
        company(db, 1);
        if (!search.isEmpty())
            db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Ann"_s}});
        RecordScreen screen({db, nav, mod(module)});
        QTest::keyClicks(screen.searchBox(), search);
        QVERIFY(!screen.listShown());
        QCOMPARE(screen.emptyState()->title(), title);
        QCOMPARE(screen.emptyState()->text(), text);
    }

    // A store change resets the list but keeps the selected row and the same editor.
    void refreshKeepsSelectionAndEditor()
    {
        DB db;
        Nav nav;
        company(db);
        db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Bea"_s}});
        const Rec ann = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Ann"_s}});
        RecordScreen screen({db, nav, mod(u"contacts")});
        screen.list()->setCurrentIndex(screen.model()->index(1, 0));
        QCOMPARE(nav.selected(u"contacts"_s), ann.id);
        screen.refresh();
        RecordEditor *editor = screen.editor();
        QVERIFY(editor);
        db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Cy"_s}});
        screen.refresh();
        QCOMPARE(screen.model()->rowCount(), 3);
        QCOMPARE(screen.list()->selectionModel()->currentIndex().row(), 1);
        QCOMPARE(screen.editor(), editor);
        QCOMPARE(nav.selected(u"contacts"_s), ann.id);
    }

    void deleteRecord()
    {
        DB db;
        Nav nav;
        company(db);
        const Rec ann = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Ann"_s}});
        nav.setSelected(u"contacts"_s, ann.id);
        RecordScreen screen({db, nav, mod(u"contacts")});
        QVERIFY(screen.editor());
        QCOMPARE(screen.editor()->shownTitle(), u"Ann"_s);
        screen.editor()->deleteRecord();
        screen.refresh();
        QVERIFY(!db.get(ann.id));
        QVERIFY(nav.selected(u"contacts"_s).isEmpty());
        QVERIFY(!screen.editor());
    }

    void deleteTexts_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("message");
        QTest::newRow("contact") << u"contacts"_s << u"Delete this contact?"_s << u"This can't be undone."_s;
        QTest::newRow("project cascade")
            << u"projects"_s << u"Delete this project?"_s
            << u"Everything in this project (estimates, pay apps, logs, photos…) is deleted too."_s;
    }
    void deleteTexts()
    {
        QFETCH(QString, module);
        QFETCH(QString, title);
        QFETCH(QString, message);
        QCOMPARE(RecordEditor::deleteTitle(mod(module)), title);
        QCOMPARE(RecordEditor::deleteMessage(mod(module)), message);
    }

    void editorTitle_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("title");
        QTest::newRow("numbered") << u"7"_s << u"#7 Kitchen"_s;
        QTest::newRow("no number") << QString() << u"Kitchen"_s;
    }
    void editorTitle()
    {
        QFETCH(QString, number);
        QFETCH(QString, title);
        Rec rec;
        rec.f = {{u"title"_s, u"Kitchen"_s}};
        if (!number.isEmpty())
            rec.f.insert(u"number"_s, number);
        QCOMPARE(RecordEditor::title(mod(u"estimates"), rec), title);
    }

    // A selection that points at a deleted record shows the list alone.
    void danglingSelectionShowsNoEditor()
    {
        DB db;
        Nav nav;
        company(db);
        db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Ann"_s}});
        nav.setSelected(u"contacts"_s, u"NOSUCH"_s);
        RecordScreen screen({db, nav, mod(u"contacts")});
        QVERIFY(!screen.editor());
        QVERIFY(screen.listShown());
        QCOMPARE(nav.selected(u"contacts"_s), u"NOSUCH"_s);
    }
};

TRESTLE_TEST(RecordScreenTests);
#include "recordscreentests.moc"
