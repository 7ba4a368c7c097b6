// Company ▸ Rename… and Remove…: the rules a new name keeps, and a removal
// that always has a snapshot behind it.
#include "testmain.h"

#include "interchange/snapshots.h"
#include "shell/companyactions.h"
#include "shell/firstrun.h"
#include "shell/nav.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtWidgets/QAbstractButton>

using namespace Qt::StringLiterals;

class CompanyActionsTests : public QObject
{
    Q_OBJECT

    QTemporaryDir scratch;
    int made = 0;

    // A store in a data folder of its own, so snapshots land beside it.
    QString database()
    {
        const QString folder = scratch.filePath(QString::number(++made) + u"/Trestle"_s);
        QDir().mkpath(folder);
        return QDir(folder).filePath(u"trestle.sqlite"_s);
    }

private Q_SLOTS:
    void rename_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name");    // the name afterwards
        QTest::addColumn<QString>("refusal"); // empty: renamed
        QTest::newRow("new name") << u"Ridgeline Builders"_s << u"Ridgeline Builders"_s << QString();
        QTest::newRow("spaces tidied")
            << u"  Ridgeline   Builders "_s << u"Ridgeline Builders"_s << QString();
        QTest::newRow("own name in other case") << u"ACME BUILDERS"_s << u"ACME BUILDERS"_s << QString();
        QTest::newRow("empty") << u"   "_s << u"Acme Builders"_s << u"A company needs a name."_s;
        QTest::newRow("another's name") << u"beacon homes"_s << u"Acme Builders"_s
                                        << u"Another company is already called \u201Cbeacon homes\u201D."_s;
    }
    void rename()
    {
        QFETCH(QString, typed);
        QFETCH(QString, name);
        QFETCH(QString, refusal);
        DB db;
        db.createCompany(u"Beacon Homes"_s, u"Bo"_s, u"CO"_s);
        const Rec acme = db.createCompany(u"Acme Builders"_s, u"Ann"_s, u"CO"_s);
        QCOMPARE(CompanyActions::rename(db, acme.id, typed).value_or(QString()), refusal);
        QCOMPARE(db.get(acme.id)->f.value(u"name"), name);
    }

    // The company goes with everything it holds, after a snapshot that still has it;
    // the other company becomes current.
    void removeTakesASnapshotFirst()
    {
        const QString path = database();
        QString acmeId, beaconId, snapshot;
        {
            DB db(path);
            Nav nav;
            beaconId = db.createCompany(u"Beacon Homes"_s, u"Bo"_s, u"CO"_s).id;
            const Rec acme = db.createCompany(u"Acme Builders"_s, u"Ann"_s, u"CO"_s);
            acmeId = acme.id;
            db.add(u"project"_s, {}, {}, {{u"name"_s, u"Barn"_s}});
            QVERIFY(!CompanyActions::remove(db, nav, acmeId, &snapshot));
            QVERIFY(!db.get(acmeId));
            QCOMPARE(db.count(u"project"_s), 0);
            QCOMPARE(db.companyID(), beaconId);
        }
        QVERIFY(!snapshot.isEmpty());
        DB kept(QDir(snapshot).filePath(QFileInfo(path).fileName()));
        QVERIFY(kept.get(acmeId));
        QCOMPARE(kept.list(u"project"_s, {.company = acmeId}).size(), 1);
    }

    // Removing the last company leaves the New Company screen.
    void removingTheLastOpensNewCompany()
    {
        DB db(database());
        Nav nav;
        const Rec acme = db.createCompany(u"Acme Builders"_s, u"Ann"_s, u"CO"_s);
        QString snapshot;
        QVERIFY(!CompanyActions::remove(db, nav, acme.id, &snapshot));
        QCOMPARE(db.count(u"company"_s), 0);
        QVERIFY(nav.newCompany());
    }

    // Without a snapshot nothing is removed.
    void noSnapshotNoRemoval()
    {
        DB db; // in memory: no data folder to put a snapshot beside
        Nav nav;
        const Rec acme = db.createCompany(u"Acme Builders"_s, u"Ann"_s, u"CO"_s);
        const std::optional<QString> refused = CompanyActions::remove(db, nav, acme.id, nullptr);
        QVERIFY(refused);
        QVERIFY2(refused->startsWith(u"No snapshot could be taken, so nothing was removed."_s),
                 qPrintable(*refused));
        QVERIFY(db.get(acme.id));
    }

    // The window's path: a question naming the snapshot, then the removal.
    void askRemoveAsksFirst()
    {
        DB db(database());
        Nav nav;
        db.createCompany(u"Beacon Homes"_s, u"Bo"_s, u"CO"_s);
        const Rec acme = db.createCompany(u"Acme Builders"_s, u"Ann"_s, u"CO"_s);
        QString asked;
        CompanyActions::confirmHook() = [&](QWidget *, const QString &q) {
            asked = q;
            return false;
        };
        CompanyActions::askRemove(nullptr, db, nav);
        CompanyActions::confirmHook() = nullptr;
        QVERIFY(asked.contains(u"\u201CAcme Builders\u201D"_s));
        QVERIFY(asked.contains(u"snapshot"_s));
        QVERIFY(db.get(acme.id)); // "No" keeps it
    }

    // The first window on an empty store asks how to begin; each way leaves a company or the sheet for one.
    void firstRunChoices_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("companies");
        QTest::addColumn<bool>("newCompanySheet");
        QTest::newRow("start my company") << u"startOwn"_s << 0 << true;
        QTest::newRow("open the sample") << u"openSample"_s << 1 << false;
        QTest::newRow("closed without a choice") << QString() << 0 << true;
    }
    void firstRunChoices()
    {
        QFETCH(QString, button);
        QFETCH(int, companies);
        QFETCH(bool, newCompanySheet);
        DB db;
        Nav nav;
        QVERIFY(FirstRunSheet::wanted(db));
        FirstRunSheet sheet(db, nav);
        sheet.show();
        if (button.isEmpty())
            sheet.reject();
        else
            sheet.findChild<QAbstractButton *>(button)->click();
        QCOMPARE(db.count(u"company"_s), companies);
        QCOMPARE(nav.newCompany(), newCompanySheet);
        QVERIFY(sheet.isHidden());
        QCOMPARE(FirstRunSheet::wanted(db), companies == 0);
    }
};

TRESTLE_TEST(CompanyActionsTests);
#include "companyactionstests.moc"
