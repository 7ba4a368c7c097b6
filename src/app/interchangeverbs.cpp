// The interchange verbs: the sample company, the QuickBooks and CSV exports,
// backup and restore of the data folder, and its snapshots, for scripts and
// nightly jobs.
#include "calc/datefmt.h"
#include "documents/samplefiles.h"
#include "interchange/backup.h"
#include "interchange/qb.h"
#include "interchange/sample.h"
#include "interchange/snapshots.h"
#include "store/db.h"
#include "store/server/serverlink.h"
#include "verbs.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace {

int fail(QTextStream &err, const QString &line)
{
    err << line << '\n';
    return 1;
}

int usage(QTextStream &err, const QString &verb)
{
    const Verbs::Verb *v = Verbs::find(verb);
    err << "usage: trestle " << verb << ' ' << (v ? v->usage : QString()) << '\n';
    return 2;
}

int sample(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (!args.isEmpty())
        return usage(err, u"sample"_s);
    const Rec company = Sample::create(DB::shared(), SampleDocs::files());
    out << "Created " << company.f.value(u"name") << " (" << company.id << ")\n";
    return 0;
}

int exportQB(const QStringList &args, QTextStream &out, QTextStream &err)
{
    std::optional<QString> project;
    QString dir;
    for (qsizetype k = 0; k < args.size(); ++k) {
        if (args.at(k) == u"--project" && k + 1 < args.size())
            project = args.at(++k);
        else if (dir.isEmpty() && !args.at(k).startsWith(u"--"_s))
            dir = args.at(k);
        else
            return usage(err, u"export-qb"_s);
    }
    if (dir.isEmpty())
        return usage(err, u"export-qb"_s);
    DB &db = DB::shared();
    if (project) {
        QString id;
        for (const Rec &p : db.list(u"project"_s))
            if (p.f.value(u"number") == *project)
                id = p.id;
        if (id.isEmpty())
            return fail(err, u"No project numbered \""_s + *project + u"\" in the current company"_s);
        project = id;
    }
    const ExportResult r = QB::exportAll(db, dir, project);
    if (!r.ok)
        return fail(err, u"Export failed: "_s + r.error);
    out << "Exported to " << r.folder << '\n';
    return 0;
}

int exportCSV(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 1)
        return usage(err, u"export-csv"_s);
    const ExportResult r = Backup::exportCSV(DB::shared(), args.first());
    if (!r.ok)
        return fail(err, u"Export failed: "_s + r.error);
    out << "Exported to " << r.folder << '\n';
    return 0;
}

int backup(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 1)
        return usage(err, u"backup"_s);
    const QString zip = QFileInfo(args.first()).absoluteFilePath();
    const Backup::Result r = Backup::backup(DB::shared(), zip);
    if (!r.ok)
        return fail(err, r.title.isEmpty() ? r.message : r.title + u": "_s + r.message);
    out << "Backed up to " << zip << '\n';
    return 0;
}

int restore(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 2 || !args.contains(u"--yes"_s)) {
        if (args.size() == 1 && !args.first().startsWith(u"--"_s))
            return fail(err, u"This replaces ALL companies and data with the "_s +
                                 (QFileInfo(args.first()).isDir() ? u"snapshot"_s : u"backup"_s) +
                                 u"; add --yes to go ahead"_s);
        return usage(err, u"restore"_s);
    }
    const QString from = args.at(0) == u"--yes" ? args.at(1) : args.at(0);
    if (ServerLink::isConnected())
        return fail(
            err, u"this data folder works on a company server; a restore would not reach the server. Run "_s
                 u"trestle disconnect first to restore this folder's own records"_s);
    // The store is never opened: the folder is swapped under nobody.
    const Backup::Result r = QFileInfo(from).isDir() ? Snapshots::restore(from, DB::appFolder())
                                                     : Backup::restore(from, DB::appFolder());
    if (!r.ok)
        return fail(err, r.title.isEmpty() ? r.message : r.title + u": "_s + r.message);
    out << r.message << '\n';
    return 0;
}

int snapshot(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (!args.isEmpty())
        return usage(err, u"snapshot"_s);
    QString made;
    const Backup::Result r = Snapshots::make(DB::shared(), &made);
    if (!r.ok)
        return fail(err, r.message);
    out << made << '\n';
    return 0;
}

int snapshots(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (!args.isEmpty())
        return usage(err, u"snapshots"_s);
    // Only the folder is read, never the store: this must work when the store does not.
    const QString data = DB::appFolder();
    const QList<Snapshots::Info> all = Snapshots::list(data);
    if (all.isEmpty())
        err << "No snapshots in " << Snapshots::folder(data) << '\n';
    for (const Snapshots::Info &s : all)
        out << s.path << '\t' << s.taken.toString(u"yyyy-MM-dd HH:mm:ss"_s) << ", " << s.records
            << (s.records == 1 ? " record" : " records") << '\n';
    return 0;
}

const Verbs::Register regSample({u"sample"_s, QString(), u"Load the sample company beside the others"_s,
                                 &sample, true});
const Verbs::Register regQB({u"export-qb"_s, u"<dir> [--project <number>]"_s,
                             u"Write the QuickBooks IIF and CSV files into a dated folder"_s, &exportQB});
const Verbs::Register regCSV({u"export-csv"_s, u"<dir>"_s,
                              u"Write one CSV per record type of the current company"_s, &exportCSV});
const Verbs::Register
    regBackup({u"backup"_s, u"<file.zip>"_s,
               u"Save one .zip with every company, record, photo, document and plan sheet"_s, &backup});
const Verbs::Register regRestore(
    {u"restore"_s, u"<file.zip|snapshot folder> --yes"_s,
     u"Replace all data with a backup or a snapshot (the old data is kept beside it)"_s, &restore, true});
const Verbs::Register regSnapshot({u"snapshot"_s, QString(),
                                   u"Take a snapshot of all data now and print its folder"_s, &snapshot});
const Verbs::Register regSnapshots({u"snapshots"_s, QString(),
                                    u"List the snapshots, newest first, with their dates and record counts"_s,
                                    &snapshots});

} // namespace
