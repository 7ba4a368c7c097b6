// The save flows of single records, between the HTML builders and the PDF writer.
#include "catalog/moduledef.h"
#include "docstore.h"
#include "payhtml.h"
#include "pdfout.h"
#include "pdfwrite.h"

#include <QtGui/QTextDocument>

using namespace Qt::StringLiterals;

namespace PDFOut {

bool record(const DB &db, const ModuleDef &def, const Rec &rec, const QString &path)
{
    if (def.id == u"documents"_s)
        return save(db, *DocStore::read(DocStore::bodyPath(db, rec)), path);
    if (rec.kind == u"pay_app"_s)
        return saveHTML(db, PrintReports::payHTML(db, rec), path);
    return saveHTML(db, recordHTML(db, def, rec), path);
}

bool proposal(const DB &db, const Rec &estimate, const QString &path)
{
    return saveHTML(db, proposalHTML(db, estimate), path);
}

} // namespace PDFOut
