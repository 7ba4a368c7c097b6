// Seats on one company server: changes travel, offline work waits and goes out in order.
#include "serverfixture.h"
#include "testmain.h"

#include <QtCore/QSaveFile>
#include <QtTest/QSignalSpy>

using namespace Qt::StringLiterals;

namespace {
// The child that plays a seat killed while offline: it saves two changes to
// its copy with the server out of reach, then dies without any goodbye.
int offlineThenKilled(const QStringList &args)
{
    DB db(args.at(0));
    ServerSync sync(db, args.at(1));
    sync.start(u"pw-ann"_s);
    sync.waitCaughtUp(5000);
    Rec project = *db.get(args.at(2));
    project.f.insert(u"name"_s, u"Mill Street Lofts"_s);
    db.save(project);
    db.add(u"rfi"_s, project.id, QString(), {{u"title"_s, u"Written offline"_s}}, args.at(3));
    std::_Exit(9);
}
const TestMain::RegisterChild child(u"offline-then-killed"_s, &offlineThenKilled);
} // namespace

class SyncTests : public QObject
{
    Q_OBJECT
    ServerFixture m_server;

private Q_SLOTS:
    void initTestCase()
    {
        QString error;
        QVERIFY2(m_server.start(&error), qPrintable(error));
    }

    void firstOpenBringsTheCompany()
    {
        Seat ann;
        QVERIFY(m_server.openSeat(ann, u"ann"_s));
        QVERIFY(ann.db->company());
        QCOMPARE(ann.db->company()->f.value(u"name"), u"Ridge Builders"_s);
        QCOMPARE(ann.db->costCodes().size(), 22);
        QCOMPARE(ann.sync->login(), u"ann"_s);
        QCOMPARE(ann.sync->memberId(), m_server.annId);
        QCOMPARE(ann.sync->person(u"ben"_s), u"Ben Kato"_s);
        QCOMPARE(ann.sync->waiting(), 0);
        // The copy stays: closed and opened again offline, everything is still there.
        const qsizetype records = ann.db->size();
        ann.sync.reset();
        ann.db.reset();
        DB again(ann.file());
        QCOMPARE(again.size(), records);
    }

    void aSeatNeverWorksAsTheAdministrator()
    {
        Seat admin;
        QVERIFY(!admin.open(m_server.cluster.conninfo(m_server.dbName), QString(), 8000));
        QVERIFY2(admin.sync->problem().contains(u"administrator"_s), qPrintable(admin.sync->problem()));
        QCOMPARE(admin.db->size(), 0);
    }

    void changesReachTheOtherSeat()
    {
        Seat ann, ben;
        QVERIFY(m_server.openSeat(ann, u"ann"_s));
        QVERIFY(m_server.openSeat(ben, u"ben"_s));
        QSignalSpy benChanged(ben.db.get(), &DB::changed);
        const Rec rfi =
            ann.db->add(u"rfi"_s, m_server.projectId, QString(), {{u"title"_s, u"Footing depth"_s}});
        QTRY_VERIFY_WITH_TIMEOUT(ben.db->find(rfi.id), 5000);
        QCOMPARE(ben.db->find(rfi.id)->f.value(u"title"), u"Footing depth"_s);
        QVERIFY(benChanged.count() >= 1);
        QTRY_COMPARE_WITH_TIMEOUT(ann.sync->waiting(), 0, 5000);

        // A removal travels too, and stays a removal.
        ann.db->remove(rfi.id);
        QTRY_VERIFY_WITH_TIMEOUT(!ben.db->find(rfi.id), 5000);
        QString out;
        m_server.cluster.psql(
            m_server.dbName, u"postgres"_s,
            u"SELECT deleted, changed_by FROM trestle.recs WHERE id = '"_s + rfi.id + u"'"_s, &out);
        QCOMPARE(out, u"t|ann"_s);
    }

    void differentFieldsBothSurvive()
    {
        Seat ann, ben;
        QVERIFY(m_server.openSeat(ann, u"ann"_s));
        QVERIFY(m_server.openSeat(ben, u"ben"_s));
        const Rec rfi = ann.db->add(u"rfi"_s, m_server.projectId, QString(),
                                    {{u"title"_s, u"Beam size"_s}, {u"question"_s, u"W8 or W10?"_s}});
        QTRY_VERIFY_WITH_TIMEOUT(ben.db->find(rfi.id), 5000);
        // Both edit before either hears of the other.
        QVERIFY(ann.goOffline());
        ann.edit(rfi.id, u"title"_s, u"Beam size at grid C"_s);
        ben.edit(rfi.id, u"question"_s, u"W10 with a 1/2 in plate?"_s);
        QTRY_COMPARE_WITH_TIMEOUT(ben.sync->waiting(), 0, 5000);
        ann.sync->setPassword(u"pw-ann"_s);
        for (Seat *s : {&ann, &ben})
            QTRY_VERIFY_WITH_TIMEOUT(s->db->find(rfi.id)->f.value(u"title") == u"Beam size at grid C" &&
                                         s->db->find(rfi.id)->f.value(u"question") ==
                                             u"W10 with a 1/2 in plate?",
                                     8000);
        QVERIFY(ann.sync->notices().isEmpty());
        QVERIFY(ben.sync->notices().isEmpty());
    }

    void aLostWakeUpOnlyDelays()
    {
        Seat ben;
        QVERIFY(m_server.openSeat(ben, u"ben"_s));
        // Written with the server's triggers off: no wake-up is sent at all.
        const QString id = newID();
        QString out;
        QCOMPARE(
            m_server.cluster.psql(
                m_server.dbName, u"postgres"_s,
                u"SET session_replication_role = replica; SELECT status FROM trestle.put_rec('%1', 0, '%2', "
                u"'rfi', '%3', '', 1, 1, '{\"title\": \"Silent\"}', false)"_s.arg(id, m_server.companyId,
                                                                                  m_server.projectId),
                &out),
            0);
        QTRY_VERIFY_WITH_TIMEOUT(ben.db->find(id), 9000);
        QCOMPARE(ben.db->find(id)->f.value(u"title"), u"Silent"_s);
    }

