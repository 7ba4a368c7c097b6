// The indexes against a plain walk, and writes surviving a killed process.
#include "store/db.h"
#include "testmain.h"

#include <QtCore/QRandomGenerator>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// What list() must return, computed the slow and obvious way.
QStringList walk(const DB &db, const QString &kind, const RecFilter &filter)
{
    const QString company = filter.company.value_or(db.companyID());
    QList<Rec> hits;
    db.forEach([&](const Rec &r) {
        if (r.kind == kind && (kind == u"company" || r.company == company) &&
            (!filter.project || r.project == *filter.project) &&
            (!filter.parent || r.parent == *filter.parent))
            hits.append(r);
    });
    std::sort(hits.begin(), hits.end(), [](const Rec &a, const Rec &b) {
        return std::tuple(a.i(u"sort"), a.created, a.id) < std::tuple(b.i(u"sort"), b.created, b.id);
    });
    QStringList out;
    for (const Rec &r : hits)
        out.append(r.id);
    return out;
}

} // namespace

class DurabilityTests : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void indexesMatchWalk()
    {
        QRandomGenerator rng(42);
        DB db;
        const QStringList kinds{u"task"_s, u"est_line"_s, u"project"_s, u"company"_s};
        const QStringList companies{u"C1"_s, u"C2"_s};
        QStringList projects{QString(), u"P1"_s, u"P2"_s, u"P3"_s};
        auto pick = [&](const QStringList &from) { return from.at(rng.bounded(int(from.size()))); };
        QStringList live;
        auto anyId = [&] { return live.isEmpty() || rng.bounded(3) == 0 ? QString() : pick(live); };
        for (int round = 0; round < 60; ++round) {
            db.setCompanyID(pick(companies));
            for (int op = 0; op < 40; ++op) {
                const int what = rng.bounded(10);
                if (what < 5 || live.isEmpty()) {
                    Fields f;
                    if (rng.bounded(2))
                        f.insert(u"sort"_s, QString::number(rng.bounded(4)));
                    const Rec r = db.add(pick(kinds), pick(projects), anyId(), f,
                                         rng.bounded(4) ? std::nullopt : std::optional(pick(companies)));
                    live.append(r.id);
                    if (r.kind == u"project")
                        projects.append(r.id);
                } else if (what < 8) {
                    Rec r = *db.get(pick(live));
                    r.project = pick(projects);
                    r.parent = anyId();
                    if (rng.bounded(3) == 0)
                        r.kind = pick(kinds);
                    if (rng.bounded(3) == 0)
                        r.company = pick(companies);
                    if (what == 7)
                        db.saveAll({r});
                    else
                        db.save(r);
                } else {
                    db.remove(pick(live));
                    live.removeIf([&](const QString &id) { return !db.get(id); });
                }
            }
            for (int q = 0; q < 30; ++q) {
                RecFilter filter;
                if (rng.bounded(2))
                    filter.project = pick(projects);
                if (rng.bounded(3) == 0)
                    filter.parent = anyId();
                if (rng.bounded(4) == 0)
                    filter.company = pick(companies);
                const QString kind = pick(kinds);
                QStringList got;
                for (const Rec &r : db.list(kind, filter))
                    got.append(r.id);
                QCOMPARE(got, walk(db, kind, filter));
                QCOMPARE(db.count(kind, filter), got.size());
            }
        }
        QVERIFY(db.size() > 100);
    }

    // A writer is killed at random moments; every write it reported as done
    // must be found intact, and every reported removal must stay removed.
    void survivesKill()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u"trestle.sqlite"_s);
        QRandomGenerator rng(9);
        QHash<QString, QString> expected; // id → value, or empty for removed
        int confirmed = 0;
        for (int round = 0; round < 12; ++round) {
            QProcess writer;
            writer.start(QCoreApplication::applicationFilePath(),
                         {u"--child"_s, u"store-writer"_s, path, QString::number(round)});
            QVERIFY(writer.waitForStarted());
            QTest::qWait(80 + rng.bounded(250));
            writer.kill(); // SIGKILL: no chance to clean up
            writer.waitForFinished();
            const QList<QByteArray> lines = writer.readAllStandardOutput().split('\n');
            for (const QByteArray &line : lines) {
                const QList<QByteArray> parts = line.split(' ');
                if (parts.size() == 3 && parts[0] == "saved")
                    expected[QString::fromLatin1(parts[1])] = QString::fromLatin1(parts[2]);
                else if (parts.size() == 2 && parts[0] == "removing")
                    expected.remove(QString::fromLatin1(parts[1])); // may or may not have happened
                else if (parts.size() == 2 && parts[0] == "removed")
                    expected[QString::fromLatin1(parts[1])] = QString();
            }
            DB db(path);
            for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
                const auto rec = db.get(it.key());
                if (it.value().isEmpty()) {
                    QVERIFY2(!rec, "a confirmed removal came back");
                } else {
                    QVERIFY2(rec.has_value(), "a confirmed save was lost");
                    QCOMPARE(rec->f.value(u"n"), it.value());
                    ++confirmed;
                }
            }
        }
        QVERIFY(confirmed > 50);
    }
};

// Saves and removes records until killed, reporting each after it returned.
static TestMain::RegisterChild writer(u"store-writer"_s, [](const QStringList &args) -> int {
    DB db(args.at(0));
    const QString tag = args.at(1);
    QStringList mine;
    for (int n = 0;; ++n) {
        const QString value = tag + u'.' + QString::number(n);
        if (n % 7 == 3) {
            QList<Rec> batch;
            for (int k = 0; k < 5; ++k) {
                Rec r;
                r.id = newID();
                r.kind = u"contact"_s;
                r.created = nowSeconds();
                r.f.insert(u"n"_s, value + u'.' + QString::number(k));
                batch.append(r);
            }
            db.saveAll(batch);
            for (const Rec &r : batch)
                std::printf("saved %s %s\n", qPrintable(r.id), qPrintable(r.f.value(u"n")));
        } else if (n % 5 == 4 && !mine.isEmpty()) {
            const QString id = mine.takeFirst();
            std::printf("removing %s\n", qPrintable(id));
            std::fflush(stdout);
            db.remove(id);
            std::printf("removed %s\n", qPrintable(id));
        } else {
            const Rec r = db.add(u"contact"_s, {}, {}, {{u"n"_s, value}});
            mine.append(r.id);
            std::printf("saved %s %s\n", qPrintable(r.id), qPrintable(value));
        }
        std::fflush(stdout);
    }
});

TRESTLE_TEST(DurabilityTests);
#include "durabilitytests.moc"
