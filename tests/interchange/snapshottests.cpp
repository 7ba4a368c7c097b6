#include "testmain.h"

#include "interchange/snapshots.h"
#include "interchange/storecopy.h"
#include "store/db.h"

#include <QtCore/QDirIterator>
#include <QtCore/QSaveFile>
#include <QtCore/QThread>

#include <atomic>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(f.write(data), data.size());
}

// Root may write into a read-only folder; for the length of one call the
// process acts as the unprivileged "nobody", as any real user would.
class AsUnprivileged
{
public:
    AsUnprivileged()
    {
        if (::geteuid() != 0)
            return;
        m_active = ::setegid(65534) == 0 && ::seteuid(65534) == 0;
    }
    ~AsUnprivileged()
    {
        if (m_active) {
            (void)!::seteuid(0);
            (void)!::setegid(0);
        }
    }
    AsUnprivileged(const AsUnprivileged &) = delete;
    AsUnprivileged &operator=(const AsUnprivileged &) = delete;

private:
    bool m_active = false;
};

ino_t inode(const QString &path)
{
    struct stat st
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 ? st.st_ino : 0;
}

QHash<QString, Rec> recordsOf(const DB &db)
{
    QHash<QString, Rec> all;
    db.forEach([&](const Rec &r) { all.insert(r.id, r); });
    return all;
}

// The records of a database file, read without touching the file.
QHash<QString, Rec> recordsIn(const QString &database)
{
    QTemporaryDir scratch;
    QFile::copy(database, scratch.filePath(u"trestle.sqlite"_s));
    DB db(scratch.filePath(u"trestle.sqlite"_s));
    return recordsOf(db);
}

// Every file under `root` by relative path, with its bytes.
QMap<QString, QByteArray> tree(const QString &root)
{
    QMap<QString, QByteArray> out;
    QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        out.insert(QDir(root).relativeFilePath(path), readAll(path));
    }
    return out;
}

} // namespace

class SnapshotTests : public QObject
{
    Q_OBJECT

    QTemporaryDir scratch;
    QString home;   // the data folder's parent
    QString folder; // the data folder
    QString database;

