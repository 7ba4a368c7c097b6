// The document verbs: PDFs of records, proposals, logs and reports, and Word files.
#include "catalog/modules.h"
#include "documents/costhtml.h"
#include "documents/docstore.h"
#include "documents/pdfout.h"
#include "documents/pdfwrite.h"
#include "documents/printreports.h"
#include "documents/reportshtml.h"
#include "documents/schedulehtml.h"
#include "documents/wipschedulehtml.h"
#include "interchange/csv.h"
#include "store/db.h"
#include "verbs.h"
#include "workflows/wipschedule.h"

#include <QtGui/QTextDocument>

using namespace Qt::StringLiterals;

namespace {

std::optional<Rec> projectByNumber(const DB &db, const QString &number)
{
    for (const Rec &p : db.list(u"project"_s))
        if (p.f.value(u"number") == number)
            return p;
    return std::nullopt;
}

int done(bool ok, const QString &path, QTextStream &out, QTextStream &err)
{
    if (!ok) {
        err << "trestle: could not write " << path << '\n';
        return 1;
    }
    out << "Wrote " << path << '\n';
    return 0;
}

// Takes "--name value" out of `args`; false when the option has no value.
bool takeOption(QStringList &args, const QString &name, std::optional<QString> &value)
{
    const qsizetype i = args.indexOf(name);
    if (i < 0)
        return true;
    if (i + 1 >= args.size())
        return false;
    value = args.at(i + 1);
    args.remove(i, 2);
    return true;
}

int pdf(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 2) {
        err << "usage: trestle pdf <record-id> <file.pdf>\n";
        return 2;
    }
    const DB &db = DB::shared();
    const std::optional<Rec> rec = db.get(args.at(0));
    const ModuleDef *def = rec ? Modules::ofKind(rec->kind) : nullptr;
    if (!rec || !def) {
        err << "trestle: no printable record " << args.at(0) << '\n';
        return 1;
    }
    return done(PDFOut::record(db, *def, *rec, args.at(1)), args.at(1), out, err);
}

int proposal(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 2) {
        err << "usage: trestle proposal <estimate-id> <file.pdf>\n";
        return 2;
    }
    const DB &db = DB::shared();
    const std::optional<Rec> rec = db.get(args.at(0));
    if (!rec || rec->kind != u"estimate"_s) {
        err << "trestle: no estimate " << args.at(0) << '\n';
        return 1;
    }
    return done(PDFOut::proposal(db, *rec, args.at(1)), args.at(1), out, err);
}

int docx(const QStringList &args, QTextStream &out, QTextStream &err)
{
    if (args.size() != 2) {
        err << "usage: trestle docx <document-id> <file.docx>\n";
        return 2;
    }
    const DB &db = DB::shared();
    const std::optional<Rec> rec = db.get(args.at(0));
    if (!rec || rec->kind != u"document"_s) {
        err << "trestle: no document " << args.at(0) << '\n';
        return 1;
    }
    const auto body = DocStore::read(DocStore::bodyPath(db, *rec));
    return done(PDFOut::saveWord(*body, args.at(1)), args.at(1), out, err);
}

int log(const QStringList &given, QTextStream &out, QTextStream &err)
{
    QStringList args = given;
    std::optional<QString> number, search;
    if (!takeOption(args, u"--project"_s, number) || !takeOption(args, u"--search"_s, search) ||
        args.size() != 2) {
        err << "usage: trestle log <module-id> <file.pdf> [--project <number>] [--search <text>]\n";
        return 2;
    }
    const DB &db = DB::shared();
    const ModuleDef *def = Modules::get(args.at(0));
    if (!def || def->kind.isEmpty()) {
        err << "trestle: no list module " << args.at(0) << '\n';
        return 1;
    }
    std::optional<Rec> project;
    if (number && !(project = projectByNumber(db, *number))) {
        err << "trestle: no project numbered " << *number << '\n';
        return 1;
    }
    RecFilter filter;
    if (project)
        filter.project = project->id;
    QList<Rec> rows = db.list(def->kind, filter);
    if (search && !search->isEmpty()) {
        const QString needle = *search;
        rows.removeIf([&](const Rec &r) {
            for (const FD &fd : def->fields)
                if (r.f.value(fd.key).contains(needle, Qt::CaseInsensitive))
                    return false;
            return true;
        });
    }
    const QString html =
        PrintReports::listHTML(db, *def, rows, project ? std::optional(project->id) : std::nullopt);
    return done(PDFOut::saveHTML(db, html, args.at(1)), args.at(1), out, err);
}

