// The company server's parts of the record editor, on a real server.
#include "look/buttons.h"
#include "server/serverfixture.h"
#include "shell/serverpanels.h"
#include "testmain.h"

using namespace Qt::StringLiterals;

class ServerPanelTests : public QObject
{
    Q_OBJECT
    ServerFixture m_server;
    Seat m_ann, m_ben;

private Q_SLOTS:
    void initTestCase()
    {
        QString error;
        QVERIFY2(m_server.start(&error), qPrintable(error));
        QVERIFY(m_server.openSeat(m_ann, u"ann"_s));
        QVERIFY(m_server.openSeat(m_ben, u"ben"_s));
    }

    void historyShowsWhoChangedWhatNewestFirst()
    {
        const Rec rfi =
            m_ann.db->add(u"rfi"_s, m_server.projectId, QString(), {{u"subject"_s, u"Footing depth"_s}});
        QVERIFY(m_ann.sync->flush(5000));
        QTRY_VERIFY_WITH_TIMEOUT(m_ben.db->find(rfi.id), 5000);
        Rec r = *m_ben.db->get(rfi.id);
        r.f.insert(u"subject"_s, u"Footing depth at grid 4"_s);
        m_ben.db->save(r);
        QVERIFY(m_ben.sync->flush(5000));

        HistoryPanel panel(*m_ben.db, *m_ben.sync, rfi.id);
        QVERIFY(panel.lines().isEmpty()); // nothing is read until it is opened
        QTest::mouseClick(panel.toggle(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(panel.lines().size(), 3, 5000);
        QVERIFY2(
            panel.lines().at(0).contains(u"Ben Kato  Subject: Footing depth → Footing depth at grid 4"_s),
            qPrintable(panel.lines().at(0)));
        QVERIFY2(panel.lines().at(1).contains(u"Ann Ortiz  Subject: (blank) → Footing depth"_s),
                 qPrintable(panel.lines().at(1)));
        QVERIFY2(panel.lines().at(2).contains(u"Ann Ortiz  Project: (blank) → Mill Street"_s),
                 qPrintable(panel.lines().at(2)));
        // A later change is read again while the panel is open.
        QTRY_VERIFY_WITH_TIMEOUT(m_ann.db->find(rfi.id)->f.value(u"subject") == u"Footing depth at grid 4",
                                 5000);
        Rec a = *m_ann.db->get(rfi.id);
        a.f.insert(u"status"_s, u"Answered"_s);
        m_ann.db->save(a);
        QVERIFY(m_ann.sync->flush(5000));
        QTRY_VERIFY_WITH_TIMEOUT(m_ben.db->find(rfi.id)->f.value(u"status") == u"Answered", 5000);
        panel.refresh();
        QTRY_COMPARE_WITH_TIMEOUT(panel.lines().size(), 4, 5000);
        QVERIFY2(panel.lines().first().contains(u"Ann Ortiz  Status: (blank) → Answered"_s),
                 qPrintable(panel.lines().first()));
        // Saved again at once (as typing saves), the run shows as one change.
        a.f.insert(u"status"_s, u"Closed"_s);
        m_ann.db->save(a);
        QVERIFY(m_ann.sync->flush(5000));
        QTRY_VERIFY_WITH_TIMEOUT(m_ben.db->find(rfi.id)->f.value(u"status") == u"Closed", 5000);
        panel.refresh();
        QTRY_VERIFY_WITH_TIMEOUT(panel.lines().first().contains(u"Ann Ortiz  Status: (blank) → Closed"_s),
                                 5000);
        QCOMPARE(panel.lines().size(), 4);
    }

    void anOwnerSeesAndShutsAMembersLogin()
    {
        LoginPanel panel(*m_ann.db, *m_ann.sync, m_server.benId);
        QTRY_COMPARE_WITH_TIMEOUT(panel.status(), u"Company server login: ben (can sign in)"_s, 5000);
        panel.setDisabled(true);
        QTRY_COMPARE_WITH_TIMEOUT(panel.status(), u"Company server login: ben (disabled)"_s, 5000);
        panel.setDisabled(false);
        QTRY_COMPARE_WITH_TIMEOUT(panel.status(), u"Company server login: ben (can sign in)"_s, 5000);
        // A member with no login gets one here; a name that cannot be a login is refused in words.
        const QString cal =
            m_ann.db
                ->add(u"user"_s, QString(), QString(), {{u"name"_s, u"Cal Reyes"_s}, {u"role"_s, u"Field"_s}})
                .id;
        QVERIFY(m_ann.sync->flush(5000));
        LoginPanel calPanel(*m_ann.db, *m_ann.sync, cal);
        QTRY_COMPARE_WITH_TIMEOUT(calPanel.status(), u"No company server login yet."_s, 5000);
        calPanel.create(u"Cal Reyes"_s, u"pw"_s);
        QTRY_VERIFY_WITH_TIMEOUT(calPanel.status().contains(u"cannot be a login"_s), 5000);
        calPanel.create(u"cal"_s, u"pw-cal"_s);
        QTRY_COMPARE_WITH_TIMEOUT(calPanel.status(), u"Company server login: cal (can sign in)"_s, 5000);
        Pg::Conn conn;
        QString error;
        QVERIFY2(conn.open(m_server.seatInfo(u"cal"_s), u"pw-cal"_s, &error), qPrintable(error));
    }

    void cleanupTestCase()
    {
        m_ann.close();
        m_ben.close();
        m_server.cluster.stop();
    }
};

TRESTLE_TEST(ServerPanelTests);
#include "serverpaneltests.moc"