    QStringList snapshotNames() const
    {
        return QDir(Snapshots::folder(folder)).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    // A company with records, a plan sheet, a photo and a logo.
    void fill(DB &db, int punches = 50)
    {
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        const Rec p = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Tower"_s}});
        QList<Rec> items;
        for (int k = 0; k < punches; ++k) {
            Rec r{newID(), u"punch"_s, db.companyID(), p.id, {}, nowSeconds(), nowSeconds(), {}};
            r.f.insert(u"title"_s, u"Item %1"_s.arg(k));
            items.append(r);
        }
        db.saveAll(items); // one transaction: thousands of records in a blink
        writeFile(db.fileURL(u"ABCD1234-A-101 Floor Plan.pdf"_s),
                  QByteArray("%PDF-1.4 sheet").repeated(3000));
        writeFile(db.fileURL(u"EF012345-photo.jpg"_s), QByteArray("\xff\xd8 photo").repeated(100));
        writeFile(QDir(folder).filePath(u"Logo/logo.png"_s), "\x89PNG logo");
        db.add(u"photo"_s, p.id, {}, {{u"file"_s, u"EF012345-photo.jpg"_s}});
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(scratch.isValid());
        home = scratch.filePath(u"home-"_s + newID().left(8));
        folder = QDir(home).filePath(u"Trestle"_s);
        database = QDir(folder).filePath(u"trestle.sqlite"_s);
        QVERIFY(QDir().mkpath(folder));
    }

    // A snapshot holds the records as they are and every stored file, linked.
    void makeHoldsEverything()
    {
        DB db(database);
        fill(db);
        QString made;
        const Backup::Result r = Snapshots::make(db, &made);
        QVERIFY2(r.ok, qPrintable(r.message));
        QCOMPARE(QFileInfo(made).absolutePath(), QDir(home).filePath(u"Trestle Snapshots"_s));
        QVERIFY(QDateTime::fromString(QFileInfo(made).fileName(), u"yyyy-MM-dd HHmmss"_s).isValid());

        // A database on its own: no log beside it, the rollback format in its header.
        QCOMPARE(QDir(made).entryList({u"trestle.sqlite*"_s}, QDir::Files), QStringList{u"trestle.sqlite"_s});
        const QByteArray head = readAll(QDir(made).filePath(u"trestle.sqlite"_s)).left(20);
        QCOMPARE(int(head.at(18)), 1);
        QCOMPARE(recordsIn(QDir(made).filePath(u"trestle.sqlite"_s)), recordsOf(db));

        QMap<QString, QByteArray> live = tree(folder);
        for (const QString &name : live.keys())
            if (name.startsWith(u"trestle.sqlite"_s))
                live.remove(name);
        QMap<QString, QByteArray> copy = tree(made);
        copy.remove(u"trestle.sqlite"_s);
        QCOMPARE(copy, live);
        const QString sheet = db.fileURL(u"ABCD1234-A-101 Floor Plan.pdf"_s);
        QCOMPARE(inode(QDir(made).filePath(QDir(folder).relativeFilePath(sheet))), inode(sheet));
        QCOMPARE(inode(QDir(made).filePath(u"Logo/logo.png"_s)),
                 inode(QDir(folder).filePath(u"Logo/logo.png"_s)));

        // Nothing of the snapshot ever reaches the data folder's own tree.
        QVERIFY(!QFileInfo::exists(QDir(folder).filePath(u"Trestle Snapshots"_s)));
    }

    // Newest first, each with its own count of records; one cut short is left out.
    void listNewestFirst()
    {
        DB db(database);
        fill(db, 10);
        const QDateTime base(QDate(2026, 3, 2), QTime(9, 15, 7));
        QList<qint64> counts;
        for (int k = 0; k < 3; ++k) {
            db.add(u"punch"_s, {}, {}, {{u"title"_s, u"more"_s}});
            const Backup::Result r = Snapshots::make(database, base.addDays(k * 3).addSecs(k * 61));
            QVERIFY2(r.ok, qPrintable(r.message));
            counts.prepend(db.size());
        }
        // Cut short halfway, as a full disk would leave it.
        const QString torn = QDir(Snapshots::folder(folder)).filePath(u"2026-03-20 080000"_s);
        QVERIFY(QDir().mkpath(torn));
        const QByteArray whole =
            readAll(QDir(Snapshots::folder(folder)).filePath(u"2026-03-02 091507/trestle.sqlite"_s));
        writeFile(QDir(torn).filePath(u"trestle.sqlite"_s), whole.left(whole.size() / 2));

        const QList<Snapshots::Info> all = Snapshots::list(folder);
        QCOMPARE(all.size(), 3);
        QCOMPARE(all.at(0).taken, base.addDays(6).addSecs(122));
        QCOMPARE(all.at(2).taken, base);
        QCOMPARE(QFileInfo(all.at(1).path).fileName(), u"2026-03-05 091608"_s);
        for (int k = 0; k < 3; ++k)
            QCOMPARE(all.at(k).records, counts.at(k));
        QCOMPARE(Snapshots::newest(folder), base.addDays(6).addSecs(122));
    }

    // A snapshot that cannot be made leaves nothing behind and says why.
    void failedMakeLeavesNothing_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("words");
        QTest::newRow("not a database") << u"garbage"_s << u"could not be read"_s;
        QTest::newRow("damaged store") << u"damaged"_s << u"did not pass its check"_s;
        QTest::newRow("no store file") << u"missing"_s << u"the file is missing"_s;
        QTest::newRow("read-only snapshot folder") << u"readonly"_s << u"could not be written"_s;
        QTest::newRow("name taken by a file") << u"blocked"_s << u"could not be made"_s;
    }
    void failedMakeLeavesNothing()
    {
        QFETCH(QString, fault);
        QFETCH(QString, words);
        {
            DB db(database);
            fill(db, 3000);
        }
        const QString snapshots = Snapshots::folder(folder);
        if (fault == u"garbage") {
            writeFile(database, QByteArray("this is no database at all ").repeated(100));
        } else if (fault == u"damaged") {
            // Scribble over pages in the middle: the header stays whole.
            QFile f(database);
            QVERIFY(f.open(QIODevice::ReadWrite));
            QVERIFY(f.size() > 20 * 4096);
            f.seek(8 * 4096);
            f.write(QByteArray(6 * 4096, '\x5a'));
        } else if (fault == u"missing") {
            QFile::remove(database);
        } else if (fault == u"readonly") {
            QVERIFY(QDir().mkpath(snapshots));
            QFile::setPermissions(snapshots,
                                  QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther);
            // Under root the call runs unprivileged: it must reach the store, and only the snapshots are
            // shut.
            const auto open =
                QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther;
            QFile::setPermissions(scratch.path(), open);
            QFile::setPermissions(home, open);
            QFile::setPermissions(folder, open | QFile::WriteOther);
            for (const QString &name : QDir(folder).entryList(QDir::Files))
                QFile::setPermissions(QDir(folder).filePath(name), QFile::ReadOwner | QFile::WriteOwner |
                                                                       QFile::ReadOther | QFile::WriteOther);
        } else {
            writeFile(snapshots, "a file where the folder goes");
        }
        const QByteArray before = readAll(database);
        QString made = u"untouched"_s;
        Backup::Result r;
        {
            std::optional<AsUnprivileged> user;
            if (fault == u"readonly")
                user.emplace();
            QVERIFY2(fault != u"readonly" || ::faccessat(AT_FDCWD, QFile::encodeName(snapshots).constData(),
                                                         W_OK, AT_EACCESS) != 0,
                     "the snapshot folder is writable for this test: it could not shut it");
            r = Snapshots::make(database, QDateTime::currentDateTime(), &made);
        }
        QFile::setPermissions(snapshots, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(!r.ok);
        QCOMPARE(r.title, u"Snapshot failed"_s);
        QVERIFY2(r.message.contains(words), qPrintable(r.message));
        QCOMPARE(made, u"untouched"_s);
        if (QFileInfo(snapshots).isDir())
            QCOMPARE(snapshotNames(), QStringList());
        QCOMPARE(readAll(database), before);
        QVERIFY(Snapshots::list(folder).isEmpty());
    }

    // Over a simulated stretch of use, what prune keeps.
    void retention_data()
    {
        QTest::addColumn<int>("days");    // how long the program is used
        QTest::addColumn<int>("every");   // a snapshot every this many days
        QTest::addColumn<int>("perDay");  // snapshots on each such day
        QTest::addColumn<int>("gapFrom"); // a stretch without use: from this day...
        QTest::addColumn<int>("gapTo");   // ...to this one (exclusive)
        QTest::addColumn<int>("kept");    // snapshots left at the end
        // 14 days, plus the newest of each of the 11 months before this one.
        QTest::newRow("every day for a year and a half") << 540 << 1 << 1 << 0 << 0 << 25;
        // The last 14 days reach back into last month, whose newest they hold.
        QTest::newRow("three a day") << 400 << 1 << 3 << 0 << 0 << 24;
        // Each weekly snapshot counts as a day: 14 of them reach back four months.
        QTest::newRow("once a week") << 400 << 7 << 1 << 0 << 0 << 22;
        QTest::newRow("a long break") << 400 << 1 << 1 << 200 << 390 << 18;
        QTest::newRow("only two weeks") << 10 << 1 << 2 << 0 << 0 << 10;
    }
    void retention()
    {
        QFETCH(int, days);
        QFETCH(int, every);
        QFETCH(int, perDay);
        QFETCH(int, gapFrom);
        QFETCH(int, gapTo);
        QFETCH(int, kept);
        const QDateTime start(QDate(2025, 1, 6), QTime(7, 30));
        const QString snapshots = Snapshots::folder(folder);
        QList<QDateTime> made;
        QDateTime now;
        for (int d = 0; d < days; d += every) {
            if (d >= gapFrom && d < gapTo)
                continue;
            for (int k = 0; k < perDay; ++k) {
                now = start.addDays(d).addSecs(k * 4 * 3600);
                writeFile(
                    QDir(snapshots).filePath(now.toString(u"yyyy-MM-dd HHmmss"_s) + u"/trestle.sqlite"_s),
                    "x");
                made.append(now);
                Snapshots::prune(folder, now);
            }
        }
        QStringList left = snapshotNames();
        QCOMPARE(left.size(), kept);
        QList<QDateTime> keptTimes;
        for (const QString &name : left)
            keptTimes.append(QDateTime::fromString(name, u"yyyy-MM-dd HHmmss"_s));
        std::sort(made.begin(), made.end(), std::greater<>());
        // The newest snapshot of each of the 14 newest days with one survives.
        QSet<QDate> days14;
        for (const QDateTime &t : std::as_const(made)) {
            if (days14.contains(t.date()))
                continue;
            if (days14.size() == 14)
                break;
            days14.insert(t.date());
            QVERIFY2(keptTimes.contains(t), qPrintable(t.toString()));
        }
        // So does the newest of each month that is less than a year old.
        const int thisMonth = now.date().year() * 12 + now.date().month();
        QSet<int> monthsSeen;
        for (const QDateTime &t : std::as_const(made)) {
            const int month = t.date().year() * 12 + t.date().month();
            if (monthsSeen.contains(month))
                continue;
            monthsSeen.insert(month);
            QCOMPARE(keptTimes.contains(t), thisMonth - month < 12 || days14.contains(t.date()));
        }
        // Never two of one day.
        QSet<QDate> keptDays;
        for (const QDateTime &t : std::as_const(keptTimes))
            keptDays.insert(t.date());
        QCOMPARE(keptDays.size(), keptTimes.size());
    }

    // An unfinished snapshot is swept up once its maker is gone, never while it works.
    void pruneSweepsAbandoned()
    {
        const QString snapshots = Snapshots::folder(folder);
        const QString mine =
            QDir(snapshots).filePath(u".partial-%1-abc"_s.arg(QCoreApplication::applicationPid()));
        QProcess gone;
        gone.start(u"true"_s);
        QVERIFY(gone.waitForFinished());
        const QString orphan =
            QDir(snapshots).filePath(u".partial-%1-def"_s.arg(gone.processId() ? gone.processId() : 999999));
        writeFile(QDir(mine).filePath(u"trestle.sqlite"_s), "x");
        writeFile(QDir(orphan).filePath(u"trestle.sqlite"_s), "x");
        Snapshots::prune(folder, QDateTime::currentDateTime());
        QVERIFY(QFileInfo::exists(mine));
        QVERIFY(!QFileInfo::exists(orphan));
    }

    // A restore brings back records and files; the current data stays aside, the snapshot intact.
    void restoreRoundTrip()
    {
        QHash<QString, Rec> before;
        QByteArray sheetBytes;
        QString sheet, made;
        {
            DB db(database);
            fill(db);
            before = recordsOf(db);
            sheet = db.fileURL(u"ABCD1234-A-101 Floor Plan.pdf"_s);
            sheetBytes = readAll(sheet);
            QVERIFY(Snapshots::make(db, &made).ok);
            // What the restore must undo: a project deleted with its files, a sheet marked up.
            db.add(u"punch"_s, {}, {}, {{u"title"_s, u"after the snapshot"_s}});
            for (const Rec &p : db.list(u"project"_s))
                db.remove(p.id);
            QSaveFile marked(sheet);
            QVERIFY(marked.open(QIODevice::WriteOnly));
            marked.write("%PDF-1.4 marked up");
            QVERIFY(marked.commit());
        }
        const QMap<QString, QByteArray> snapshotBefore = tree(made);
        const Backup::Result r = Snapshots::restore(made, folder);
        QVERIFY2(r.ok, qPrintable(r.message));
        QVERIFY2(r.message.contains(QFileInfo(made).fileName()), qPrintable(r.message));
        {
            DB db(database);
            QCOMPARE(recordsOf(db), before);
            QCOMPARE(readAll(sheet), sheetBytes);
            QCOMPARE(readAll(QDir(folder).filePath(u"Logo/logo.png"_s)), QByteArray("\x89PNG logo"));
            // Working on the restored data never reaches the snapshot.
            db.add(u"punch"_s, {}, {}, {{u"title"_s, u"after the restore"_s}});
        }
        QCOMPARE(tree(made), snapshotBefore);
        QCOMPARE(QFileInfo(folder).permissions() & (QFile::ReadOther | QFile::ReadGroup),
                 QFile::Permissions());
        QStringList left = QDir(home).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(left.size(), 3);
        QCOMPARE(left.at(0), u"Trestle"_s);
        QVERIFY(left.at(1).startsWith(u"Trestle (before restore "_s));
        QCOMPARE(left.at(2), u"Trestle Snapshots"_s);
        // The data as it was before the restore waits aside, marks and all.
        QCOMPARE(readAll(QDir(home).filePath(left.at(1)) + u'/' + QDir(folder).relativeFilePath(sheet)),
                 QByteArray("%PDF-1.4 marked up"));
    }

    // A broken snapshot is refused before anything moves.
    void refuseBroken_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("words");
        QTest::newRow("cut short") << u"truncated"_s << u"incomplete"_s;
        QTest::newRow("pages scribbled over") << u"damaged"_s << u"damaged"_s;
        QTest::newRow("no database") << u"missing"_s << u"no Trestle database"_s;
        QTest::newRow("not a database") << u"garbage"_s << u"incomplete"_s;
        QTest::newRow("another program's database") << u"foreign"_s << u"no Trestle records"_s;
        QTest::newRow("no folder at all") << u"nofolder"_s << u"no Trestle database"_s;
    }
    void refuseBroken()
    {
        QFETCH(QString, fault);
        QFETCH(QString, words);
        QString made;
        {
            DB db(database);
            fill(db, 3000);
            QVERIFY(Snapshots::make(db, &made).ok);
        }
        const QString copy = QDir(made).filePath(u"trestle.sqlite"_s);
        const QByteArray whole = readAll(copy);
        if (fault == u"truncated") {
            writeFile(copy, whole.left(whole.size() - 4096));
        } else if (fault == u"damaged") {
            QByteArray bytes = whole;
            bytes.replace(6 * 4096, 8 * 4096, QByteArray(8 * 4096, '\x5a'));
            writeFile(copy, bytes);
        } else if (fault == u"missing") {
            QFile::remove(copy);
        } else if (fault == u"garbage") {
            writeFile(copy, QByteArray("not a database ").repeated(500));
        } else if (fault == u"foreign") {
            QFile::remove(copy);
            sqlite3 *other = nullptr;
            QCOMPARE(sqlite3_open(QFile::encodeName(copy).constData(), &other), SQLITE_OK);
            sqlite3_exec(other, "CREATE TABLE songs (title TEXT); INSERT INTO songs VALUES ('x')", nullptr,
                         nullptr, nullptr);
            sqlite3_close(other);
        } else {
            made = QDir(home).filePath(u"nowhere"_s);
        }
        const QMap<QString, QByteArray> data = tree(folder);
        const Backup::Result r = Snapshots::restore(made, folder);
        QVERIFY(!r.ok);
        QCOMPARE(r.title, u"Not a usable snapshot"_s);
        QVERIFY2(r.message.contains(words), qPrintable(r.message));
        QVERIFY(r.message.endsWith(u"Nothing was changed."_s));
        QCOMPARE(tree(folder), data);
        QCOMPARE(QDir(home).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                 (QStringList{u"Trestle"_s, u"Trestle Snapshots"_s}));
        // Only a full check finds scribbled pages; the rest never show in the list.
        if (fault != u"damaged" && fault != u"nofolder")
            QVERIFY(Snapshots::list(folder).isEmpty());
    }

