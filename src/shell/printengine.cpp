#include "printengine.h"

#include "printsetup.h"

#include "documents/pageddocument.h"
#include "documents/pdfpages.h"
#include "documents/pdfwrite.h"
#include "store/db.h"

#include <QtGui/QPainter>
#include <QtPrintSupport/QPrintPreviewDialog>
#include <QtPrintSupport/QPrinter>
#include <QtWidgets/QApplication>

using namespace Qt::StringLiterals;

namespace PrintEngine {

namespace {

int g_beeps = 0;

void previewDialog(PagedDocument &pages, QPrinter &printer, QWidget *parent)
{
    QPrintPreviewDialog dialog(&printer, parent);
    dialog.setWindowTitle(pages.title());
    // Called for the preview and again for the real printer; each time with
    // the paper and orientation now chosen, so a change re-paginates.
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&pages](QPrinter *p) { printPages(pages, *p); });
    dialog.setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
    dialog.exec();
}

// Landscape exactly when a plan sheet's first page looks landscape, or a
// document asks for it; other sources, and a sheet whose file will not open,
// keep the page setup's choice.
std::optional<bool> orientationFor(const PrintSource &source, const PagedDocument &pages)
{
    if (source.landscape)
        return true;
    if (source.kind != PrintSource::Kind::Pdf || !PdfPages(source.pdfPath).isValid())
        return std::nullopt;
    return pages.prefersLandscape();
}

} // namespace

void beep()
{
    ++g_beeps;
    QApplication::beep();
}

int beeps()
{
    return g_beeps;
}

Dialog &dialogHook()
{
    static Dialog hook;
    return hook;
}

void printPages(PagedDocument &pages, QPrinter &printer)
{
    pages.layout(printer.pageLayout());
    QPainter painter;
    if (!painter.begin(&printer))
        return;
    const QPageRanges ranges = printer.pageRanges();
    bool first = true;
    for (int i = 0; i < pages.pageCount(); ++i) {
        if (!ranges.isEmpty() && !ranges.contains(i + 1))
            continue;
        if (!first)
            printer.newPage();
        first = false;
        pages.paint(painter, i);
    }
    painter.end();
}

void run(const PrintJob &job, QWidget *parent)
{
    std::optional<PrintSource> source = job.make ? job.make() : std::nullopt;
    if (!source) {
        beep();
        return;
    }
    PagedDocument pages(DB::shared(), *source, job.title, PDFOut::printedFooter());
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(job.title);
    // The pages draw their own margins, from the paper's very corner.
    printer.setFullPage(true);
    printer.setPageLayout(PrintSetup::info(orientationFor(*source, pages)));
    pages.layout(printer.pageLayout());
    if (dialogHook())
        dialogHook()(pages, printer, parent);
    else
        previewDialog(pages, printer, parent);
}

} // namespace PrintEngine
