#pragma once
// A company server for a test class: one real cluster, one database set up by
// Trestle with one pushed company, and seats that work on it.
#include "catalog/serverrules.h"
#include "pgcluster.h"
#include "store/db.h"
#include "store/server/pg.h"
#include "store/server/serveradmin.h"
#include "store/server/serverschema.h"
#include "store/server/serversync.h"

#include <QtTest/QTest>

#include <memory>

// One seat: its own cache file and its own connection as its own login.
struct Seat
{
    std::unique_ptr<QTemporaryDir> dir = std::make_unique<QTemporaryDir>();
    std::unique_ptr<DB> db;
    std::unique_ptr<ServerSync> sync;

    QString file() const { return dir->filePath(QStringLiteral("trestle.sqlite")); }
    // Opens the cache and connects; true once caught up.
    bool open(const QString &conninfo, const QString &password, int ms = 15000)
    {
        db = std::make_unique<DB>(file());
        sync = std::make_unique<ServerSync>(*db, conninfo);
        sync->start(password);
        return sync->waitCaughtUp(ms);
    }
    // Takes the seat off the server (a wrong password), so it works on its own
    // copy as a laptop on a site would; true once it is offline.
    bool goOffline()
    {
        sync->setPassword(QStringLiteral("wrong"));
        return QTest::qWaitFor([&] { return sync->state() == ServerSync::State::Offline; }, 5000);
    }
    // Changes one field of a record on this seat.
    void edit(const QString &id, const QString &key, const QString &value)
    {
        Rec r = *db->get(id);
        r.f.insert(key, value);
        db->save(r);
    }
    void close()
    {
        sync.reset();
        db.reset();
    }
};

struct ServerFixture
{
    PgCluster cluster;
    QString dbName = QStringLiteral("company");
    QString companyId;
    QString annId, benId;
    QString projectId;

    // Starts the cluster, sets up the database and pushes a company with two
    // team members who each get a login ("ann" and "ben", password "pw-<login>").
    bool start(QString *error)
    {
        if (!cluster.start(error) || !cluster.createDatabase(dbName, error))
            return false;
        Pg::Conn admin;
        if (!admin.open(cluster.conninfo(dbName), QString(), error))
            return false;
        if (ServerSchema::init(admin, catalog(), error) != ServerSchema::Init::Created)
            return false;
        DB local;
        const Rec company = local.createCompany(QStringLiteral("Ridge Builders"), QStringLiteral("Ann Ortiz"),
                                                QStringLiteral("CO"));
        companyId = company.id;
        annId = local.user()->id;
        benId = local
                    .add(QStringLiteral("user"), QString(), QString(),
                         {{QStringLiteral("name"), QStringLiteral("Ben Kato")},
                          {QStringLiteral("role"), QStringLiteral("Project Manager")}})
                    .id;
        projectId = local
                        .add(QStringLiteral("project"), QString(), QString(),
                             {{QStringLiteral("name"), QStringLiteral("Mill Street")},
                              {QStringLiteral("number"), QStringLiteral("2026-01")}})
                        .id;
        QString summary;
        return ServerAdmin::push(admin, local, &summary, error) &&
               ServerAdmin::addLogin(admin, QStringLiteral("ann"), annId, QStringLiteral("pw-ann"), error) &&
               ServerAdmin::addLogin(admin, QStringLiteral("ben"), benId, QStringLiteral("pw-ben"), error);
    }

    static ServerCatalog catalog() { return ServerRules::fromCatalog(); }

    QString seatInfo(const QString &login) const { return cluster.conninfo(dbName, login); }

    bool openSeat(Seat &seat, const QString &login)
    {
        if (!seat.open(seatInfo(login), QStringLiteral("pw-") + login))
            return false;
        seat.db->setCompanyID(companyId);
        return true;
    }
};
