// The record store: writes, filters, order, cascade, persistence and bad rows.
#include "store/db.h"
#include "testmain.h"

#include <QtCore/QSettings>
#include <QtTest/QSignalSpy>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

QStringList ids(const QList<Rec> &recs)
{
    QStringList out;
    for (const Rec &r : recs)
        out.append(r.id);
    return out;
}

QString settingsText(const QString &key)
{
    return QSettings(u"Fenwright"_s, u"Trestle"_s).value(key).toString();
}

// Runs one statement on the database file with a separate connection.
void rawExec(const QString &path, const QByteArray &sql)
{
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    QCOMPARE(sqlite3_exec(db, sql.constData(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
}

int rawCount(const QString &path, const QByteArray &where)
{
    sqlite3 *db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    sqlite3_stmt *st = nullptr;
    const QByteArray sql = QByteArray("SELECT count(*) FROM recs WHERE ") + where;
    sqlite3_prepare_v2(db, sql.constData(), -1, &st, nullptr);
    sqlite3_step(st);
    const int n = sqlite3_column_int(st, 0);
    sqlite3_finalize(st);
    sqlite3_close(db);
    return n;
}

} // namespace

class DBTests : public QObject
{
    Q_OBJECT
    QTemporaryDir dir;
    QString path() const { return dir.filePath(u"trestle.sqlite"_s); }

private Q_SLOTS:
    void init()
    {
        QDir(dir.path()).removeRecursively();
        QDir().mkpath(dir.path());
        QSettings(u"Fenwright"_s, u"Trestle"_s).clear();
    }

    void oneSignalPerOperation()
    {
        DB db;
        QSignalSpy spy(&db, &DB::changed);
        const Rec a = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"A"_s}});
        QCOMPARE(spy.count(), 1);
        Rec b = a;
        b.id = newID();
        Rec c = a;
        c.id = newID();
        db.saveAll({b, c});
        QCOMPARE(spy.count(), 2);
        db.remove(a.id);
        QCOMPARE(spy.count(), 3);
        db.remove(u"no such id"_s);
        QCOMPARE(spy.count(), 3);
    }

    void saveStampsOnlyTheStoredCopy()
    {
        DB db;
        const Rec a = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"A"_s}});
        QCOMPARE(db.get(a.id)->created, a.created);
        Rec edit = a;
        edit.f.insert(u"name"_s, u"B"_s);
        const double before = edit.updated;
        db.save(edit);
        QCOMPARE(edit.updated, before);
        QVERIFY(db.get(a.id)->updated > before);
        QCOMPARE(db.get(a.id)->f.value(u"name"), u"B"_s);
        QVERIFY(!db.get(QString()).has_value());
    }

    void filters()
    {
        DB db;
        db.setCompanyID(u"C1"_s);
        const Rec p1 = db.add(u"project"_s, {}, {}, {});
        const Rec top = db.add(u"task"_s, p1.id, {}, {});
        const Rec child = db.add(u"task"_s, p1.id, top.id, {});
        const Rec loose = db.add(u"task"_s, {}, {}, {});
        const Rec other = db.add(u"task"_s, p1.id, {}, {}, u"C2"_s);
        QCOMPARE(ids(db.list(u"task"_s)), (QStringList{top.id, child.id, loose.id}));
        QCOMPARE(ids(db.list(u"task"_s, {.project = p1.id})), (QStringList{top.id, child.id}));
        // The empty text is a real filter value.
        QCOMPARE(ids(db.list(u"task"_s, {.project = QString()})), QStringList{loose.id});
        QCOMPARE(ids(db.list(u"task"_s, {.parent = QString()})), (QStringList{top.id, loose.id}));
        QCOMPARE(ids(db.list(u"task"_s, {.parent = top.id})), QStringList{child.id});
        QCOMPARE(ids(db.list(u"task"_s, {.company = u"C2"_s})), QStringList{other.id});
        QCOMPARE(db.count(u"task"_s, {.project = p1.id}), 2);
        // Companies are listed across companies.
        const Rec co1 = db.add(u"company"_s, {}, {}, {});
        const Rec co2 = db.add(u"company"_s, {}, {}, {}, u"C9"_s);
        QCOMPARE(co2.company, co2.id);
        QCOMPARE(ids(db.list(u"company"_s)), (QStringList{co1.id, co2.id}));
        // Moving a record between projects moves it between filters.
        Rec moved = *db.get(loose.id);
        moved.project = p1.id;
        db.save(moved);
        QCOMPARE(db.count(u"task"_s, {.project = p1.id}), 3);
        QCOMPARE(db.count(u"task"_s, {.project = QString()}), 0);
    }

    void orderBySortThenCreated()
    {
        DB db;
        const Rec a = db.add(u"task"_s, {}, {}, {{u"sort"_s, u"2"_s}});
        const Rec b = db.add(u"task"_s, {}, {}, {{u"sort"_s, u"1"_s}});
        const Rec c = db.add(u"task"_s, {}, {}, {});
        const Rec d = db.add(u"task"_s, {}, {}, {{u"sort"_s, u"-1"_s}});
        const Rec e = db.add(u"task"_s, {}, {}, {{u"sort"_s, u"1.9"_s}}); // reads as 1
        QCOMPARE(ids(db.list(u"task"_s)), (QStringList{d.id, c.id, b.id, e.id, a.id}));
    }

    void cascade()
    {
        DB db;
        db.setCompanyID(u"C1"_s);
        const Rec project = db.add(u"project"_s, {}, {}, {});
        const Rec est = db.add(u"estimate"_s, project.id, {}, {});
        const Rec line = db.add(u"est_line"_s, project.id, est.id, {});
        const Rec deep = db.add(u"note"_s, {}, line.id, {}); // reached only through parents
        const Rec sheet = db.add(u"plan_sheet"_s, project.id, {}, {{u"file"_s, u"AB-sheet.pdf"_s}});
        const Rec pointer = db.add(u"expense"_s, {}, {}, {{u"estimate"_s, est.id}});
        QFile file(db.fileURL(u"AB-sheet.pdf"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();

        db.remove(est.id); // a header takes its lines, not records that name it
        QVERIFY(!db.get(line.id) && !db.get(deep.id));
        QVERIFY(db.get(pointer.id) && db.get(sheet.id));
        QCOMPARE(db.get(pointer.id)->f.value(u"estimate"), est.id);

        db.remove(project.id);
        QVERIFY(!db.get(sheet.id) && !db.get(project.id));
        QVERIFY(!QFile::exists(file.fileName()));
        QCOMPARE(db.size(), 1);
    }

    void removingCompany()
    {
        DB db;
        const Rec first = db.createCompany(u"First"_s, u"Ann"_s, u"CA"_s);
        const Rec second = db.createCompany(u"Second"_s, u"Bob"_s, u"NV"_s);
        QCOMPARE(db.companyID(), second.id);
        QFile stray(db.fileURL(u"stray.txt"_s)); // a file no record names
        QVERIFY(stray.open(QIODevice::WriteOnly));
        stray.close();
        db.remove(second.id);
        QCOMPARE(db.companyID(), first.id);
        QVERIFY(!QFileInfo::exists(QDir(db.filesRoot()).filePath(second.id)));
        QCOMPARE(db.count(u"cost_code"_s, {.company = second.id}), 0);
        QCOMPARE(db.count(u"cost_code"_s), 22);
        db.remove(first.id);
        QCOMPARE(db.companyID(), QString());
        QCOMPARE(db.size(), 0);
    }

    void persistsAcrossRestart()
    {
        QString company;
        QString removed;
        {
            DB db(path());
            company = db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s).id;
            removed = db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Gone"_s}}).id;
            db.add(u"contact"_s, {}, {}, {{u"name"_s, u"Kept"_s}});
            db.remove(removed);
        }
        QCOMPARE(settingsText(u"tl.company"_s), company);
        DB again(path());
        QCOMPARE(again.companyID(), company);
        QCOMPARE(again.role(), u"Owner"_s);
        QCOMPARE(again.size(), 1 + 22 + 1 + 1);
        QVERIFY(!again.get(removed));
        QCOMPARE(again.list(u"contact"_s).first().f.value(u"name"), u"Kept"_s);
        QCOMPARE(rawCount(path(), "1"), 25);
    }

    void badRowsSurvive()
    {
        {
            DB db(path());
            db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        }
        rawExec(path(), "INSERT INTO recs VALUES ('bad1','C','contact','','','{not json')");
        rawExec(path(), "INSERT INTO recs VALUES ('bad2','C','contact','','',"
                        "'{\"id\":\"bad2\",\"kind\":\"contact\",\"company\":\"C\",\"project\":\"\","
                        "\"parent\":\"\",\"created\":1,\"updated\":1,\"f\":{\"n\":5}}')");
        rawExec(path(), "INSERT INTO recs VALUES ('bad3','C','contact','','',x'80ff00')");
        {
            DB db(path());
            QCOMPARE(db.size(), 24);
            QVERIFY(!db.get(u"bad1"_s) && !db.get(u"bad2"_s));
            db.add(u"contact"_s, {}, {}, {{u"name"_s, u"New"_s}});
            db.saveAll(db.list(u"cost_code"_s));
        }
        QCOMPARE(rawCount(path(), "id LIKE 'bad%'"), 3);
        QCOMPARE(rawCount(path(), "json = '{not json'"), 1);
        DB db(path());
        QCOMPARE(db.size(), 25);
    }

    void inMemoryStoreLeavesSettingsAlone()
    {
        QString root;
        {
            DB db;
            QVERIFY(db.inMemory());
            db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
            QVERIFY(settingsText(u"tl.company"_s).isEmpty());
            root = db.filesRoot();
            QVERIFY(root.startsWith(QDir::tempPath()));
            DB other;
            QVERIFY(other.filesRoot() != root);
        }
        QVERIFY(!QFileInfo::exists(root));
    }

    // A stale or foreign selection is repaired to the first company and its first user.
    void selectionRepair()
    {
        QString acme;
        QString ann;
        {
            DB db(path());
            acme = db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s).id;
            ann = db.userID();
            db.createCompany(u"Beta"_s, u"Bob"_s, u"NV"_s);
        }
        QSettings s(u"Fenwright"_s, u"Trestle"_s);
        s.setValue(u"tl.company"_s, u"missing"_s);
        s.sync();
        DB db(path());
        const QList<Rec> companies = db.list(u"company"_s);
        QCOMPARE(db.companyID(), companies.first().id);
        QCOMPARE(db.user()->company, db.companyID());
        QCOMPARE(db.companyID(), acme);
        QCOMPARE(db.userID(), ann);
        // A user of another company does not count as the current user.
        db.setCompanyID(companies.at(1).id);
        QVERIFY(!db.user());
        QCOMPARE(db.role(), u"Owner"_s);
    }
};

TRESTLE_TEST(DBTests);
#include "dbtests.moc"
