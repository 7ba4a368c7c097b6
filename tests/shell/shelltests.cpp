// The frame of the window on a private store: rail and refusal by role,
// header menus, the creation sheets and the first run.
#include "testmain.h"

#include "calc/datefmt.h"
#include "catalog/moduledef.h"
#include "shell/emptystate.h"
#include "shell/headerbar.h"
#include "shell/modulearea.h"
#include "shell/modulerail.h"
#include "shell/nav.h"
#include "shell/sheets.h"
#include "shell/tlapp.h"
#include "shell/tlmain.h"
#include "shell/tlwindow.h"
#include "store/db.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

using namespace Qt::StringLiterals;

class ShellTests : public QObject
{
    Q_OBJECT

    // A company whose current user has `role`.
    static void companyWithRole(DB &db, const QString &role)
    {
        const Rec company = db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        const Rec user = db.add(u"user"_s, {}, {}, {{u"name"_s, u"Uma"_s}, {u"role"_s, role}});
        db.setUserID(user.id);
    }

    static QAction *menuAction(QMenu *menu, const QString &text)
    {
        for (QAction *a : menu->actions())
            if (a->text() == text)
                return a;
        return nullptr;
    }

    static QMenu *windowMenu(TLWindow &w, const QString &title)
    {
        for (QAction *a : w.menuBar()->actions())
            if (a->text().remove(u'&') == title)
                return a->menu();
        return nullptr;
    }

private Q_SLOTS:
    void railByRole_data()
    {
        QTest::addColumn<QString>("role");
        QTest::addColumn<QStringList>("present");
        QTest::addColumn<QStringList>("absent");
        QTest::newRow("owner") << u"Owner"_s << QStringList{u"team"_s, u"payapps"_s, u"estimates"_s}
                               << QStringList{};
        QTest::newRow("project manager")
            << u"Project Manager"_s << QStringList{u"payapps"_s} << QStringList{u"team"_s};
        QTest::newRow("unknown role acts as full user")
            << u"Foreman"_s << QStringList{u"estimates"_s} << QStringList{u"team"_s};
        QTest::newRow("field") << u"Field"_s << QStringList{u"dailylogs"_s, u"hub"_s}
                               << QStringList{u"payapps"_s, u"estimates"_s, u"team"_s, u"invoices"_s};
    }
    void railByRole()
    {
        QFETCH(QString, role);
        QFETCH(QStringList, present);
        QFETCH(QStringList, absent);
        DB db;
        Nav nav;
        companyWithRole(db, role);
        ModuleRail rail(db, nav);
        const QStringList ids = rail.moduleIds();
        for (const QString &id : present)
            QVERIFY2(ids.contains(id), qPrintable(id));
        for (const QString &id : absent)
            QVERIFY2(!ids.contains(id), qPrintable(id));
        if (role == u"Field") // the group of only money modules is gone, not shown empty
            QVERIFY(!rail.groups().contains(u"Sales & Money"_s, Qt::CaseInsensitive));
    }

    void subcontractorSeesExactlyFourteen()
    {
        DB db;
        Nav nav;
        companyWithRole(db, u"Subcontractor"_s);
        ModuleRail rail(db, nav);
        QStringList ids = rail.moduleIds();
        QStringList expected = {u"hub"_s,        u"projects"_s, u"documents"_s, u"payapps"_s,   u"waivers"_s,
                                u"dailylogs"_s,  u"punch"_s,    u"safety"_s,    u"schedule"_s,  u"rfis"_s,
                                u"submittals"_s, u"plans"_s,    u"meetings"_s,  u"compliance"_s};
        ids.sort();
        expected.sort();
        QCOMPARE(ids, expected);
    }

    void refusalByShortcut()
    {
        DB db;
        Nav nav;
        companyWithRole(db, u"Field"_s);
        TLWindow w(db, nav);
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        // Estimates is within the first nine of the table: Ctrl+digit reaches it despite the role.
        QMenu *go = windowMenu(w, u"Go"_s);
        QAction *estimates = menuAction(go, u"Estimates"_s);
        QVERIFY(estimates);
        QVERIFY(!estimates->shortcut().isEmpty());
        estimates->trigger();
        QTRY_COMPARE(nav.module(), u"estimates"_s);
        QTRY_VERIFY(qobject_cast<EmptyState *>(w.main()->area()->current()));
        auto *state = qobject_cast<EmptyState *>(w.main()->area()->current());
        QTRY_COMPARE(state->title(), u"Not available for your role"_s);
        QCOMPARE(state->text(),
                 u"Estimates is not available to the Field role. Ask the owner to change your role in "
                 u"Team & Roles."_s);
        QCOMPARE(state->symbol(), u"lock.fill"_s);
        for (RailButton *b : w.main()->rail()->findChildren<RailButton *>())
            QVERIFY(!b->isOn());
    }

