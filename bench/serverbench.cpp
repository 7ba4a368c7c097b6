#include "serverbench.h"

#include "benchutil.h"

#include "catalog/serverrules.h"
#include "store/db.h"
#include "store/server/pg.h"
#include "store/server/serveradmin.h"
#include "store/server/serverschema.h"
#include "store/server/serversync.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QString kPassword = u"bench-seat-pw"_s;

double elapsedMs(const QElapsedTimer &t)
{
    return double(t.nsecsElapsed()) / 1e6;
}

double percentile(std::vector<double> v, double p)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    return v[std::min(v.size() - 1, size_t(p * double(v.size() - 1) + 0.5))];
}

// Runs events until `done` or `ms` passed; true when done.
template<class Done> bool spin(int ms, Done &&done)
{
    QElapsedTimer t;
    t.start();
    while (!done() && t.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
    return done();
}

struct Seat
{
    std::unique_ptr<DB> db;
    std::unique_ptr<ServerSync> sync;
    bool open(const QString &file, const QString &conninfo)
    {
        db = std::make_unique<DB>(file);
        sync = std::make_unique<ServerSync>(*db, conninfo);
        sync->start(kPassword);
        return sync->waitCaughtUp(30 * 60 * 1000);
    }
};

} // namespace

int runServerBench(const QString &localPath, const QString &conninfo, int seats, int seconds,
                   QTextStream &out)
{
    Pg::Conn admin;
    QString error;
    if (!admin.open(conninfo, QString(), &error)) {
        out << "server: " << error << Qt::endl;
        return 1;
    }
    QString message;
    const ServerSchema::Init init = ServerSchema::init(admin, ServerRules::fromCatalog(), &message);
    if (init == ServerSchema::Init::Refused || init == ServerSchema::Init::Failed) {
        out << "server: " << message << Qt::endl;
        return 1;
    }
    // The local open of this run, for comparison.
    const Bench::Stats local = Bench::measure(3, [&] { DB db(localPath); });
    Bench::print(out, u"local open"_s, local, {});

    QString memberId, companyId, recordId;
    {
        DB db(localPath);
        const Rec company = db.list(u"company"_s).first();
        companyId = company.id;
        memberId = db.list(u"user"_s, {.company = companyId}).first().id;
        recordId = db.list(u"project"_s, {.company = companyId}).first().id;
        const Pg::Result there = admin.exec("SELECT 1 FROM trestle.recs WHERE id = $1", {companyId.toUtf8()});
        if (there.ok() && there.rows() == 0) {
            QElapsedTimer t;
            t.start();
            QString summary;
            if (!ServerAdmin::push(admin, db, &summary, &error)) {
                out << "server push: " << error << Qt::endl;
                return 1;
            }
            out << "server push: " << Bench::ms(elapsedMs(t)) << " ms  [" << summary << "]" << Qt::endl;
        }
    }
    // Logins belong to the whole server, so each run names its own.
    const QString prefix = u"bench"_s + QString::number(QCoreApplication::applicationPid()) + u'-';
    for (int k = 0; k <= seats; ++k)
        if (!ServerAdmin::addLogin(admin, prefix + QString::number(k), memberId, kPassword, &error)) {
            out << "server logins: " << error << Qt::endl;
            return 1;
        }
    auto seatInfo = [&](int k) -> QString { return conninfo + u" user="_s + prefix + QString::number(k); };

    QTemporaryDir dir;
    const QString firstCache = dir.filePath(u"first.sqlite"_s);
    {
        QElapsedTimer t;
        t.start();
        Seat s;
        if (!s.open(firstCache, seatInfo(0))) {
            out << "first open from the server: " << s.sync->problem() << Qt::endl;
            return 1;
        }
        out << "first open from the server: " << Bench::ms(elapsedMs(t)) << " ms  [" << s.db->size()
            << " records]" << Qt::endl;
    }
    // 1,000 changes made by another seat while this one is closed.
    {
        Seat other;
        other.open(dir.filePath(u"other.sqlite"_s), seatInfo(1));
        other.db->setCompanyID(companyId);
        QList<Rec> changed = other.db->list(u"timecard"_s);
        changed.resize(std::min<qsizetype>(changed.size(), 1000));
        for (Rec &r : changed)
            r.f.insert(u"notes"_s, u"changed elsewhere"_s);
        other.db->saveAll(changed);
        other.sync->flush(10 * 60 * 1000);
    }
    {
        QElapsedTimer t;
        t.start();
        Seat s;
        s.open(firstCache, seatInfo(0));
        Bench::print(out, u"open with the cache after 1,000 changes elsewhere"_s,
                     {elapsedMs(t), elapsedMs(t), elapsedMs(t)},
                     u"local open ×%1"_s.arg(elapsedMs(t) / local.median, 0, 'f', 2));
    }

    // How soon a save on one seat is in another seat's store.
    {
        Seat a, b;
        QFile::copy(firstCache, dir.filePath(u"a.sqlite"_s));
        QFile::copy(firstCache, dir.filePath(u"b.sqlite"_s));
        a.open(dir.filePath(u"a.sqlite"_s), seatInfo(0));
        b.open(dir.filePath(u"b.sqlite"_s), seatInfo(1));
        std::vector<double> seen;
        for (int k = 0; k < 200; ++k) {
            Rec r = *a.db->get(recordId);
            const QString mark = u"stamp "_s + QString::number(k);
            r.f.insert(u"benchStamp"_s, mark);
            QElapsedTimer t;
            t.start();
            a.db->save(r);
            if (spin(10000, [&] { return b.db->find(recordId)->f.value(u"benchStamp") == mark; }))
                seen.push_back(elapsedMs(t));
        }
        out << "change seen by another seat: p50 " << Bench::ms(percentile(seen, 0.5)) << " ms, p95 "
            << Bench::ms(percentile(seen, 0.95)) << " ms  [" << seen.size()
            << " of 200 seen; target p95 < 200 ms]" << Qt::endl;
    }

    // Many seats, each saving its own record once a second.
    {
        std::vector<std::unique_ptr<Seat>> all;
        QStringList ids;
        {
            DB db(firstCache);
            for (int k = 0; k < seats; ++k)
                ids.append(db.add(u"rfi"_s, recordId, QString(),
                                  {{u"title"_s, u"Seat "_s + QString::number(k)}}, companyId)
                               .id);
        }
        // The records above were made in the cache; one seat sends them before the rest start.
        for (int k = 0; k < seats; ++k) {
            const QString file = dir.filePath(u"seat%1.sqlite"_s.arg(k));
            QFile::copy(firstCache, file);
            auto s = std::make_unique<Seat>();
            s->open(file, seatInfo(k + 1));
            s->db->setCompanyID(companyId);
            all.push_back(std::move(s));
        }
        spin(60000, [&] {
            for (auto &s : all)
                for (const QString &id : std::as_const(ids))
                    if (!s->db->find(id))
                        return false;
            return true;
        });
        // sent[i][n]: when seat i saved tick n; each seat notes when it first sees each tick.
        std::vector<std::vector<qint64>> sent(static_cast<size_t>(seats));
        std::vector<double> latency;
        qint64 lost = 0;
        QElapsedTimer clock;
        clock.start();
        std::vector<std::vector<int>> seenTick(size_t(seats), std::vector<int>(size_t(seats), 0));
        std::vector<QMetaObject::Connection> links;
        for (int j = 0; j < seats; ++j)
            links.push_back(QObject::connect(all[size_t(j)]->db.get(), &DB::changed, [&, j] {
                for (int i = 0; i < seats; ++i) {
                    const int tick = all[size_t(j)]->db->find(ids.at(i))->f.value(u"tick").toInt();
                    while (seenTick[size_t(j)][size_t(i)] < tick) {
                        const int n = ++seenTick[size_t(j)][size_t(i)];
                        if (i != j && size_t(n) <= sent[size_t(i)].size())
                            latency.push_back(double(clock.nsecsElapsed() - sent[size_t(i)][size_t(n - 1)]) /
                                              1e6);
                    }
                }
            }));
        QTimer ticker;
        ticker.setInterval(1000 / std::max(1, seats));
        int next = 0;
        QObject::connect(&ticker, &QTimer::timeout, [&] {
            // The seats take turns, so each saves once a second and the saves spread over the second.
            const int i = next++ % seats;
            Rec r = *all[size_t(i)]->db->get(ids.at(i));
            r.f.insert(u"tick"_s, QString::number(sent[size_t(i)].size() + 1));
            sent[size_t(i)].push_back(clock.nsecsElapsed());
            all[size_t(i)]->db->save(r);
        });
        ticker.start();
        spin(seconds * 1000, [] { return false; });
        ticker.stop();
        spin(30000, [&] {
            for (int j = 0; j < seats; ++j)
                for (int i = 0; i < seats; ++i)
                    if (seenTick[size_t(j)][size_t(i)] < int(sent[size_t(i)].size()))
                        return false;
            return true;
        });
        for (int j = 0; j < seats; ++j)
            for (int i = 0; i < seats; ++i)
                lost += qint64(sent[size_t(i)].size()) - seenTick[size_t(j)][size_t(i)];
        for (auto &l : links)
            QObject::disconnect(l);
        qint64 saves = 0;
        for (const auto &s : sent)
            saves += qint64(s.size());
        out << seats << " seats saving once a second for " << seconds << " s: " << saves << " saves, "
            << latency.size() << " arrivals, " << lost << " lost; p50 " << Bench::ms(percentile(latency, 0.5))
            << " ms, p95 " << Bench::ms(percentile(latency, 0.95)) << " ms" << Qt::endl;
    }
    return 0;
}