int report(const QStringList &given, QTextStream &out, QTextStream &err)
{
    QStringList args = given;
    std::optional<QString> number;
    const QString usage =
        u"usage: trestle report wip|hub <file.pdf> [--project <number>]\n"
        u"       trestle report wip-schedule <file.pdf|file.csv>\n"
        u"       trestle report project|budget|jobcost|schedule <project-number> <file.pdf>\n"_s;
    if (!takeOption(args, u"--project"_s, number) || args.isEmpty()) {
        err << usage;
        return 2;
    }
    const DB &db = DB::shared();
    const QString kind = args.takeFirst();
    if (kind == u"wip-schedule"_s) {
        if (args.size() != 1 || number) {
            err << usage;
            return 2;
        }
        // A spreadsheet file by its name, the document otherwise.
        const QString path = args.at(0);
        const bool csv = path.endsWith(u".csv"_s, Qt::CaseInsensitive);
        return done(csv ? CSV::save(WipSchedule::of(db).csvRows(), path) : PDFOut::wipSchedule(db, path),
                    path, out, err);
    }
    const bool whole = kind == u"wip"_s || kind == u"hub"_s;
    const bool single = QStringList{u"project"_s, u"budget"_s, u"jobcost"_s, u"schedule"_s}.contains(kind);
    if ((!whole && !single) || args.size() != (whole ? 1 : 2) || (single && number)) {
        err << usage;
        return 2;
    }
    if (single)
        number = args.takeFirst();
    std::optional<Rec> project;
    if (number && !(project = projectByNumber(db, *number))) {
        err << "trestle: no project numbered " << *number << '\n';
        return 1;
    }
    QString html;
    if (kind == u"wip"_s)
        html = PrintReports::wipHTML(db);
    else if (kind == u"hub"_s)
        html = PrintReports::hubHTML(db, project);
    else if (kind == u"project"_s)
        html = PrintReports::projectReport(db, *project);
    else if (kind == u"budget"_s)
        html = PrintReports::budgetHTML(db, *project, budget(db, project->id));
    else if (kind == u"jobcost"_s)
        html = PrintReports::reportHTML(db, *project);
    else
        html = PrintReports::scheduleHTML(db, *project);
    return done(PDFOut::saveHTML(db, html, args.at(0)), args.at(0), out, err);
}

const Verbs::Register regPdf({u"pdf"_s, u"<record-id> <file.pdf>"_s, u"Save a record's document as a PDF"_s,
                              &pdf});
const Verbs::Register regProposal({u"proposal"_s, u"<estimate-id> <file.pdf>"_s,
                                   u"Save an estimate's client proposal as a PDF"_s, &proposal});
const Verbs::Register regDocx({u"docx"_s, u"<document-id> <file.docx>"_s, u"Save a document as a Word file"_s,
                               &docx});
const Verbs::Register regLog({u"log"_s, u"<module-id> <file.pdf> [--project <n>] [--search <text>]"_s,
                              u"Save a module's list log as a PDF"_s, &log});
const Verbs::Register
    regReport({u"report"_s, u"<kind> [<project-number>] <file.pdf> [--project <n>]"_s,
               u"Save a report (wip, wip-schedule, hub, project, budget, jobcost, schedule) as a PDF; "
               u"wip-schedule to a .csv file writes CSV"_s,
               &report});

} // namespace
