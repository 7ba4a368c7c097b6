// Setting up a company server, pushing a company and making logins, on a real PostgreSQL.
#include "serverfixture.h"
#include "testmain.h"

using namespace Qt::StringLiterals;

class SchemaTests : public QObject
{
    Q_OBJECT
    PgCluster m_cluster;

    QString admin(const QString &db) const { return m_cluster.conninfo(db); }

private Q_SLOTS:
    void initTestCase()
    {
        QString error;
        QVERIFY2(m_cluster.start(&error, true), qPrintable(error));
    }

    void initOnlyOnEmptyDatabases()
    {
        QString error;
        QVERIFY2(m_cluster.createDatabase(u"fresh"_s, &error), qPrintable(error));
        QVERIFY2(m_cluster.createDatabase(u"busy"_s, &error), qPrintable(error));
        QString out;
        QCOMPARE(m_cluster.psql(u"busy"_s, u"postgres"_s, u"CREATE TABLE invoices (n int)"_s, &out), 0);

        Pg::Conn conn;
        QVERIFY2(conn.open(admin(u"fresh"_s), QString(), &error), qPrintable(error));
        QString message;
        QCOMPARE(ServerSchema::init(conn, ServerFixture::catalog(), &message), ServerSchema::Init::Created);
        QCOMPARE(ServerSchema::init(conn, ServerFixture::catalog(), &message),
                 ServerSchema::Init::AlreadySetUp);
        QVERIFY(message.contains(u"already set up"_s));

        Pg::Conn busy;
        QVERIFY(busy.open(admin(u"busy"_s), QString(), &error));
        QCOMPARE(ServerSchema::init(busy, ServerFixture::catalog(), &message), ServerSchema::Init::Refused);
        QCOMPARE(m_cluster.psql(u"busy"_s, u"postgres"_s,
                                u"SELECT count(*) FROM pg_namespace WHERE nspname = 'trestle'"_s, &out),
                 0);
        QCOMPARE(out, u"0"_s);

        // A database made by a newer program is not touched and not used.
        QCOMPARE(m_cluster.psql(u"fresh"_s, u"postgres"_s,
                                u"UPDATE trestle.meta SET value = '99' WHERE key = 'schema_version'"_s, &out),
                 0);
        QCOMPARE(ServerSchema::init(conn, ServerFixture::catalog(), &message), ServerSchema::Init::Refused);
        QVERIFY(!ServerSchema::check(conn, nullptr, &error));
        QVERIFY(error.contains(u"newer"_s));
        QCOMPARE(m_cluster.psql(u"fresh"_s, u"postgres"_s,
                                u"UPDATE trestle.meta SET value = '2' WHERE key = 'schema_version'"_s, &out),
                 0);
        Pg::Conn plain;
        QVERIFY(plain.open(admin(u"postgres"_s), QString(), &error));
        QVERIFY(!ServerSchema::check(plain, nullptr, &error));
        QVERIFY2(error.contains(u"not a Trestle company server"_s), qPrintable(error));
    }

    void tablesBelongToARoleThatCannotLogIn()
    {
        QString out;
        QCOMPARE(m_cluster.psql(
                     u"fresh"_s, u"postgres"_s,
                     u"SELECT DISTINCT r.rolcanlogin FROM pg_class c JOIN pg_namespace n ON n.oid = "
                     u"c.relnamespace JOIN pg_roles r ON r.oid = c.relowner WHERE n.nspname = 'trestle'"_s,
                     &out),
                 0);
        QCOMPARE(out, u"f"_s);
    }

    void pushRefusesACompanyTwice()
    {
        QString error;
        QVERIFY(m_cluster.createDatabase(u"pushed"_s, &error));
        Pg::Conn conn;
        QVERIFY(conn.open(admin(u"pushed"_s), QString(), &error));
        QString message;
        QCOMPARE(ServerSchema::init(conn, ServerFixture::catalog(), &message), ServerSchema::Init::Created);
        DB local;
        local.createCompany(u"Ridge Builders"_s, u"Ann"_s, u"CO"_s);
        QFile plan(local.fileURL(u"0000AAAA-sheet.pdf"_s));
        QVERIFY(plan.open(QIODevice::WriteOnly));
        plan.write("%PDF-1.4 a sheet");
        plan.close();
        QString summary;
        QVERIFY2(ServerAdmin::push(conn, local, &summary, &error), qPrintable(error));
        QVERIFY2(summary.contains(u"1 company"_s) && summary.contains(u"1 files"_s), qPrintable(summary));
        QString out;
        m_cluster.psql(u"pushed"_s, u"postgres"_s, u"SELECT count(*) FROM trestle.recs"_s, &out);
        const QString before = out;
        QCOMPARE(before.toInt(), int(local.size()));
        QVERIFY(!ServerAdmin::push(conn, local, &summary, &error));
        QVERIFY2(error.contains(u"already on the server"_s), qPrintable(error));
        m_cluster.psql(u"pushed"_s, u"postgres"_s, u"SELECT count(*) FROM trestle.recs"_s, &out);
        QCOMPARE(out, before);
    }

