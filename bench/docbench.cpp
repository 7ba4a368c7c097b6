#include "docbench.h"

#include "benchutil.h"

#include "catalog/modules.h"
#include "documents/doctemplates.h"
#include "documents/pageddocument.h"
#include "documents/payhtml.h"
#include "documents/pdfwrite.h"
#include "documents/printreports.h"
#include "store/db.h"
#include "store/rec.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>

#include <QtGui/QTextDocument>

using namespace Qt::StringLiterals;

namespace {
constexpr double kLog200TargetMs = 200, kLog2000TargetMs = 1500, kPayTargetMs = 300;

// Where the 2,000-row log's time goes, once: import, layout with the page
// breaks, and drawing every page into the PDF.
void stages(QTextStream &out, const DB &db, const ModuleDef &def, const QList<Rec> &rows, const QString &path)
{
    const QString html = PrintReports::listHTML(db, def, rows, std::nullopt);
    QElapsedTimer t;
    t.start();
    auto doc = DocTemplates::attributed(db, html + PDFOut::closingCredit());
    const double import = double(t.nsecsElapsed()) / 1e6;
    t.restart();
    const PagedDocument pages(std::move(doc), u"log"_s, PDFOut::savedFooter(), QSizeF(612, 792));
    const double layout = double(t.nsecsElapsed()) / 1e6;
    t.restart();
    PDFOut::writePaged(pages, path);
    const double draw = double(t.nsecsElapsed()) / 1e6;
    out << "  stages, " << rows.size() << " rows: import " << QString::number(import, 'f', 1)
        << " ms, layout " << QString::number(layout, 'f', 1) << " ms, drawing "
        << QString::number(draw, 'f', 1) << " ms (" << pages.pageCount() << " pages)" << Qt::endl;
}
} // namespace

void runDocBench(const DB &db, int runs, QTextStream &out)
{
    QTemporaryDir dir;
    const ModuleDef *def = nullptr;
    for (const ModuleDef &d : Modules::all())
        if (d.kind == u"timecard"_s)
            def = &d;
    const QList<Rec> cards = db.list(u"timecard"_s);
    if (def && !cards.isEmpty()) {
        for (const auto &[rows, target] :
             {std::pair{200, kLog200TargetMs}, std::pair{2000, kLog2000TargetMs}}) {
            const QList<Rec> some = cards.mid(0, rows);
            Bench::figure(out, runs, u"list log to PDF, %1 rows"_s.arg(some.size()),
                          u"target < %1 ms"_s.arg(target), [&] {
                              const QString html = PrintReports::listHTML(db, *def, some, std::nullopt);
                              PDFOut::saveHTML(db, html, dir.filePath(u"log.pdf"_s));
                          });
        }
        stages(out, db, *def, cards.mid(0, 2000), dir.filePath(u"stages.pdf"_s));
    }
    // The application with the longest schedule of values, copied with its
    // project into a store of its own and its schedule made up to 50 lines.
    std::optional<Rec> app;
    qsizetype longest = -1;
    for (const Rec &p : db.list(u"project"_s)) {
        const qsizetype n = db.count(u"sov_line"_s, {.project = p.id});
        const QList<Rec> apps = db.list(u"pay_app"_s, {.project = p.id});
        if (!apps.isEmpty() && n > longest) {
            longest = n;
            app = apps.last();
        }
    }
    DB fifty;
    qsizetype best = 0;
    if (app) {
        QList<Rec> copies;
        if (const std::optional<Rec> c = db.company())
            copies.append(*c);
        if (const std::optional<Rec> p = db.get(app->project))
            copies.append(*p);
        for (const QString &kind : {u"change_order"_s, u"pay_app"_s})
            copies.append(db.list(kind, {.project = app->project}));
        for (const Rec &a : db.list(u"pay_app"_s, {.project = app->project}))
            copies.append(db.list(u"pay_line"_s, {.parent = a.id}));
        const QList<Rec> sov = db.list(u"sov_line"_s, {.project = app->project});
        copies.append(sov);
        for (qsizetype i = sov.size(); i < 50 && !sov.isEmpty(); ++i) {
            Rec extra = sov.at(i % sov.size());
            extra.id = newID();
            extra.f.insert(u"item"_s, QString::number(i + 1));
            extra.f.insert(u"sort"_s, QString::number(i + 1));
            copies.append(extra);
        }
        fifty.saveAll(copies);
        fifty.setCompanyID(db.companyID());
        best = fifty.count(u"sov_line"_s, {.project = app->project});
    }
    if (app)
        Bench::figure(
            out, runs, u"G702/G703 to PDF"_s,
            u"[%1 schedule lines]  target < %2 ms"_s.arg(best).arg(kPayTargetMs),
            [&] { PDFOut::saveHTML(fifty, PrintReports::payHTML(fifty, *app), dir.filePath(u"pay.pdf"_s)); });
}
