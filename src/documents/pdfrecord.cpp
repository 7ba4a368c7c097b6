// The save flows of single records, between the HTML builders and the PDF writer.
#include "catalog/moduledef.h"
#include "docstore.h"
#include "pageddocument.h"
#include "payhtml.h"
#include "pdfout.h"
#include "pdfpages.h"
#include "pdfwrite.h"

#include "store/db.h"

#include <QtCore/QFileInfo>
#include <QtGui/QTextDocument>

using namespace Qt::StringLiterals;

namespace PDFOut {

std::optional<PrintSource> sheetSource(const DB &db, const Rec &sheet)
{
    const QString file = sheet.f.value(u"file");
    if (file.isEmpty())
        return std::nullopt;
    const QString where = db.fileURL(file, sheet.company);
    if (!QFileInfo::exists(where))
        return std::nullopt;
    const QString caption = QString(sheet.f.value(u"number") + u"  "_s + sheet.f.value(u"title")).trimmed();
    return PrintSource::fromPdf(where, caption);
}

bool record(const DB &db, const ModuleDef &def, const Rec &rec, const QString &path,
            QPageLayout::Orientation orientation)
{
    // A plan sheet prints its drawing, fitted to Letter and turned to suit it;
    // without a readable file it falls back to the sheet's record like any other.
    if (rec.kind == u"plan_sheet"_s)
        if (const std::optional<PrintSource> sheet = sheetSource(db, rec);
            sheet && PdfPages(sheet->pdfPath).isValid()) {
            PagedDocument pages(db, *sheet, recordTitle(def, rec), savedFooter());
            pages.layout(PagedDocument::letter(pages.prefersLandscape() ? QPageLayout::Landscape
                                                                        : QPageLayout::Portrait));
            return writePaged(pages, path);
        }
    if (def.id == u"documents"_s)
        return save(db, *DocStore::read(DocStore::bodyPath(db, rec)), path, orientation);
    if (rec.kind == u"pay_app"_s)
        return saveHTML(db, PrintReports::payHTML(db, rec), path, orientation);
    return saveHTML(db, recordHTML(db, def, rec), path, orientation);
}

bool proposal(const DB &db, const Rec &estimate, const QString &path, QPageLayout::Orientation orientation)
{
    return saveHTML(db, proposalHTML(db, estimate), path, orientation);
}

} // namespace PDFOut
