// Two seats changing the same things: nothing lost, nothing overwritten in silence.
#include "serverfixture.h"
#include "testmain.h"

using namespace Qt::StringLiterals;

class ConflictTests : public QObject
{
    Q_OBJECT
    ServerFixture m_server;
    Seat m_ann, m_ben;

    // Takes Ann's seat off the server (a wrong password), so both can change
    // the same record before either hears of the other.
    void annOffline() { QVERIFY(m_ann.goOffline()); }
    void annBack()
    {
        m_ann.sync->setPassword(u"pw-ann"_s);
        QTRY_VERIFY_WITH_TIMEOUT(m_ann.sync->caughtUp() && m_ann.sync->waiting() == 0, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(m_ben.sync->waiting(), 0, 5000);
    }
    Rec shared(const Fields &f)
    {
        const Rec r = m_ben.db->add(u"co"_s, m_server.projectId, QString(), f);
        [&] { QTRY_VERIFY_WITH_TIMEOUT(m_ann.db->find(r.id), 5000); }();
        return r;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QString error;
        QVERIFY2(m_server.start(&error), qPrintable(error));
        QVERIFY(m_server.openSeat(m_ann, u"ann"_s));
        QVERIFY(m_server.openSeat(m_ben, u"ben"_s));
    }

    void sameFieldTellsThePersonReplaced()
    {
        const Rec co = shared({{u"title"_s, u"Extra footing"_s}, {u"number"_s, u"7"_s}});
        annOffline();
        m_ben.edit(co.id, u"title"_s, u"Extra footing at grid 4"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_ben.sync->waiting(), 0, 5000);
        m_ann.edit(co.id, u"title"_s, u"Deeper footing"_s);
        annBack();
        // Ann's save reached the server later, so it stands everywhere...
        QTRY_COMPARE_WITH_TIMEOUT(m_ben.db->find(co.id)->f.value(u"title"), u"Deeper footing"_s, 8000);
        QCOMPARE(m_ann.db->find(co.id)->f.value(u"title"), u"Deeper footing"_s);
        // ...and Ben, whose value it replaced, is told who and what.
        QTRY_COMPARE_WITH_TIMEOUT(m_ben.sync->notices().size(), 1, 8000);
        const SeatNotice n = m_ben.sync->notices().first();
        QCOMPARE(n.kind, SeatNotice::Replaced);
        QCOMPARE(n.recId, co.id);
        QCOMPARE(n.field, u"title"_s);
        QCOMPARE(n.mine, u"Extra footing at grid 4"_s);
        QCOMPARE(n.theirs, u"Deeper footing"_s);
        QCOMPARE(m_ben.sync->person(n.by), u"Ann Ortiz"_s);
        QVERIFY(n.at.isValid());
        QVERIFY(m_ann.sync->notices().isEmpty());
        // One click puts Ben's value back, for everyone.
        m_ben.sync->act(0);
        QVERIFY(m_ben.sync->notices().isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(m_ann.db->find(co.id)->f.value(u"title"), u"Extra footing at grid 4"_s,
                                  8000);
    }

    void editAgainstRemoval_data()
    {
        QTest::addColumn<bool>("annRemoves");
        QTest::newRow("edited here, removed there") << false;
        QTest::newRow("removed here, edited there") << true;
    }
    void editAgainstRemoval()
    {
        QFETCH(bool, annRemoves);
        const Rec co = shared({{u"title"_s, u"Owner upgrade"_s}});
        annOffline();
        // One seat removes the record while the other, unaware, edits it.
        Seat &editor = annRemoves ? m_ben : m_ann;
        Rec edited = *editor.db->get(co.id);
        edited.f.insert(u"title"_s, u"Owner upgrade, revised"_s);
        if (annRemoves) {
            m_ann.db->remove(co.id);
            editor.db->save(edited);
        } else {
            m_ben.db->remove(co.id);
            QTRY_COMPARE_WITH_TIMEOUT(m_ben.sync->waiting(), 0, 5000);
            editor.db->save(edited);
        }
        annBack();
        // Either way Ann is the one who is told: her change met Ben's.
        QTRY_COMPARE_WITH_TIMEOUT(m_ann.sync->notices().size(), 1, 8000);
        const SeatNotice n = m_ann.sync->notices().first();
        if (annRemoves) {
            // Ben's edit came first: the record stays, and Ann hears why her removal did not happen.
            QCOMPARE(n.kind, SeatNotice::KeptAfterRemove);
            QCOMPARE(m_ann.db->find(co.id)->f.value(u"title"), u"Owner upgrade, revised"_s);
            QVERIFY(m_ben.db->find(co.id));
            m_ann.sync->act(0); // remove it after all
            QTRY_VERIFY_WITH_TIMEOUT(!m_ben.db->find(co.id), 8000);
        } else {
            // Ben removed it first: Ann's edit is not brought back in silence, and she can put it back.
            QCOMPARE(n.kind, SeatNotice::RemovedElsewhere);
            QCOMPARE(n.copy.f.value(u"title"), u"Owner upgrade, revised"_s);
            QVERIFY(!m_ann.db->find(co.id));
            QVERIFY(!m_ben.db->find(co.id));
            m_ann.sync->act(0);
            QTRY_VERIFY_WITH_TIMEOUT(m_ben.db->find(co.id), 8000);
            QCOMPARE(m_ben.db->find(co.id)->f.value(u"title"), u"Owner upgrade, revised"_s);
        }
        QVERIFY(m_ann.sync->notices().isEmpty());
        QVERIFY(m_ben.sync->notices().isEmpty());
    }

    void numbersStayUniqueAcrossSeats()
    {
        annOffline();
        // Each seat takes the next number from its own copy: both pick the same one.
        auto next = [&](DB &db) {
            qint64 top = 0;
            for (const Rec &r : db.list(u"pay_app"_s, {.project = m_server.projectId}))
                top = std::max(top, r.i(u"number"));
            return QString::number(top + 1);
        };
        const Rec a =
            m_ann.db->add(u"pay_app"_s, m_server.projectId, QString(), {{u"number"_s, next(*m_ann.db)}});
        const Rec b =
            m_ben.db->add(u"pay_app"_s, m_server.projectId, QString(), {{u"number"_s, next(*m_ben.db)}});
        QCOMPARE(a.f.value(u"number"), b.f.value(u"number"));
        QTRY_COMPARE_WITH_TIMEOUT(m_ben.sync->waiting(), 0, 5000);
        annBack();
        for (Seat *s : {&m_ann, &m_ben}) {
            QTRY_VERIFY_WITH_TIMEOUT(s->db->find(a.id) && s->db->find(b.id), 8000);
            QTRY_COMPARE_WITH_TIMEOUT(s->db->find(a.id)->f.value(u"number"), u"2"_s, 8000);
            QCOMPARE(s->db->find(b.id)->f.value(u"number"), u"1"_s);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_ann.sync->notices().size(), 1, 5000);
        QCOMPARE(m_ann.sync->notices().first().kind, SeatNotice::Renumbered);
        m_ann.sync->dismiss(0);
    }

    void cleanupTestCase()
    {
        m_ann.close();
        m_ben.close();
        m_server.cluster.stop();
    }
};

TRESTLE_TEST(ConflictTests);
#include "conflicttests.moc"
