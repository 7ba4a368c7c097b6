// The store under real faults: a full disk, a read-only file, a damaged or
// foreign file, and the one-writer lock of the data folder.
#include "store/db.h"
#include "store/folderlock.h"
#include "testmain.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <QtCore/QThread>
#include <QtTest/QSignalSpy>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QByteArray digest(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256);
}

// A store file with a company and a few contacts, its log folded in.
QStringList makeStore(const QString &path, int contacts = 30)
{
    DB db(path);
    QStringList ids{db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s).id};
    for (int k = 0; k < contacts; ++k)
        ids << db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Contact "_s + QString::number(k)}}).id;
    db.checkpoint();
    return ids;
}

// Enough text that writing it needs fresh pages.
QString bulk(const QString &tag)
{
    return tag + QString(6000, u'x');
}

} // namespace

class FaultTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Each kind of write on a full disk: the change stays in memory, nothing
    // of it reaches the file, and once space returns the next write carries
    // it to disk before its own.
    void fullDiskKeepsChanges_data()
    {
        QTest::addColumn<QString>("op");
        QTest::newRow("save") << u"save"_s;
        QTest::newRow("saveAll") << u"saveAll"_s;
        QTest::newRow("add") << u"add"_s;
        QTest::newRow("remove") << u"remove"_s;
    }
    void fullDiskKeepsChanges()
    {
        QFETCH(QString, op);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        const QStringList ids = makeStore(path);
        QStringList changed; // ids whose new state must survive
        {
            DB db(path);
            QSignalSpy failures(&db, &DB::writeFailed);
            db.setPageLimit(1); // no room to grow beyond what it holds now
            if (op == u"save") {
                Rec r = *db.get(ids.at(3));
                r.f.insert(u"note"_s, bulk(u"one"_s));
                db.save(r);
                changed << r.id;
            } else if (op == u"saveAll") {
                QList<Rec> batch;
                for (int k = 1; k <= 4; ++k) {
                    Rec r = *db.get(ids.at(k));
                    r.f.insert(u"note"_s, bulk(QString::number(k)));
                    batch << r;
                    changed << r.id;
                }
                db.saveAll(batch);
            } else if (op == u"add") {
                changed << db.add(u"contact"_s, {}, {}, {{u"note"_s, bulk(u"new"_s)}}).id;
            } else {
                // A removal that shrinks the file still goes through; one behind a waiting change waits too.
                Rec r = *db.get(ids.at(2));
                r.f.insert(u"note"_s, bulk(u"first"_s));
                db.save(r);
                db.remove(ids.at(5));
                changed << r.id << ids.at(5);
            }
            QVERIFY(db.unsavedCount() >= 1);
            QCOMPARE(db.unsavedCause(), u"the disk is full"_s);
            QVERIFY(!failures.isEmpty());
            for (const QString &id : std::as_const(changed))
                QVERIFY(db.isUnsaved(id));
            QVERIFY(!db.retryUnsaved());
            // The file still holds the old state: nothing was half written.
            {
                DB other(path);
                for (const QString &id : std::as_const(changed)) {
                    const auto rec = other.get(id);
                    QVERIFY(!rec || !rec->f.value(u"note").contains(u"xxx"));
                    if (op == u"remove" && id == ids.at(5))
                        QVERIFY(rec.has_value());
                }
            }
            db.setPageLimit(0);
            // The next ordinary write carries the waiting ones first.
            db.add(u"contact"_s, {}, {}, {{u"name"_s, u"after"_s}});
            QCOMPARE(db.unsavedCount(), 0);
            QVERIFY(db.unsavedCause().isEmpty());
        }
        DB again(path);
        for (const QString &id : std::as_const(changed)) {
            const auto rec = again.get(id);
            if (op == u"remove" && id == ids.at(5))
                QVERIFY2(!rec, "a removal that waited came back");
            else
                QVERIFY2(rec && rec->f.value(u"note").endsWith(u"xxx"), "a waiting change was lost");
        }
    }

    // Nobody writes again: the store's own timer writes what waits.
    void retriesOnItsOwn()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        const QStringList ids = makeStore(path, 3);
        DB db(path);
        QSignalSpy changes(&db, &DB::unsavedChanged);
        db.setPageLimit(1);
        Rec r = *db.get(ids.at(1));
        r.f.insert(u"note"_s, bulk(u"t"_s));
        db.save(r);
        QCOMPARE(db.unsavedCount(), 1);
        db.setPageLimit(0);
        QTRY_COMPARE_WITH_TIMEOUT(db.unsavedCount(), 0, 6000);
        QCOMPARE(changes.size(), 2); // once failed, once written
        QCOMPARE(DB(path).get(r.id)->f.value(u"note"), r.f.value(u"note"));
    }

    // A file marked read-only is read, never written, and says why.
    void readOnlyFile()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        const QStringList ids = makeStore(path, 3);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup);
        const QByteArray before = digest(path);
        {
            DB db(path);
            QVERIFY(db.isOpen());
            QVERIFY(db.readOnly());
            QCOMPARE(db.size(), 4 + 1 + 22); // company, contacts, owner, cost codes
            Rec r = *db.get(ids.at(1));
            r.f.insert(u"name"_s, u"Changed"_s);
            db.save(r);
            QCOMPARE(db.unsavedCount(), 1);
            QVERIFY2(db.unsavedCause().contains(u"read-only"), qPrintable(db.unsavedCause()));
            QCOMPARE(db.get(r.id)->f.value(u"name"), u"Changed"_s);
        }
        QCOMPARE(digest(path), before);
    }

    // Files that are not a healthy store: opened, found out, and left byte for byte as they were.
    void damagedFilesUntouched_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<int>("state");
        QTest::newRow("truncated") << u"truncate"_s << int(DB::OpenState::Damaged);
        QTest::newRow("text file") << u"text"_s << int(DB::OpenState::Damaged);
        QTest::newRow("picture") << u"png"_s << int(DB::OpenState::Damaged);
        QTest::newRow("scribbled pages") << u"scribble"_s << int(DB::OpenState::Damaged);
    }
    void damagedFilesUntouched()
    {
        QFETCH(QString, how);
        QFETCH(int, state);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        makeStore(path, 200);
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadWrite));
        if (how == u"truncate") {
            f.resize(f.size() / 2);
        } else if (how == u"text") {
            f.resize(0);
            f.write("Dear Sir, this is a letter, not a store.\n");
        } else if (how == u"png") {
            f.resize(0);
            f.write(QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(5000, '\x07'));
        } else {
            // Garbage over the middle of the file, the header left intact.
            f.seek(f.size() / 3);
            f.write(QByteArray(int(f.size() / 3), '\xA5'));
        }
        f.close();
        const QByteArray before = digest(path);
        {
            DB db(path);
            QCOMPARE(int(db.openState()), state);
            QVERIFY(!db.isOpen());
            QVERIFY2(db.openProblem().contains(path), qPrintable(db.openProblem()));
            QVERIFY(db.openProblem().contains(u"damaged"));
            QCOMPARE(db.size(), 0);
            // Whatever a caller does next, the file is not written.
            db.add(u"company"_s, {}, {}, {{u"name"_s, u"Ghost"_s}});
            QCOMPARE(db.unsavedCount(), 1);
            QVERIFY(!db.retryUnsaved());
        }
        QCOMPARE(digest(path), before);
        QVERIFY(!QFileInfo::exists(path + u"-wal"_s) || QFileInfo(path + u"-wal"_s).size() == 0);
    }

    // Files that cannot be opened at all say why in their own words.
    void unopenable_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("words");
        QTest::newRow("missing folder") << u"folder"_s << u"folder does not exist"_s;
        QTest::newRow("full at open") << u"full"_s << u"disk is full"_s;
    }
    void unopenable()
    {
        QFETCH(QString, how);
        QFETCH(QString, words);
        QTemporaryDir dir;
        QString path = dir.filePath(u"trestle.sqlite"_s);
        if (how == u"folder")
            path = dir.filePath(u"gone/trestle.sqlite"_s);
        else
            qputenv("TRESTLE_MAX_PAGES", "1");
        DB db(path);
        qunsetenv("TRESTLE_MAX_PAGES");
        QCOMPARE(db.openState(), DB::OpenState::Unopenable);
        QVERIFY2(db.openProblem().contains(words), qPrintable(db.openProblem()));
        QVERIFY(db.openProblem().contains(path));
    }

    // What waits can be put in a file the user chooses, whole.
    void unsavedToFile()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        const QStringList ids = makeStore(path, 3);
        DB db(path);
        db.setPageLimit(1);
        const Rec added = db.add(u"contact"_s, {}, {}, {{u"note"_s, bulk(u"keep"_s)}});
        db.remove(ids.at(1));
        QCOMPARE(db.unsavedCount(), 2);
        const QString out = dir.filePath(u"rescue.json"_s);
        QVERIFY(db.saveUnsavedTo(out));
        QFile f(out);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QJsonObject top = QJsonDocument::fromJson(f.readAll()).object();
        QCOMPARE(top.value(u"records"_s).toArray().size(), 1);
        QCOMPARE(top.value(u"records"_s).toArray().at(0).toObject().value(u"id"_s).toString(), added.id);
        QCOMPARE(top.value(u"removed"_s).toArray().at(0).toString(), ids.at(1));
        QString error;
        QVERIFY(!db.saveUnsavedTo(dir.filePath(u"no/such/folder/x.json"_s), &error));
        QVERIFY(!error.isEmpty());
    }

    // The lock: held by a live process, free once that process was killed.
    void folderLock()
    {
        QTemporaryDir dir;
        const QString folder = dir.filePath(u"Trestle"_s);
        QDir().mkpath(folder);
        QVERIFY(!FolderLock::windowHolds(folder));
        QProcess holder;
        holder.start(QCoreApplication::applicationFilePath(), {u"--child"_s, u"hold-folder"_s, folder});
        QVERIFY(holder.waitForReadyRead(10000));
        QCOMPARE(holder.readLine().trimmed(), QByteArray("held"));
        QString who;
        QVERIFY(FolderLock::windowHolds(folder, &who));
        QVERIFY2(who.contains(QString::number(holder.processId())), qPrintable(who));
        FolderLock::Hold mine;
        QVERIFY(!mine.take(folder));
        holder.kill(); // SIGKILL: the lock file stays behind, stale
        holder.waitForFinished();
        QVERIFY(QFileInfo::exists(FolderLock::lockPath(folder)));
        QVERIFY(!FolderLock::windowHolds(folder));
        QVERIFY(mine.take(folder));
        QVERIFY(mine.held());
    }
};

static TestMain::RegisterChild holdFolder(u"hold-folder"_s, [](const QStringList &args) -> int {
    FolderLock::Hold hold;
    if (!hold.take(args.at(0)))
        return 1;
    std::printf("held\n");
    std::fflush(stdout);
    for (;;)
        QThread::sleep(1);
});

TRESTLE_TEST(FaultTests);
#include "faulttests.moc"