    void areaOrder()
    {
        DB db;
        Nav nav;
        nav.setModule(u"no-such-module"_s);
        ModuleArea area(db, nav);
        // No company: every module shows the same request, even an unknown one.
        auto *none = qobject_cast<EmptyState *>(area.current());
        QVERIFY(none);
        QCOMPARE(none->title(), u"No company yet"_s);
        QCOMPARE(none->text(), u"Create your company to start."_s);
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
        area.refresh();
        QCOMPARE(area.module().id, u"hub"_s);
        // A registered factory replaces the placeholder of its screen.
        ModuleArea::registerScreen(u"budget"_s, [](const ScreenContext &ctx) {
            auto *s = new ShellScreen;
            s->setObjectName(u"budget-for-"_s + ctx.module.id);
            return s;
        });
        nav.setModule(u"budget"_s);
        area.refresh();
        QCOMPARE(area.current()->objectName(), u"budget-for-budget"_s);
        // Refreshing the same module keeps the same screen.
        QWidget *before = area.current();
        area.refresh();
        QCOMPARE(area.current(), before);
        ModuleArea::registerScreen(u"budget"_s, {});
    }

    void switchingCompany()
    {
        DB db;
        Nav nav;
        const Rec first = db.createCompany(u"First"_s, u"Ann"_s, u"CO"_s);
        const Rec project = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Barn"_s}, {u"number"_s, u"001"_s}});
        db.createCompany(u"Second"_s, u"Bob"_s, u"CO"_s);
        db.setCompanyID(first.id);
        nav.setProjectID(project.id);
        HeaderBar bar(db, nav);
        bar.rebuildMenus();
        QAction *second = menuAction(bar.companyMenu(), u"Second"_s);
        QVERIFY(second);
        second->trigger();
        QCOMPARE(db.company()->f[u"name"], u"Second"_s);
        QCOMPARE(db.user()->f[u"name"], u"Bob"_s);
        QCOMPARE(nav.projectID(), QString());
        QCOMPARE(Nav().projectID(), QString()); // persisted
        // The project menu starts with all projects and ends with the new-project item.
        bar.rebuildMenus();
        const QList<QAction *> items = bar.projectMenu()->actions();
        QCOMPARE(items.first()->text(), u"All projects"_s);
        QCOMPARE(items.last()->text(), u"New Project…"_s);
    }

    void staleProjectIsNoProject()
    {
        DB db;
        Nav nav;
        db.createCompany(u"First"_s, u"Ann"_s, u"CO"_s);
        const Rec p = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Barn"_s}});
        nav.setProjectID(p.id);
        QVERIFY(nav.project(db));
        db.createCompany(u"Second"_s, u"Bob"_s, u"CO"_s);
        QVERIFY(!nav.project(db));
        QCOMPARE(nav.projectID(), p.id);
    }

