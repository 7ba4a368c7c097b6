// Loading a file of unsaved changes back into a store: the changes a full
// disk kept from the file come back, a newer record in the store wins, and a
// file that is damaged or not such a file changes nothing.
#include "store/db.h"
#include "store/recovery.h"
#include "testmain.h"

#include <QtCore/QDateTime>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtTest/QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

QString bulk(const QString &tag)
{
    return tag + QString(6000, u'x');
}

QJsonObject recJson(const Rec &rec)
{
    return QJsonDocument::fromJson(RecJSON::encode(rec)).object();
}

Rec rec(const QString &id, const QString &kind, const QString &company, double updated, const QString &name)
{
    Rec r;
    r.id = id;
    r.kind = kind;
    r.company = company;
    r.created = 1000;
    r.updated = updated;
    r.f.insert(u"name"_s, name);
    return r;
}

QJsonObject recoveryFile(const QJsonArray &records, const QJsonArray &removed,
                         const QDateTime &savedAt = QDateTime::currentDateTimeUtc())
{
    return QJsonObject{{u"trestleUnsaved"_s, 1},
                       {u"store"_s, u"/elsewhere/trestle.sqlite"_s},
                       {u"savedAt"_s, savedAt.toString(Qt::ISODate)},
                       {u"cause"_s, u"the disk is full"_s},
                       {u"records"_s, records},
                       {u"removed"_s, removed}};
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

} // namespace

class RecoveryTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Edits fail on a full disk and go to a file; a store opened afterwards
    // lacks them until it loads the file, and then holds them on disk.
    void roundTripThroughFullDisk_data()
    {
        QTest::addColumn<QString>("op");
        QTest::addColumn<int>("applied");
        QTest::addColumn<int>("removed");
        QTest::newRow("edit") << u"edit"_s << 1 << 0;
        QTest::newRow("add") << u"add"_s << 1 << 0;
        QTest::newRow("edit then remove") << u"remove"_s << 1 << 1;
        QTest::newRow("project with tasks") << u"project"_s << 0 << 2;
    }
    void roundTripThroughFullDisk()
    {
        QFETCH(QString, op);
        QFETCH(int, applied);
        QFETCH(int, removed);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        const QString file = dir.filePath(u"unsaved.json"_s);
        QStringList ids;
        QString projectID, taskID;
        {
            DB db(path);
            ids << db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s).id;
            for (int k = 0; k < 4; ++k)
                ids << db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Contact "_s + QString::number(k)}}).id;
            projectID = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Barn"_s}}).id;
            taskID = db.add(u"task"_s, projectID, projectID, {{u"name"_s, u"Frame"_s}}).id;
            db.checkpoint();
        }
        QStringList kept;   // ids whose new text must come back
        QStringList doomed; // ids that must be gone
        {
            DB db(path);
            db.setPageLimit(1);
            if (op == u"add") {
                kept << db.add(u"contact"_s, {}, {}, {{u"name"_s, bulk(u"new"_s)}}).id;
            } else if (op == u"project") {
                // A task edit waits, so the project's removal waits behind it.
                Rec task = *db.get(taskID);
                task.f.insert(u"name"_s, bulk(u"t"_s));
                db.save(task);
                db.remove(projectID);
                doomed << projectID << taskID;
            } else {
                Rec r = *db.get(ids.at(2));
                r.f.insert(u"name"_s, bulk(u"edited"_s));
                db.save(r);
                kept << r.id;
                if (op == u"remove") {
                    db.remove(ids.at(3));
                    doomed << ids.at(3);
                }
            }
            QVERIFY(db.unsavedCount() > 0);
            QVERIFY(db.saveUnsavedTo(file));
        }
        {
            DB fresh(path);
            for (const QString &id : std::as_const(kept))
                QVERIFY(!fresh.get(id) || !fresh.get(id)->f.value(u"name").endsWith(u"xxx"));
            for (const QString &id : std::as_const(doomed))
                QVERIFY(fresh.get(id));
            QSignalSpy changes(&fresh, &DB::changed);
            QString error;
            const auto result = Recovery::apply(fresh, file, &error);
            QVERIFY2(result, qPrintable(error));
            QCOMPARE(result->applied, applied);
            QCOMPARE(result->removed, removed);
            QCOMPARE(result->skipped, 0);
            QCOMPARE(changes.size(), 1); // one transaction, one signal
            QCOMPARE(fresh.unsavedCount(), 0);
        }
        DB again(path);
        for (const QString &id : std::as_const(kept))
            QVERIFY2(again.get(id) && again.get(id)->f.value(u"name").endsWith(u"xxx"),
                     "a change was not loaded");
        for (const QString &id : std::as_const(doomed))
            QVERIFY2(!again.get(id), "a removal was not loaded");
        QVERIFY(again.get(ids.at(1))); // untouched records stay
    }

    // Where the store and the file disagree, the later change wins.
    void laterChangeWins_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<int>("applied");
        QTest::addColumn<int>("skipped");
        QTest::addColumn<int>("removed");
        QTest::addColumn<int>("gone");
        QTest::addColumn<QString>("name"); // the contact's name afterwards; empty: gone
        QTest::newRow("file newer") << u"file newer"_s << 1 << 0 << 0 << 0 << u"From file"_s;
        QTest::newRow("store newer") << u"store newer"_s << 0 << 1 << 0 << 0 << u"In store"_s;
        QTest::newRow("not in store") << u"absent"_s << 1 << 0 << 0 << 0 << u"From file"_s;
        QTest::newRow("removal") << u"remove"_s << 0 << 0 << 1 << 0 << QString();
        QTest::newRow("removal, changed since") << u"remove old"_s << 0 << 1 << 0 << 0 << u"In store"_s;
        QTest::newRow("removal, gone already") << u"remove gone"_s << 0 << 0 << 0 << 1 << QString();
    }
    void laterChangeWins()
    {
        QFETCH(QString, what);
        QFETCH(int, applied);
        QFETCH(int, skipped);
        QFETCH(int, removed);
        QFETCH(int, gone);
        QFETCH(QString, name);
        QTemporaryDir dir;
        DB db(dir.filePath(u"trestle.sqlite"_s));
        const QString company = db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s).id;
        QString id = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"In store"_s}}).id;
        const double stored = db.get(id)->updated;
        QDateTime savedAt = QDateTime::currentDateTimeUtc();
        QJsonArray records, removals;
        if (what == u"absent") {
            id = u"CONTACT-FROM-FILE"_s;
            records << recJson(rec(id, u"contact"_s, company, stored - 10, u"From file"_s));
        } else if (what.startsWith(u"remove")) {
            if (what == u"remove gone")
                db.remove(id);
            if (what == u"remove old")
                savedAt = savedAt.addSecs(-3600);
            removals << id;
        } else {
            const double updated = what == u"file newer" ? stored + 5 : stored - 5;
            records << recJson(rec(id, u"contact"_s, company, updated, u"From file"_s));
        }
        const QString file = dir.filePath(u"unsaved.json"_s);
        QVERIFY(writeFile(file, QJsonDocument(recoveryFile(records, removals, savedAt)).toJson()));
        QString error;
        const auto result = Recovery::apply(db, file, &error);
        QVERIFY2(result, qPrintable(error));
        QCOMPARE(result->applied, applied);
        QCOMPARE(result->skipped, skipped);
        QCOMPARE(result->removed, removed);
        QCOMPARE(result->gone, gone);
        QCOMPARE(db.get(id) ? db.get(id)->f.value(u"name") : QString(), name);
        // Loading the same file again changes nothing more (a record dated
        // ahead of the clock stays newer, so that row cannot show it).
        if (what != u"file newer") {
            const quint64 revision = db.revision();
            const auto twice = Recovery::apply(db, file, &error);
            QVERIFY(twice && twice->applied == 0 && twice->removed == 0);
            QCOMPARE(db.revision(), revision);
        }
    }

    // A file that is not one, or is damaged, is refused whole with a clear reason.
    void refused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("message"); // empty: the file is good
        const Rec company = rec(u"C1"_s, u"company"_s, u"C1"_s, 2000, u"Acme"_s);
        const Rec contact = rec(u"P1"_s, u"contact"_s, u"C1"_s, 2000, u"Mesa"_s);
        const QJsonObject good = recoveryFile({recJson(company), recJson(contact)}, {u"GONE"_s});
        auto with = [&](const QString &key, const QJsonValue &value) {
            QJsonObject o = good;
            o.insert(key, value);
            return QJsonDocument(o).toJson();
        };
        auto withContact = [&](const QString &key, const QJsonValue &value) {
            QJsonObject c = recJson(contact);
            if (value.isUndefined())
                c.remove(key);
            else
                c.insert(key, value);
            return with(u"records"_s, QJsonArray{recJson(company), c});
        };
        const QString notOne = u"unsaved.json is not a file of unsaved changes"_s;
        const QString damaged = u"unsaved.json is damaged: "_s;
        const QByteArray whole = QJsonDocument(good).toJson();
        QTest::newRow("good") << whole << QString();
        QTest::newRow("cut short") << whole.left(whole.size() / 2) << notOne + u", or it is cut short"_s;
        QTest::newRow("not JSON") << QByteArray("name,amount\n") << notOne + u", or it is cut short"_s;
        QTest::newRow("other JSON") << QByteArray(R"({"records": []})") << notOne;
        QTest::newRow("marker as text") << with(u"trestleUnsaved"_s, u"1"_s) << notOne;
        QTest::newRow("other version")
            << with(u"trestleUnsaved"_s, 2) << u"unsaved.json was saved by another version of Trestle"_s;
        QTest::newRow("bad date") << with(u"savedAt"_s, u"yesterday"_s)
                                  << damaged + u"\"savedAt\" is not a date"_s;
        QTest::newRow("records an object") << with(u"records"_s, QJsonObject{}) << damaged + u"\"records\""_s;
        QTest::newRow("record lacks updated") << withContact(u"updated"_s, QJsonValue::Undefined)
                                              << damaged + u"record 2 is not a valid record"_s;
        QTest::newRow("field a number") << withContact(u"f"_s, QJsonObject{{u"name"_s, 5}})
                                        << damaged + u"record 2 is not a valid record"_s;
        QTest::newRow("record twice") << with(u"records"_s, QJsonArray{recJson(company), recJson(company)})
                                      << damaged + u"record C1 appears twice"_s;
        QTest::newRow("removed a number")
            << with(u"removed"_s, QJsonArray{7}) << damaged + u"a removed id is not a text"_s;
        QTest::newRow("kept and removed")
            << with(u"removed"_s, QJsonArray{u"P1"_s}) << damaged + u"record P1 is both kept and removed"_s;
        QTest::newRow("other company")
            << with(u"records"_s, QJsonArray{recJson(rec(u"P2"_s, u"contact"_s, u"ELSEWHERE"_s, 1, u"x"_s))})
            << u"unsaved.json holds changes of a company this data folder does not hold"_s;
    }
    void refused()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, message);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        const QString file = dir.filePath(u"unsaved.json"_s);
        QVERIFY(writeFile(file, bytes));
        DB db(path);
        db.createCompany(u"Acme"_s, u"Olive"_s, u"CO"_s);
        const qsizetype before = db.size();
        const quint64 revision = db.revision();
        QSignalSpy changes(&db, &DB::changed);
        QString error;
        const auto result = Recovery::apply(db, file, &error);
        if (message.isEmpty()) {
            QVERIFY2(result, qPrintable(error));
            QCOMPARE(result->applied, 2);
            QCOMPARE(result->gone, 1);
            QCOMPARE(DB(path).get(u"P1"_s)->f.value(u"name"), u"Mesa"_s);
            return;
        }
        QVERIFY(!result);
        QVERIFY2(error.startsWith(message), qPrintable(error));
        QVERIFY(!error.contains(u'\n'));
        QCOMPARE(db.size(), before);
        QCOMPARE(db.revision(), revision);
        QCOMPARE(changes.size(), 0);
        QCOMPARE(DB(path).size(), before);
    }
};

TRESTLE_TEST(RecoveryTests);
#include "recoverytests.moc"
