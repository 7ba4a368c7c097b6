// `trestle info`: the data folder, then each company with its records per kind.
#include "store/db.h"
#include "store/server/pg.h"
#include "store/server/serverlink.h"
#include "store/server/serversync.h"
#include "verbs.h"

#include <map>

using namespace Qt::StringLiterals;

namespace {

int info(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (!args.isEmpty()) {
        err << "trestle info takes no arguments\n";
        return 2;
    }
    DB &db = DB::shared();
    out << "Data folder: " << DB::appFolder() << '\n';
    if (ServerSync *sync = ServerLink::sync()) {
        out << "Company server: " << Pg::describe(sync->conninfo()) << '\n';
        out << "Login: " << sync->login() << '\n';
        out << "State: "
            << (sync->state() == ServerSync::State::Online ? u"online"_s : u"offline: "_s + sync->problem())
            << '\n';
        out << "Waiting to be sent: " << sync->waiting() << '\n';
        const QDateTime seen = sync->lastSeen();
        out << "Last change seen: " << (seen.isValid() ? seen.toString(Qt::ISODate) : u"none yet"_s) << '\n';
    }
    std::map<QString, std::map<QString, qsizetype>> counts; // company id → kind → records
    db.forEach([&](const Rec &r) { ++counts[r.company][r.kind]; });
    const QList<Rec> companies = db.list(u"company"_s);
    if (companies.isEmpty())
        out << "No companies yet.\n";
    for (const Rec &c : companies) {
        const bool current = c.id == db.companyID();
        out << (current ? "* " : "  ") << c.f.value(u"name") << " (" << c.id << ")"
            << (current ? " [current]" : "") << '\n';
        for (const auto &[kind, n] : counts[c.id])
            out << "      " << kind << ": " << n << '\n';
    }
    return 0;
}

const Verbs::Register reg({u"info"_s, QString(), u"Show the data folder and each company's records by kind"_s,
                           &info});

} // namespace
