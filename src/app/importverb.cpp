// `trestle import` brings lists, spreadsheets, QuickBooks IIF files and open
// jobs into the current company (or a new one), with the window's checks: a
// bad row writes nothing unless the good rows are asked for alone.
#include "interchange/csv.h"
#include "interchange/importmap.h"
#include "interchange/importwrite.h"
#include "store/db.h"
#include "verbs.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace {

int usage(QTextStream &err)
{
    err << "usage: trestle " << Verbs::find(u"import"_s)->name << ' ' << Verbs::find(u"import"_s)->usage
        << '\n';
    return 2;
}

int importFiles(const QStringList &args, QTextStream &out, QTextStream &err)
{
    QString path, newCompany, templateKind;
    bool dryRun = false, skipBad = false;
    for (qsizetype k = 0; k < args.size(); ++k) {
        const QString &a = args.at(k);
        if (a == u"--dry-run")
            dryRun = true;
        else if (a == u"--skip-bad-rows")
            skipBad = true;
        else if (a == u"--new-company" && k + 1 < args.size())
            newCompany = args.at(++k);
        else if (a == u"--template" && k + 1 < args.size())
            templateKind = args.at(++k);
        else if (!a.startsWith(u"--"_s) && path.isEmpty())
            path = a;
        else
            return usage(err);
    }
    if (path.isEmpty())
        return usage(err);
    if (!templateKind.isEmpty()) {
        if (templateKind != u"open-jobs") {
            err << "There is a template for open-jobs only\n";
            return 2;
        }
        const QString error = ExportFile::write(path, Import::openJobsTemplate());
        if (!error.isEmpty()) {
            err << error << '\n';
            return 1;
        }
        out << "Saved the open-jobs template to " << QFileInfo(path).absoluteFilePath() << '\n';
        return 0;
    }

    const Import::Source source = Import::read(path);
    if (!source.error.isEmpty()) {
        err << source.error << '\n';
        return 1;
    }
    // A new company is made only once its rows are known to go in: until
    // then they are read against an empty company of the same name.
    DB scratch;
    if (!newCompany.isEmpty())
        scratch.createCompany(newCompany, u"Owner"_s, QString());
    else if (!DB::shared().company()) {
        err << "There is no company to import into; give --new-company <name>\n";
        return 1;
    }
    DB &reader = newCompany.isEmpty() ? DB::shared() : scratch;
    Import::Plan plan = Import::plan(reader, Import::sheets(source.tables));
    for (const QString &line : plan.summary())
        out << line << '\n';
    for (const QString &line : plan.errors())
        out << line << '\n';
    if (plan.anyBad() && !skipBad) {
        err << "Nothing was imported: " << plan.errors().size()
            << (plan.errors().size() == 1 ? " row is bad" : " rows are bad") << '\n';
        return 1;
    }
    if (dryRun)
        return 0;
    DB &db = DB::shared();
    if (!newCompany.isEmpty()) {
        db.createCompany(newCompany, u"Owner"_s, QString());
        plan = Import::plan(db, Import::sheets(source.tables));
    }
    const Import::Outcome outcome = Import::write(db, plan, skipBad);
    if (!outcome.ok) {
        err << outcome.error << '\n';
        return 1;
    }
    if (plan.anyBad()) {
        // The rows left out come back as files to fix beside what was read.
        const QFileInfo info(path);
        const QDir dir(info.isDir() ? info.absoluteFilePath() : info.absolutePath());
        for (const auto &[name, text] : plan.badRowFiles()) {
            const QString error = ExportFile::write(dir.filePath(name), text);
            if (!error.isEmpty())
                err << error << '\n';
            else
                out << "Rows to fix: " << dir.filePath(name) << '\n';
        }
    }
    out << "Imported " << outcome.written << (outcome.written == 1 ? " record" : " records") << " into "
        << db.company()->f.value(u"name") << '\n';
    return 0;
}

const Verbs::Register regImport({u"import"_s,
                                 u"<file|folder> [--new-company <name>] [--dry-run] [--skip-bad-rows] | "
                                 u"--template open-jobs <file.csv>"_s,
                                 u"Bring in lists, spreadsheets, QuickBooks IIF files and open jobs"_s,
                                 &importFiles, true});

} // namespace
