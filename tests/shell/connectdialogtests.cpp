// File ▸ Connect to Company Server… against a real server started for the test.
#include "server/serverfixture.h"
#include "shell/connectdialog.h"
#include "store/server/serverlink.h"
#include "testmain.h"

#include <QtTest/QSignalSpy>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

using namespace Qt::StringLiterals;

class ConnectDialogTests : public QObject
{
    Q_OBJECT
    ServerFixture m_server;

private Q_SLOTS:
    void initTestCase()
    {
        QString error;
        QVERIFY2(m_server.start(&error), qPrintable(error));
    }

    void valuesSurviveQuoting_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("plain") << u"trestle"_s;
        QTest::newRow("blank inside") << u"Ridge Builders"_s;
        QTest::newRow("quote") << u"o'brien"_s;
        QTest::newRow("backslash") << u"C:\\certs\\ca.crt"_s;
        QTest::newRow("equals and quote") << u"a=b' host=evil"_s;
    }
    void valuesSurviveQuoting()
    {
        QFETCH(QString, value);
        ConnectDialog dialog;
        dialog.host()->setText(u"/tmp"_s);
        dialog.database()->setText(value);
        dialog.login()->setText(u"jen"_s);
        QCOMPARE(Pg::conninfoValue(dialog.conninfo(), "dbname"), value);
        QCOMPARE(Pg::conninfoValue(dialog.conninfo(), "host"), u"/tmp"_s);
        QCOMPARE(Pg::conninfoValue(dialog.conninfo(), "user"), u"jen"_s);
    }

    void wrongPasswordThenRight()
    {
        ConnectDialog dialog;
        QSignalSpy connected(&dialog, &ConnectDialog::connected);
        dialog.host()->setText(m_server.cluster.socketDir());
        dialog.database()->setText(m_server.dbName);
        dialog.login()->setText(u"ann"_s);
        dialog.password()->setText(u"not it"_s);
        QTest::mouseClick(dialog.connectButton(), Qt::LeftButton);
        // The try runs off the window's thread: the button says so while it waits.
        QTRY_VERIFY_WITH_TIMEOUT(!dialog.problem().isEmpty(), 10000);
        QVERIFY2(dialog.problem().contains(u"password is wrong"_s), qPrintable(dialog.problem()));
        QVERIFY(!dialog.problem().contains(u"not it"_s));
        QVERIFY(!ServerLink::isConnected());
        QCOMPARE(connected.count(), 0);

        dialog.password()->setText(u"pw-ann"_s);
        QTest::mouseClick(dialog.connectButton(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(connected.count(), 1, 10000);
        QVERIFY(ServerLink::isConnected());
        QCOMPARE(Pg::conninfoValue(ServerLink::conninfo(), "user"), u"ann"_s);
        QCOMPARE(Pg::conninfoValue(ServerLink::conninfo(), "password"), QString());
        QString error;
        QVERIFY(ServerLink::disconnect(&error));
        QVERIFY(!ServerLink::isConnected());
    }

    void cleanupTestCase() { m_server.cluster.stop(); }
};

TRESTLE_TEST(ConnectDialogTests);
#include "connectdialogtests.moc"
