// Companies, users, labels and the files kept beside the records.
#include "store/db.h"
#include "testmain.h"

using namespace Qt::StringLiterals;

class CompanyTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void createCompany()
    {
        DB db;
        const Rec c = db.createCompany(u"Acme Builders"_s, u"Ann Example"_s, u"CA"_s);
        QCOMPARE(db.companyID(), c.id);
        QCOMPARE(c.company, c.id);
        QCOMPARE(db.company()->f.value(u"state"), u"CA"_s);
        const QList<Rec> codes = db.costCodes();
        QCOMPARE(codes.size(), 22);
        QCOMPARE(codes.first().f.value(u"code"), u"01-000"_s);
        QCOMPARE(codes.last().f.value(u"name"), u"Transportation / Roadway"_s);
        // Creation order is code order, so the plain list agrees.
        QCOMPARE(db.list(u"cost_code"_s).at(1).f.value(u"name"), u"Temporary Facilities"_s);
        const QList<Rec> team = db.list(u"user"_s);
        QCOMPARE(team.size(), 1);
        QCOMPARE(team.first().id, db.userID());
        QCOMPARE(team.first().f.value(u"role"), u"Owner"_s);
        QCOMPARE(team.first().f.value(u"name"), u"Ann Example"_s);
    }

    void labelsAndCodes()
    {
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        const QString concrete = db.code(u"03-000"_s);
        QCOMPARE(db.label(concrete), u"03-000 Concrete"_s);
        QCOMPARE(db.code(u"03-00"_s), QString());
        QCOMPARE(db.label(u"dangling"_s), QString());
        const Rec none = db.add(u"contact"_s, {}, {}, {{u"phone"_s, u"555"_s}});
        QCOMPARE(db.label(none.id), QString());
        const Rec numbered = db.add(u"rfi"_s, {}, {}, {{u"number"_s, u"7"_s}, {u"title"_s, QString()}});
        QCOMPARE(db.label(numbered.id), u"7"_s);
        const Rec titled = db.add(u"doc"_s, {}, {}, {{u"title"_s, u"T"_s}, {u"number"_s, u"7"_s}});
        QCOMPARE(db.label(titled.id), u"T"_s);
        // A code added later with a lower code sorts first in code order only.
        db.add(u"cost_code"_s, {}, {},
               {{u"code"_s, u"00-100"_s}, {u"name"_s, u"Bonds"_s}, {u"sort"_s, u"5"_s}});
        QCOMPARE(db.costCodes().first().f.value(u"code"), u"00-100"_s);
        QCOMPARE(db.list(u"cost_code"_s).last().f.value(u"code"), u"00-100"_s);
    }

    void roles_data()
    {
        QTest::addColumn<bool>("withUser");
        QTest::addColumn<QString>("role");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no user") << false << QString() << u"Owner"_s;
        QTest::newRow("field") << true << u"Field"_s << u"Field"_s;
        QTest::newRow("no role field") << true << QString() << QString();
    }
    void roles()
    {
        QFETCH(bool, withUser);
        QFETCH(QString, role);
        QFETCH(QString, expected);
        DB db;
        db.setCompanyID(u"C"_s);
        if (withUser) {
            Fields f{{u"name"_s, u"U"_s}};
            if (!role.isEmpty())
                f.insert(u"role"_s, role);
            db.setUserID(db.add(u"user"_s, {}, {}, f).id);
        }
        QCOMPARE(db.role(), expected);
    }

    void storedFiles_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("blanks") << u"Floor plan A1.pdf"_s;
        // Only "/" separates on Linux: a backslash is part of the name.
        QTest::newRow("backslash") << u"a\\b.pdf"_s;
    }

    void storedFiles()
    {
        QFETCH(QString, name);
        DB db;
        db.createCompany(u"Acme"_s, u"Ann"_s, u"CA"_s);
        QTemporaryDir outside;
        const QString source = outside.filePath(name);
        QFile f(source);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("%PDF-1.4");
        f.close();
        const auto one = db.importFile(source);
        const auto two = db.importFile(source);
        QVERIFY(one && two && *one != *two);
        QVERIFY(one->endsWith(u'-' + name));
        QCOMPARE(one->indexOf(u'-'), 8);
        QVERIFY(QFile::exists(db.fileURL(*one)) && QFile::exists(db.fileURL(*two)) && QFile::exists(source));
        QCOMPARE(QFileInfo(db.fileURL(*two)).fileName(), *two);
        QVERIFY(!db.importFile(outside.filePath(u"missing.pdf"_s)));

        // A folder for a company that has none yet is made on asking.
        const QString later = db.fileURL(u"x.pdf"_s, u"NEWCO"_s);
        QVERIFY(QFileInfo(QFileInfo(later).path()).isDir());
        // Names from a damaged record can never point outside the company's files folder.
        const QString folder = QDir::cleanPath(QFileInfo(db.fileURL(u"x"_s)).path());
        for (const QString &evil :
             {u"../../escape.txt"_s, u"..\\..\\escape.txt"_s, u".."_s, u"."_s, u"a/../../b"_s}) {
            const QString where = QDir::cleanPath(db.fileURL(evil));
            QVERIFY2(where.startsWith(folder), qPrintable(where));
            QVERIFY2(QFileInfo(where).path() == folder || where == folder, qPrintable(where));
        }
        QVERIFY(QDir::cleanPath(db.fileURL(u"a"_s, u"../.."_s)).startsWith(QDir::cleanPath(db.filesRoot())));
    }
};

TRESTLE_TEST(CompanyTests);
#include "companytests.moc"
