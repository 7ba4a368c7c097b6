// The window under real faults: the banner of unsaved changes, the question
// at close, the recovery screen over a damaged file, a killed window, and the
// program itself (second window, writing verbs beside it, damaged store).
#include "testmain.h"

#include "interchange/snapshots.h"
#include "shell/modulearea.h"
#include "shell/nav.h"
#include "shell/recoveryscreen.h"
#include "shell/savebanner.h"
#include "shell/tlapp.h"
#include "shell/tlmain.h"
#include "shell/tlwindow.h"
#include "store/db.h"
#include "store/folderlock.h"
#include "workflows/binding.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QByteArray digest(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256)
                                       : QByteArray();
}

QString bulk(const QString &tag)
{
    return tag + QString(6000, u'x');
}

// A private home for the real program, with its data folder and store path.
struct Home
{
    QTemporaryDir dir;
    QString folder() const { return dir.filePath(u"data/Fenwright/Trestle"_s); }
    QString store() const { return folder() + u"/trestle.sqlite"_s; }
    QProcessEnvironment env() const
    {
        QProcessEnvironment e = QProcessEnvironment::systemEnvironment();
        e.insert(u"XDG_DATA_HOME"_s, dir.filePath(u"data"_s));
        e.insert(u"XDG_CONFIG_HOME"_s, dir.filePath(u"config"_s));
        e.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        e.insert(u"QT_LOGGING_RULES"_s, u"*.warning=false"_s);
        return e;
    }
};

struct Run
{
    int code = -1;
    QString out;
    QString err;
};

Run trestle(const Home &home, const QStringList &args, const QStringList &extraEnv = {})
{
    QProcess p;
    QProcessEnvironment env = home.env();
    for (const QString &kv : extraEnv)
        env.insert(kv.section(u'=', 0, 0), kv.section(u'=', 1));
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(TRESTLE_BINARY), args);
    p.waitForFinished(120000);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2,
            QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

// A store with a company and one contact; the contact's id.
QString storeWithContact(const QString &path)
{
    DB db(path);
    db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
    return db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Mesa Electric"_s}}).id;
}

} // namespace

class WindowFaultTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { TLWindow::askUnsavedHook() = {}; }

    // An edit on a full disk: the banner says why and how many wait, goes
    // away once space returns, and the edit is on disk after a restart.
    void bannerUntilWritten()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        const QString id = storeWithContact(path);
        {
            DB db(path);
            Nav nav;
            TLWindow w(db, nav);
            w.show();
            SaveBanner *banner = w.main()->banner();
            QVERIFY(!banner->isVisible());
            db.setPageLimit(1);
            recBinding(db, id, u"notes"_s).set(bulk(u"site walk"_s));
            QVERIFY(banner->isVisible());
            QVERIFY2(banner->text().contains(u"The disk is full"), qPrintable(banner->text()));
            QVERIFY(banner->text().contains(u"1 change is"));
            recBinding(db, id, u"phone"_s).set(u"970-555-0100"_s);
            QVERIFY(banner->text().contains(u"1 change is")); // the same record still waits once
            QCOMPARE(db.get(id)->f.value(u"phone"), u"970-555-0100"_s);
            db.setPageLimit(0);
            QTRY_VERIFY_WITH_TIMEOUT(!banner->isVisible(), 6000);
            QVERIFY(w.close());
        }
        DB again(path);
        QCOMPARE(again.get(id)->f.value(u"notes"), bulk(u"site walk"_s));
        QCOMPARE(again.get(id)->f.value(u"phone"), u"970-555-0100"_s);
    }

    // Closing over unsaved changes asks; each answer ends without losing them.
    void closeAsks_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("closes");
        QTest::addColumn<bool>("onDisk");
        QTest::newRow("try again once space is back") << u"retry"_s << true << true;
        QTest::newRow("save them to a file") << u"file"_s << true << false;
        QTest::newRow("keep the window open") << u"keep"_s << false << false;
    }
    void closeAsks()
    {
        QFETCH(QString, answer);
        QFETCH(bool, closes);
        QFETCH(bool, onDisk);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        const QString rescue = dir.filePath(u"rescue.json"_s);
        const QString id = storeWithContact(path);
        {
            DB db(path);
            Nav nav;
            TLWindow w(db, nav);
            w.show();
            db.setPageLimit(1);
            recBinding(db, id, u"notes"_s).set(bulk(u"x"_s));
            int asked = 0;
            QString cause;
            TLWindow::askUnsavedHook() = [&](QWidget *, qsizetype count, const QString &why) {
                ++asked;
                cause = why;
                TLWindow::UnsavedAnswer a;
                if (count != 1)
                    return a;
                if (answer == u"retry") {
                    // The first try still meets a full disk; the user frees space and tries again.
                    if (asked == 2)
                        db.setPageLimit(0);
                    a.choice = TLWindow::UnsavedAnswer::TryAgain;
                } else if (answer == u"file") {
                    a.choice = TLWindow::UnsavedAnswer::SaveToFile;
                    a.file = rescue;
                }
                return a;
            };
            QCOMPARE(w.close(), closes);
            QVERIFY(asked >= 1);
            QCOMPARE(cause, u"the disk is full"_s);
            if (answer == u"retry")
                QCOMPARE(asked, 2);
            QCOMPARE(w.isVisible(), !closes);
            QCOMPARE(QFileInfo::exists(rescue), answer == u"file");
            if (answer == u"file") {
                QFile f(rescue);
                QVERIFY(f.open(QIODevice::ReadOnly));
                QVERIFY(f.readAll().contains(id.toUtf8()));
            }
            TLWindow::askUnsavedHook() = [](QWidget *, qsizetype, const QString &) {
                return TLWindow::UnsavedAnswer{TLWindow::UnsavedAnswer::SaveToFile,
                                               QDir::temp().filePath(u"tl-unsaved-"_s + newID())};
            };
        }
        QCOMPARE(DB(path).get(id)->f.value(u"notes").size() > 100, onDisk);
    }

    // A damaged or unopenable file: the recovery screen instead of the
    // modules, no sample company, and the file as it was.
    void recoveryScreen_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("title");
        QTest::newRow("damaged") << u"damaged"_s << u"Your data file is damaged"_s;
        QTest::newRow("cannot open") << u"missing folder"_s << u"Trestle can't open your data"_s;
    }
    void recoveryScreen()
    {
        QFETCH(QString, how);
        QFETCH(QString, title);
        QTemporaryDir dir;
        QString path = dir.filePath(u"Trestle/trestle.sqlite"_s);
        QDir().mkpath(dir.filePath(u"Trestle"_s));
        if (how == u"damaged") {
            storeWithContact(path);
            {
                // Yesterday's copy, the way back the screen offers first.
                DB db(path);
                QVERIFY(Snapshots::make(db).ok);
            }
            QFile f(path);
            QVERIFY(f.open(QIODevice::ReadWrite));
            f.resize(f.size() / 2);
        } else {
            path = dir.filePath(u"gone/trestle.sqlite"_s);
        }
        const QByteArray before = digest(path);
        {
            DB db(path);
            TLApp::ensureCompany(db);
            QCOMPARE(db.size(), 0);
            Nav nav;
            TLWindow w(db, nav);
            w.show();
            QVERIFY(QTest::qWaitForWindowExposed(&w));
            RecoveryScreen *screen = w.main()->recovery();
            QVERIFY(screen);
            QVERIFY(screen->isVisible());
            QVERIFY(!w.main()->area()->isVisible());
            QCOMPARE(RecoveryScreen::title(db), title);
            QCOMPARE(screen->snapshots().size(), how == u"damaged" ? 1 : 0);
            if (how == u"damaged") {
                const QString line =
                    RecoveryScreen::describe(screen->snapshots().first(), QDateTime::currentDateTime());
                QVERIFY2(line.contains(u"today") && line.contains(u"25 records"), qPrintable(line));
            }
            QVERIFY(RecoveryScreen::explanation(db).contains(path));
            // The menus offer only the ways back.
            QMenu *file = w.menuBar()->actions().first()->menu();
            QStringList enabled;
            for (QAction *a : file->actions())
                if (!a->isSeparator() && a->isEnabled())
                    enabled << a->text();
            QCOMPARE(enabled.mid(0, 2),
                     (QStringList{u"Restore From Backup…"_s, u"Restore From Snapshot…"_s}));
            QVERIFY(!enabled.contains(u"New Project…"_s));
            QVERIFY(!enabled.contains(u"Back Up Everything…"_s));
            QTest::qWait(50);
            QVERIFY(w.close());
        }
        QCOMPARE(digest(path), before);
        QCOMPARE(QFileInfo::exists(path), how == u"damaged");
    }

    // The window's own writer is killed at random moments: every edit it
    // reported as done is on disk, whole, at the next start.
    void killedWindowLosesNothing()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        storeWithContact(path);
        QRandomGenerator rng(14);
        QHash<QString, QString> expected;
        int confirmed = 0;
        for (int round = 0; round < 6; ++round) {
            QProcess writer;
            writer.start(QCoreApplication::applicationFilePath(),
                         {u"--child"_s, u"window-writer"_s, path, QString::number(round)});
            QVERIFY(writer.waitForStarted());
            QVERIFY(writer.waitForReadyRead(20000));
            QTest::qWait(150 + rng.bounded(400));
            writer.kill();
            writer.waitForFinished();
            for (const QByteArray &line : writer.readAllStandardOutput().split('\n')) {
                const QList<QByteArray> parts = line.split(' ');
                if (parts.size() == 3 && parts[0] == "saved")
                    expected[QString::fromLatin1(parts[1])] = QString::fromLatin1(parts[2]);
            }
            DB db(path);
            QVERIFY(db.isOpen());
            for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
                const auto rec = db.get(it.key());
                QVERIFY2(rec.has_value(), "an edit the window confirmed was lost");
                // The confirmed value, or one written after it whose report the kill cut off.
                auto order = [](const QString &v) {
                    return std::pair(v.section(u'.', 0, 0).toInt(), v.section(u'.', 1, 1).toInt());
                };
                const QString onDisk = rec->f.value(u"notes");
                QVERIFY2(onDisk == it.value() || order(onDisk) > order(it.value()),
                         qPrintable(onDisk + u" older than "_s + it.value()));
                ++confirmed;
            }
        }
        QVERIFY(confirmed > 20);
    }

    // The program itself: a second window hands over to the first, a writing
    // verb is refused beside it while reading verbs and backup work, and a
    // killed window's lock is taken over.
    void oneWriterPerFolder()
    {
        Home home;
        QVERIFY(trestle(home, {u"sample"_s}).code == 0);
        QProcess window;
        window.setProcessEnvironment(home.env());
        window.start(QStringLiteral(TRESTLE_BINARY), QStringList{});
        QVERIFY(window.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(FolderLock::windowHolds(home.folder()), 20000);
        QTest::qWait(500); // its socket listens once the lock is taken

        const Run second = trestle(home, {});
        QCOMPARE(second.code, 0);
        QVERIFY2(second.err.contains(u"brought to the front"), qPrintable(second.err));
        QVERIFY(window.state() == QProcess::Running);

        const Run refused = trestle(home, {u"sample"_s});
        QCOMPARE(refused.code, 1);
        QVERIFY(refused.out.isEmpty());
        QCOMPARE(refused.err.count(u'\n'), 1);
        QVERIFY2(refused.err.contains(u"is open") &&
                     refused.err.contains(QString::number(window.processId())),
                 qPrintable(refused.err));
        const Run restore = trestle(home, {u"restore"_s, home.dir.filePath(u"none.zip"_s), u"--yes"_s});
        QCOMPARE(restore.code, 1);
        QVERIFY(restore.err.contains(u"is open"));

        QCOMPARE(trestle(home, {u"info"_s}).code, 0);
        const QString zip = home.dir.filePath(u"nightly.zip"_s);
        QCOMPARE(trestle(home, {u"backup"_s, zip}).code, 0);
        // The backup is a store that opens cleanly and holds the company.
        const Run check = trestle(home, {u"restore"_s, zip, u"--yes"_s});
        QCOMPARE(check.code, 1); // still refused while the window runs

        window.kill();
        window.waitForFinished();
        QVERIFY(!FolderLock::windowHolds(home.folder()));
        const Run after = trestle(home, {u"restore"_s, zip, u"--yes"_s});
        QCOMPARE(after.code, 0);
        const Run info = trestle(home, {u"info"_s});
        QCOMPARE(info.code, 0);
        QVERIFY2(info.out.contains(u"Grand Valley Builders"), qPrintable(info.out));

        // A new window takes over the killed one's stale lock and socket.
        QProcess next;
        next.setProcessEnvironment(home.env());
        next.start(QStringLiteral(TRESTLE_BINARY), QStringList{});
        QVERIFY(next.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(FolderLock::windowHolds(home.folder()), 20000);
        QTest::qWait(500);
        const Run third = trestle(home, {});
        QCOMPARE(third.code, 0);
        QVERIFY2(third.err.contains(u"brought to the front"), qPrintable(third.err));
        next.kill();
        next.waitForFinished();
    }

    // Every verb on a damaged file: one line naming it, exit 1, nothing printed as done.
    void verbsOnDamagedStore_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("info") << QStringList{u"info"_s};
        QTest::newRow("sample") << QStringList{u"sample"_s};
        QTest::newRow("backup") << QStringList{u"backup"_s, u"out.zip"_s};
        QTest::newRow("export-csv") << QStringList{u"export-csv"_s, u"."_s};
        QTest::newRow("report") << QStringList{u"report"_s, u"wip"_s, u"wip.pdf"_s};
    }
    void verbsOnDamagedStore()
    {
        QFETCH(QStringList, args);
        Home home;
        QDir().mkpath(home.folder());
        QFile f(home.store());
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("This is a shopping list, not a store.\n");
        f.close();
        const QByteArray before = digest(home.store());
        const Run r = trestle(home, args);
        QCOMPARE(r.code, 1);
        QVERIFY(r.out.isEmpty());
        QCOMPARE(r.err.count(u'\n'), 1);
        QVERIFY2(r.err.contains(home.store()) && r.err.contains(u"damaged"), qPrintable(r.err));
        QCOMPARE(digest(home.store()), before);
    }

    // The way back from the command line: a restore over a damaged store
    // keeps the damaged file aside, byte for byte.
    void restoreOverDamagedStore()
    {
        Home home;
        QCOMPARE(trestle(home, {u"sample"_s}).code, 0);
        const QString zip = home.dir.filePath(u"good.zip"_s);
        QCOMPARE(trestle(home, {u"backup"_s, zip}).code, 0);
        QFile f(home.store());
        QVERIFY(f.open(QIODevice::ReadWrite));
        f.resize(f.size() / 3);
        f.close();
        const QByteArray damaged = digest(home.store());
        QCOMPARE(trestle(home, {u"info"_s}).code, 1);
        const Run r = trestle(home, {u"restore"_s, zip, u"--yes"_s});
        QCOMPARE(r.code, 0);
        const QStringList aside = QDir(QFileInfo(home.folder()).absolutePath())
                                      .entryList({u"Trestle (before restore *)"_s}, QDir::Dirs);
        QCOMPARE(aside.size(), 1);
        QCOMPARE(
            digest(QFileInfo(home.folder()).absolutePath() + u'/' + aside.first() + u"/trestle.sqlite"_s),
            damaged);
        const Run info = trestle(home, {u"info"_s});
        QCOMPARE(info.code, 0);
        QVERIFY(info.out.contains(u"Grand Valley Builders"));
    }

    // A verb that cannot write says why and never claims success.
    void verbOnFullDisk()
    {
        Home home;
        const Run r = trestle(home, {u"sample"_s}, {u"TRESTLE_MAX_PAGES=8"_s});
        QCOMPARE(r.code, 1);
        QVERIFY2(r.out.isEmpty(), qPrintable(r.out));
        QCOMPARE(r.err.count(u'\n'), 1);
        QVERIFY2(r.err.contains(u"disk is full") && r.err.contains(u"not written"), qPrintable(r.err));
    }
};

// A window over the store that edits a record through the editor's binding,
// adds one now and then, and reports each edit once it returned; until killed.
static TestMain::RegisterChild windowWriter(u"window-writer"_s, [](const QStringList &args) -> int {
    DB db(args.at(0));
    Nav nav;
    nav.setModule(u"contacts"_s);
    TLWindow w(db, nav);
    w.show();
    const QString tag = args.at(1);
    QStringList ids;
    db.visit(u"contact"_s, {}, [&](const Rec &r) { ids << r.id; });
    int n = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const QString value = tag + u'.' + QString::number(n);
        QString id;
        if (n % 3 == 0) {
            id = db.add(u"contact"_s, {}, {}, {{u"notes"_s, value}}).id;
            ids << id;
        } else {
            id = ids.at(n % ids.size());
            recBinding(db, id, u"notes"_s).set(value);
        }
        if (db.unsavedCount() == 0)
            std::printf("saved %s %s\n", qPrintable(id), qPrintable(value));
        std::fflush(stdout);
        ++n;
    });
    tick.start(0);
    return QApplication::exec();
});

TRESTLE_TEST(WindowFaultTests);
#include "windowfaulttests.moc"