    void serverKilledAndBackNothingLost()
    {
        Seat ann, ben;
        QVERIFY(m_server.openSeat(ann, u"ann"_s));
        QVERIFY(m_server.openSeat(ben, u"ben"_s));
        m_server.cluster.kill();
        QTRY_VERIFY_WITH_TIMEOUT(ann.sync->state() == ServerSync::State::Offline, 8000);
        QStringList made;
        for (int k = 1; k <= 5; ++k)
            made.append(ann.db
                            ->add(u"rfi"_s, m_server.projectId, QString(),
                                  {{u"title"_s, u"Offline "_s + QString::number(k)}})
                            .id);
        QCOMPARE(ann.sync->waiting(), 5);
        QVERIFY(!ann.sync->problem().isEmpty());
        QString error;
        QVERIFY2(m_server.cluster.startServer(&error), qPrintable(error));
        QTRY_COMPARE_WITH_TIMEOUT(ann.sync->waiting(), 0, 15000);
        for (const QString &id : std::as_const(made))
            QTRY_VERIFY_WITH_TIMEOUT(ben.db->find(id), 15000);
        // They reached the server in the order they were made.
        QString out;
        m_server.cluster.psql(
            m_server.dbName, u"postgres"_s,
            u"SELECT string_agg(f->>'title', ',' ORDER BY pos) FROM trestle.recs WHERE f->>'title' "
            u"LIKE 'Offline %'"_s,
            &out);
        QCOMPARE(out, u"Offline 1,Offline 2,Offline 3,Offline 4,Offline 5"_s);
    }

    void aSeatKilledOfflineKeepsItsOutbox()
    {
        Seat ann, ben;
        QVERIFY(m_server.openSeat(ann, u"ann"_s));
        QVERIFY(m_server.openSeat(ben, u"ben"_s));
        ann.close();
        const QString nowhere = u"host=/nonexistent-folder dbname=company user=ann"_s;
        const auto child = TestMain::runChild(u"offline-then-killed"_s,
                                              {ann.file(), nowhere, m_server.projectId, m_server.companyId});
        QCOMPARE(child->exitCode(), 9);
        QVERIFY2(ann.open(m_server.seatInfo(u"ann"_s), u"pw-ann"_s), qPrintable(ann.sync->problem()));
        QTRY_COMPARE_WITH_TIMEOUT(ann.sync->waiting(), 0, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(ben.db->find(m_server.projectId)->f.value(u"name"), u"Mill Street Lofts"_s,
                                  8000);
        bool found = false;
        for (const Rec &r : ben.db->list(u"rfi"_s, {.project = m_server.projectId}))
            found = found || r.f.value(u"title") == u"Written offline";
        QVERIFY(found);
    }

    void storedFilesTravel()
    {
        Seat ann, ben;
        QVERIFY(m_server.openSeat(ann, u"ann"_s));
        QVERIFY(m_server.openSeat(ben, u"ben"_s));
        // A plan sheet and a photo with the same bytes: stored once on the server.
        QTemporaryDir outside;
        const QString source = outside.filePath(u"A-101 Floor plan.pdf"_s);
        QFile f(source);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("%PDF-1.4\n% sheet A-101, first issue\n");
        f.close();
        const QString sheetName = *ann.db->importFile(source);
        const QString photoName = *ann.db->importFile(source);
        const Rec sheet = ann.db->add(u"sheet"_s, m_server.projectId, QString(), {{u"file"_s, sheetName}});
        ann.db->add(u"photo"_s, m_server.projectId, QString(), {{u"file"_s, photoName}});
        QString out;
        auto serverFiles = [&] {
            m_server.cluster.psql(
                m_server.dbName, u"postgres"_s,
                u"SELECT (SELECT count(*) FROM trestle.files), (SELECT count(*) FROM trestle.blobs)"_s, &out);
            return out;
        };
        QTRY_COMPARE_WITH_TIMEOUT(serverFiles(), u"2|1"_s, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(ben.db->find(sheet.id), 8000);
        // Ben's copy fetches the file the first time it is asked for.
        const QString atBen = QDir(ben.db->filesRoot()).filePath(m_server.companyId + u'/' + sheetName);
        QTRY_VERIFY_WITH_TIMEOUT((ben.db->fileURL(sheetName, m_server.companyId), QFileInfo::exists(atBen)),
                                 10000);
        QFile got(atBen);
        QVERIFY(got.open(QIODevice::ReadOnly));
        QCOMPARE(got.readAll(), QByteArray("%PDF-1.4\n% sheet A-101, first issue\n"));
        // Marks saved into the sheet on Ben's seat reach Ann's copy.
        QSaveFile marked(atBen);
        QVERIFY(marked.open(QIODevice::WriteOnly));
        marked.write("%PDF-1.4\n% sheet A-101 with Ben's cloud\n");
        QVERIFY(marked.commit());
        const QString atAnn = QDir(ann.db->filesRoot()).filePath(m_server.companyId + u'/' + sheetName);
        QTRY_VERIFY_WITH_TIMEOUT(
            [&] {
                QFile a(atAnn);
                return a.open(QIODevice::ReadOnly) && a.readAll().contains("Ben's cloud");
            }(),
            15000);
    }

    void cleanupTestCase() { m_server.cluster.stop(); }
};

TRESTLE_TEST(SyncTests);
#include "synctests.moc"