    // Copies taken while another connection keeps rewriting the store are whole and consistent.
    void consistentWhileWriting_data()
    {
        QTest::addColumn<bool>("zip");
        QTest::newRow("snapshot") << false;
        QTest::newRow("backup zip") << true;
    }
    void consistentWhileWriting()
    {
        QFETCH(bool, zip);
        DB db(database);
        fill(db, 10);
        db.checkpoint();
        // The writer replaces a batch of 400 large rows in each transaction, so
        // the log fills and is folded back into the file while the copies run.
        std::atomic<bool> stop = false;
        std::atomic<int> batches = 0;
        std::thread writer([&] {
            sqlite3 *w = nullptr;
            sqlite3_open(QFile::encodeName(database).constData(), &w);
            sqlite3_busy_timeout(w, 5000);
            sqlite3_exec(w, "CREATE TABLE IF NOT EXISTS churn (batch INTEGER, pad TEXT)", nullptr, nullptr,
                         nullptr);
            for (int b = 1; !stop; ++b) {
                const QByteArray sql =
                    "BEGIN; DELETE FROM churn; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 "
                    "FROM n WHERE i < 400) INSERT INTO churn SELECT " +
                    QByteArray::number(b) + ", randomblob(3000) FROM n; COMMIT;";
                if (sqlite3_exec(w, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK)
                    batches = b;
            }
            sqlite3_close(w);
        });
        while (batches < 3)
            QThread::msleep(5);
        QStringList copies;
        for (int k = 0; k < 4; ++k) {
            QString made;
            if (zip) {
                const QString zipPath = QDir(home).filePath(u"b%1.zip"_s.arg(k));
                const Backup::Result r = Backup::backup(db, zipPath);
                QVERIFY2(r.ok, qPrintable(r.message));
                const QString out = QDir(home).filePath(u"unzipped%1"_s.arg(k));
                QProcess unzip;
                unzip.start(u"python3"_s,
                            {u"-c"_s,
                             u"import zipfile,sys; zipfile.ZipFile(sys.argv[1]).extractall(sys.argv[2])"_s,
                             zipPath, out});
                QVERIFY(unzip.waitForFinished(60000));
                QCOMPARE(unzip.exitCode(), 0);
                QCOMPARE(QDir(out + u"/Trestle"_s).entryList({u"trestle.sqlite*"_s}, QDir::Files),
                         QStringList{u"trestle.sqlite"_s});
                made = out + u"/Trestle"_s;
            } else {
                const Backup::Result r =
                    Snapshots::make(database, QDateTime::currentDateTime().addDays(k), &made);
                QVERIFY2(r.ok, qPrintable(r.message));
            }
            copies.append(QDir(made).filePath(u"trestle.sqlite"_s));
        }
        stop = true;
        writer.join();
        for (const QString &copy : std::as_const(copies)) {
            StoreCopy check(copy);
            QCOMPARE(check.check(), QString());
            QCOMPARE(check.records(), db.size());
            sqlite3 *c = nullptr;
            QCOMPARE(sqlite3_open_v2(QFile::encodeName(copy).constData(), &c, SQLITE_OPEN_READONLY, nullptr),
                     SQLITE_OK);
            sqlite3_stmt *s = nullptr;
            sqlite3_prepare_v2(c, "SELECT count(*), count(DISTINCT batch) FROM churn", -1, &s, nullptr);
            QCOMPARE(sqlite3_step(s), SQLITE_ROW);
            QCOMPARE(sqlite3_column_int(s, 0), 400);
            QCOMPARE(sqlite3_column_int(s, 1), 1);
            sqlite3_finalize(s);
            sqlite3_close(c);
        }
    }

    // The window's rule: a snapshot is due after 20 hours, and never of an empty store.
    void due_data()
    {
        QTest::addColumn<int>("hoursSince"); // -1: no snapshot yet
        QTest::addColumn<qint64>("records");
        QTest::addColumn<bool>("due");
        QTest::newRow("none yet") << -1 << qint64(40) << true;
        QTest::newRow("yesterday evening") << 14 << qint64(40) << false;
        QTest::newRow("just under") << 20 << qint64(40) << false;
        QTest::newRow("just over") << 21 << qint64(40) << true;
        QTest::newRow("empty store") << -1 << qint64(0) << false;
    }
    void due()
    {
        QFETCH(int, hoursSince);
        QFETCH(qint64, records);
        QFETCH(bool, due);
        const QDateTime now(QDate(2026, 6, 10), QTime(8, 0));
        if (hoursSince >= 0) {
            DB db(database);
            fill(db, 2);
            QVERIFY(Snapshots::make(database, now.addSecs(-hoursSince * 3600), nullptr).ok);
        }
        QCOMPARE(Snapshots::due(folder, records, now), due);
    }

    // The window's snapshot holds the store as it was when asked, whatever is written meanwhile.
    void backgroundPinsTheMoment()
    {
        DB db(database);
        fill(db, 200);
        const QHash<QString, Rec> before = recordsOf(db);
        bool finished = false;
        QString made;
        Snapshots::makeInBackground(db, [&](const Backup::Result &r, const QString &path) {
            QVERIFY2(r.ok, qPrintable(r.message));
            made = path;
            finished = true;
        });
        db.add(u"punch"_s, {}, {}, {{u"title"_s, u"typed while the copy runs"_s}});
        QTRY_VERIFY_WITH_TIMEOUT(finished, 60000);
        QCOMPARE(recordsIn(QDir(made).filePath(u"trestle.sqlite"_s)), before);
    }

    // A file about to be edited outside gets its own inode; the snapshot keeps the old bytes.
    void unshareKeepsSnapshot()
    {
        DB db(database);
        fill(db, 1);
        QString made;
        QVERIFY(Snapshots::make(db, &made).ok);
        const QString sheet = db.fileURL(u"ABCD1234-A-101 Floor Plan.pdf"_s);
        const QString kept = QDir(made).filePath(QDir(folder).relativeFilePath(sheet));
        const QByteArray old = readAll(kept);
        QVERIFY(Snapshots::unshare(sheet));
        QVERIFY(inode(sheet) != inode(kept));
        QFile inPlace(sheet);
        QVERIFY(inPlace.open(QIODevice::ReadWrite));
        inPlace.write("edited in place by another program");
        inPlace.close();
        QCOMPARE(readAll(kept), old);
        QVERIFY(Snapshots::unshare(sheet)); // alone already: nothing to do
    }
};

TRESTLE_TEST(SnapshotTests);
#include "snapshottests.moc"
