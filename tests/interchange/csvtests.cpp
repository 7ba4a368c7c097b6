#include "testmain.h"

#include "calc/datefmt.h"
#include "interchange/backup.h"
#include "interchange/csv.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

class CSVTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void text_data()
    {
        QTest::addColumn<QList<QStringList>>("rows");
        QTest::addColumn<QString>("csv");
        QTest::newRow("empty table") << QList<QStringList>{} << u"\r\n"_s;
        QTest::newRow("bare") << QList<QStringList>{{u"a b"_s, u""_s, u"c"_s}} << u"a b,,c\r\n"_s;
        QTest::newRow("quote") << QList<QStringList>{{u"6\" slab"_s}} << u"\"6\"\" slab\"\r\n"_s;
        QTest::newRow("comma") << QList<QStringList>{{u"Smith, J"_s, u"x"_s}} << u"\"Smith, J\",x\r\n"_s;
        QTest::newRow("line feed") << QList<QStringList>{{u"one\ntwo"_s}} << u"\"one\ntwo\"\r\n"_s;
        QTest::newRow("lone return") << QList<QStringList>{{u"one\rtwo"_s}} << u"one\rtwo\r\n"_s;
        QTest::newRow("two rows") << QList<QStringList>{{u"h"_s}, {u"v"_s}} << u"h\r\nv\r\n"_s;
    }
    void text()
    {
        QFETCH(QList<QStringList>, rows);
        QFETCH(QString, csv);
        QCOMPARE(CSV::text(rows), csv);
    }

    // One file per kind, columns from what is stored, the project by its label.
    void companyFolder()
    {
        DateFmt::setToday(QDate(2026, 11, 15));
        DB db;
        db.createCompany(u"Other"_s, u"Olga"_s, u"CO"_s);
        db.add(u"punch"_s, {}, {}, {{u"title"_s, u"not ours"_s}});
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CO"_s);
        const Rec p = db.add(u"project"_s, {}, {}, {{u"name"_s, u"Tower"_s}});
        db.add(u"punch"_s, p.id, {}, {{u"title"_s, u"Paint, touch-up"_s}, {u"due"_s, u"2026-12-01"_s}});
        db.add(u"punch"_s, {}, {}, {{u"status"_s, u"Open"_s}});
        QTemporaryDir dir;
        const ExportResult r = Backup::exportCSV(db, dir.path());
        QVERIFY(r.ok);
        QCOMPARE(QFileInfo(r.folder).fileName(), u"Acme export 2026-11-15"_s);
        const QStringList files = QDir(r.folder).entryList(QDir::Files);
        QVERIFY(files.contains(u"punch.csv"_s));
        QVERIFY(files.contains(u"project.csv"_s));
        QVERIFY(files.contains(u"cost_code.csv"_s));
        QFile f(QDir(r.folder).filePath(u"punch.csv"_s));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(f.readAll()).split(u"\r\n"_s);
        QCOMPARE(lines.size(), 4); // header, two records, the final empty piece
        QCOMPARE(lines.at(0), u"id,project,parent,due,status,title"_s);
        QVERIFY(lines.at(1).endsWith(u",Tower,,2026-12-01,,\"Paint, touch-up\""_s));
        QVERIFY(lines.at(2).endsWith(u",,,,Open,"_s));
    }
};

TRESTLE_TEST(CSVTests);
#include "csvtests.moc"