    void loginNames_data()
    {
        QTest::addColumn<QString>("login");
        QTest::addColumn<bool>("ok");
        QTest::newRow("plain") << u"jen.okafor"_s << true;
        QTest::newRow("injection") << u"x\"; DROP TABLE trestle.recs; --"_s << false;
        QTest::newRow("upper case") << u"Jen"_s << false;
        QTest::newRow("system prefix") << u"pg_monitor"_s << false;
        QTest::newRow("trestle prefix") << u"trestle_owner"_s << false;
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("too long") << QString(64, u'a') << false;
    }
    void loginNames()
    {
        QFETCH(QString, login);
        QFETCH(bool, ok);
        QString error;
        QCOMPARE(ServerAdmin::validLogin(login, &error), ok);
        QCOMPARE(error.isEmpty(), ok);
    }

    void loginsUseScramAndBelongToTheMemberRole()
    {
        QString error;
        Pg::Conn conn;
        QVERIFY(conn.open(admin(u"pushed"_s), QString(), &error));
        const Pg::Result member = conn.exec("SELECT id FROM trestle.recs WHERE kind = 'user' LIMIT 1");
        QVERIFY(member.ok() && member.rows() == 1);
        const QString memberId = member.text(0, 0);
        QVERIFY(!ServerAdmin::addLogin(conn, u"nobody"_s, u"NO-SUCH-ID"_s, u"pw"_s, &error));
        QVERIFY2(error.contains(u"no team member"_s), qPrintable(error));
        QVERIFY2(ServerAdmin::addLogin(conn, u"jen"_s, memberId, u"s3cret 'quoted\""_s, &error),
                 qPrintable(error));
        QString out;
        m_cluster.psql(
            u"pushed"_s, u"postgres"_s,
            u"SELECT left(rolpassword, 14), rolsuper, pg_has_role('jen', 'trestle_member', 'member') "
            u"FROM pg_authid WHERE rolname = 'jen'"_s,
            &out);
        QCOMPARE(out, u"SCRAM-SHA-256$|f|t"_s);
        // The password works, a wrong one does not, and the login reaches Trestle's functions.
        Pg::Conn seat;
        QVERIFY(!seat.open(m_cluster.conninfo(u"pushed"_s, u"jen"_s), u"wrong"_s, &error));
        QVERIFY2(error.contains(u"password is wrong"_s), qPrintable(error));
        QVERIFY2(seat.open(m_cluster.conninfo(u"pushed"_s, u"jen"_s), u"s3cret 'quoted\""_s, &error),
                 qPrintable(error));
        QString serverId;
        QVERIFY2(ServerSchema::check(seat, &serverId, &error), qPrintable(error));
        QVERIFY(!serverId.isEmpty());
        // The tables themselves stay out of reach.
        QVERIFY(!seat.exec("SELECT count(*) FROM trestle.recs").ok());
        QVERIFY(!seat.exec("DELETE FROM trestle.recs").ok());
    }

    void connectionStrings_data()
    {
        QTest::addColumn<QString>("conninfo");
        QTest::addColumn<QString>("problem");
        QTest::newRow("password in the string")
            << u"host=/tmp dbname=x password=hunter2"_s << u"holds a password"_s;
        QTest::newRow("password in a URI")
            << u"postgresql://jen:hunter2@/x?host=/tmp"_s << u"holds a password"_s;
        QTest::newRow("unreadable") << u"host='unterminated"_s << u"cannot be read"_s;
        QTest::newRow("nobody listening")
            << u"host=/nonexistent-folder dbname=x"_s << u"could not be reached"_s;
    }
    void connectionStrings()
    {
        QFETCH(QString, conninfo);
        QFETCH(QString, problem);
        Pg::Conn conn;
        QString error;
        QVERIFY(!conn.open(conninfo, QString(), &error));
        QVERIFY2(error.contains(problem), qPrintable(error));
        QVERIFY(!error.contains(u"hunter2"_s));
    }

    void plainTcpIsRefused_data()
    {
        QTest::addColumn<QString>("sslmode");
        QTest::addColumn<QString>("problem");
        // Nothing said: the server must be verified, and this one offers no TLS at all.
        QTest::newRow("default") << QString() << u"does not offer an encrypted connection"_s;
        QTest::newRow("asked for plain") << u"disable"_s << u"is not encrypted"_s;
        QTest::newRow("prefer falls back to plain") << u"prefer"_s << u"is not encrypted"_s;
    }
    void plainTcpIsRefused()
    {
        QFETCH(QString, sslmode);
        QFETCH(QString, problem);
        QString info = u"host=127.0.0.1 port=%1 dbname=fresh user=jen"_s.arg(m_cluster.port());
        if (!sslmode.isEmpty())
            info += u" sslmode="_s + sslmode;
        Pg::Conn conn;
        QString error;
        QVERIFY(!conn.open(info, u"s3cret 'quoted\""_s, &error));
        QVERIFY2(error.contains(problem), qPrintable(error));
        QVERIFY(!conn.isOpen());
        QVERIFY(!error.contains(u"s3cret"_s));
        // The same login over the machine's own socket needs no TLS.
        QVERIFY2(conn.open(m_cluster.conninfo(u"fresh"_s, u"jen"_s), u"s3cret 'quoted\""_s, &error),
                 qPrintable(error));
    }

    void cleanupTestCase() { m_cluster.stop(); }
};

TRESTLE_TEST(SchemaTests);
#include "schematests.moc"
