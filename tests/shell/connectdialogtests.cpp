// File ▸ Connect to Company Server… against a real server started for the test.
#include "server/serverfixture.h"
#include "shell/connectdialog.h"
#include "shell/serverbar.h"
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

    void noticeBarPutsMyValueBack()
    {
        Seat ann, ben;
        QVERIFY(m_server.openSeat(ann, u"ann"_s));
        QVERIFY(m_server.openSeat(ben, u"ben"_s));
        ServerBar bar(*ben.db, ben.sync.get());
        QVERIFY(bar.isHidden());
        const Rec co = ben.db->add(u"co"_s, m_server.projectId, QString(),
                                   {{u"title"_s, u"Extra footing"_s}, {u"amount"_s, u"125000"_s}});
        QTRY_VERIFY_WITH_TIMEOUT(ann.db->find(co.id), 8000);
        // Ann works offline for a moment, so both change the same amount.
        QVERIFY(ann.goOffline());
        ben.edit(co.id, u"title"_s, u"Extra footing, grid 4"_s);
        QTRY_COMPARE_WITH_TIMEOUT(ben.sync->waiting(), 0, 5000);
        ann.edit(co.id, u"title"_s, u"Deeper footing"_s);
        ann.sync->setPassword(u"pw-ann"_s);
        QTRY_COMPARE_WITH_TIMEOUT(bar.texts().size(), 1, 10000);
        QVERIFY(!bar.isHidden());
        const QString text = bar.texts().first();
        QVERIFY2(text.startsWith(u"Your Title on "_s), qPrintable(text));
        QVERIFY2(text.contains(
                     u"(Extra footing, grid 4) was replaced by Deeper footing: changed by Ann Ortiz at "_s),
                 qPrintable(text));
        QAbstractButton *putBack = nullptr;
        for (QAbstractButton *button : bar.findChildren<QAbstractButton *>())
            if (button->text() == u"Put Mine Back")
                putBack = button;
        QVERIFY(putBack);
        QTest::mouseClick(putBack, Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(bar.texts().isEmpty(), 5000);
        QTRY_COMPARE_WITH_TIMEOUT(ann.db->find(co.id)->f.value(u"title"), u"Extra footing, grid 4"_s, 8000);
    }

    void cleanupTestCase() { m_server.cluster.stop(); }
};

TRESTLE_TEST(ConnectDialogTests);
#include "connectdialogtests.moc"