    void newProjectSheet_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("contract");
        QTest::addColumn<QString>("storedName");
        QTest::addColumn<QString>("storedContract");
        QTest::newRow("empty form") << QString() << QString() << u"New Project"_s << u"0"_s;
        QTest::newRow("good amount") << u"Barn"_s << u"$1,250.50"_s << u"Barn"_s << u"125050"_s;
    }
    // Letters in the contract are refused in the sheet, never stored as $0.00.
    void newProjectSheetRefusesABadAmount()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
        NewProjectSheet sheet(db, nav);
        sheet.show();
        QTest::keyClicks(sheet.findChild<QLineEdit *>(u"name"_s), u"Barn"_s);
        QTest::keyClicks(sheet.findChild<QLineEdit *>(u"contract"_s), u"twelve dollars"_s);
        QTest::mouseClick(sheet.findChild<QAbstractButton *>(u"confirm"_s), Qt::LeftButton);
        QVERIFY(sheet.result() != int(QDialog::Accepted));
        QCOMPARE(db.count(u"project"_s), 0);
        auto *problem = sheet.findChild<QLabel *>(u"problem"_s);
        QVERIFY(problem && problem->isVisible());
        QVERIFY2(problem->text().startsWith(u"The original contract: "_s), qPrintable(problem->text()));
        QVERIFY(problem->wordWrap());
    }
    void newProjectSheet()
    {
        QFETCH(QString, name);
        QFETCH(QString, contract);
        QFETCH(QString, storedName);
        QFETCH(QString, storedContract);
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
        db.add(u"project"_s, {}, {}, {{u"name"_s, u"Old"_s}});
        DateFmt::setToday(QDate(2026, 3, 4));
        NewProjectSheet sheet(db, nav);
        sheet.show();
        QTest::keyClicks(sheet.findChild<QLineEdit *>(u"name"_s), name);
        QTest::keyClicks(sheet.findChild<QLineEdit *>(u"contract"_s), contract);
        QTest::mouseClick(sheet.findChild<QAbstractButton *>(u"confirm"_s), Qt::LeftButton);
        DateFmt::setToday(QDate());
        QCOMPARE(sheet.result(), int(QDialog::Accepted));
        const std::optional<Rec> p = nav.project(db);
        QVERIFY(p);
        QCOMPARE(p->f[u"name"], storedName);
        QCOMPARE(p->f[u"contract"], storedContract);
        QCOMPARE(p->f[u"number"], u"002"_s);
        QCOMPARE(p->f[u"type"], u"Commercial"_s);
        QCOMPARE(p->f[u"status"], u"Active"_s);
        QCOMPARE(p->f[u"retainage"], u"10"_s);
        QCOMPARE(p->f[u"start"], u"2026-03-04"_s);
        QCOMPARE(nav.module(), u"projects"_s);
        QCOMPARE(nav.selected(u"projects"_s), p->id);
    }

    void newCompanySheet_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("owner");
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("storedName");
        QTest::addColumn<QString>("storedOwner");
        QTest::addColumn<QString>("storedState");
        QTest::addColumn<QString>("problem"); // empty: made
        QTest::newRow("empty form") << QString() << QString() << QString() << QString() << QString()
                                    << QString() << u"Give the company its name."_s;
        QTest::newRow("no owner") << u"Birch & Sons"_s << u"  "_s << u"CO"_s << QString() << QString()
                                  << QString()
                                  << u"Give the owner's name: the first user, who can do everything."_s;
        QTest::newRow("no state") << u"Birch & Sons"_s << u"Ruth Birch"_s << QString() << QString()
                                  << QString() << QString()
                                  << u"Give the state the company works in, as its two letters."_s;
        QTest::newRow("state by name")
            << u"Birch & Sons"_s << u"Ruth Birch"_s << u"Colorado"_s << QString() << QString() << QString()
            << u"Not a US state. Use its two letters, such as CO."_s;
        QTest::newRow("filled") << u"Birch & Sons"_s << u"Ruth Birch"_s << u"wa"_s << u"Birch & Sons"_s
                                << u"Ruth Birch"_s << u"WA"_s << QString();
    }
    void newCompanySheet()
    {
        QFETCH(QString, name);
        QFETCH(QString, owner);
        QFETCH(QString, state);
        QFETCH(QString, storedName);
        QFETCH(QString, storedOwner);
        QFETCH(QString, storedState);
        QFETCH(QString, problem);
        DB db;
        Nav nav;
        nav.setModule(u"contacts"_s);
        nav.setProjectID(u"somewhere"_s);
        NewCompanySheet sheet(db, nav);
        sheet.show();
        QTest::keyClicks(sheet.findChild<QLineEdit *>(u"name"_s), name);
        QTest::keyClicks(sheet.findChild<QLineEdit *>(u"owner"_s), owner);
        QTest::keyClicks(sheet.findChild<QLineEdit *>(u"state"_s), state);
        QTest::mouseClick(sheet.findChild<QAbstractButton *>(u"confirm"_s), Qt::LeftButton);
        auto *said = sheet.findChild<QLabel *>(u"problem"_s);
        QCOMPARE(said->isVisible() ? said->text() : QString(), problem);
        if (!problem.isEmpty()) {
            QCOMPARE(db.count(u"company"_s), 0);
            QCOMPARE(nav.module(), u"contacts"_s);
            return;
        }
        QCOMPARE(db.company()->f[u"name"], storedName);
        QCOMPARE(db.company()->f[u"state"], storedState);
        QCOMPARE(db.user()->f[u"name"], storedOwner);
        QCOMPARE(db.role(), u"Owner"_s);
        QCOMPARE(nav.projectID(), QString());
        QCOMPARE(nav.module(), u"hub"_s);
    }

    void sheetFollowsNavFlag()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
        TLWindow w(db, nav);
        w.show();
        nav.setNewProject(true);
        QTRY_VERIFY(w.findChild<NewProjectSheet *>());
        w.findChild<NewProjectSheet *>()->reject();
        QTRY_VERIFY(!nav.newProject());
    }

    void refreshIsCoalesced()
    {
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
        TLMain main(db, nav);
        QCoreApplication::processEvents();
        const int before = main.refreshCount();
        for (int i = 0; i < 5; ++i)
            db.add(u"contact"_s, {}, {}, {{u"name"_s, QString::number(i)}});
        nav.setModule(u"contacts"_s);
        nav.setSearch(u"x"_s);
        QCOMPARE(main.refreshCount(), before);
        QCoreApplication::processEvents();
        QCOMPARE(main.refreshCount(), before + 1);
    }

    void firstRunLoadsSampleOnce()
    {
        DB db;
        TLApp::ensureCompany(db);
        QCOMPARE(db.count(u"company"_s), 1);
        QVERIFY(db.company());
        QVERIFY(db.count(u"project"_s) > 0);
        TLApp::ensureCompany(db);
        QCOMPARE(db.count(u"company"_s), 1);
        // With every company deleted, the next start makes the sample again.
        db.remove(db.companyID());
        TLApp::ensureCompany(db);
        QCOMPARE(db.count(u"company"_s), 1);
    }
};

TRESTLE_TEST(ShellTests);
#include "shelltests.moc"
