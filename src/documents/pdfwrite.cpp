#include "pdfwrite.h"

#include "doctemplates.h"
#include "docxwriter.h"
#include "pageddocument.h"

#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>
#include <QtGui/QTextDocument>

using namespace Qt::StringLiterals;

namespace PDFOut {

QString closingCredit()
{
    return u"<p style='font-size:8pt;color:#666;margin-top:18pt'>Prepared with Fenwright Trestle by "
           u"Fenwright "
           u"(Fenwright) — "_s +
           kMakerAddress + u"</p>"_s;
}

QString savedFooter()
{
    return u"Fenwright Trestle · "_s + kMakerAddress;
}

QString printedFooter()
{
    return u"Printed with Fenwright Trestle · "_s + kMakerAddress;
}

bool writePaged(const PagedDocument &pages, const QString &path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    {
        QPdfWriter writer(&file);
        writer.setTitle(pages.title());
        writer.setCreator(u"Fenwright Trestle"_s);
        const QSizeF size = pages.pageSize();
        writer.setPageLayout(
            QPageLayout(QPageSize(size, QPageSize::Point), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
        QPainter painter;
        if (!painter.begin(&writer))
            return false;
        for (int i = 0; i < pages.pageCount(); ++i) {
            if (i > 0)
                writer.newPage();
            pages.paint(painter, i);
        }
        painter.end();
    }
    return file.commit();
}

namespace {
// Pages `text`, which the engine takes over and changes, and writes it.
bool writeOwned(std::unique_ptr<QTextDocument> text, const QString &path,
                QPageLayout::Orientation orientation)
{
    const PagedDocument pages(std::move(text), QFileInfo(path).completeBaseName(), savedFooter(),
                              PagedDocument::letter(orientation).fullRect(QPageLayout::Point).size());
    return writePaged(pages, path);
}
} // namespace

bool write(const DB &, const QTextDocument &text, const QString &path, QPageLayout::Orientation orientation)
{
    return writeOwned(std::unique_ptr<QTextDocument>(text.clone()), path, orientation);
}

bool save(const DB &db, const QTextDocument &text, const QString &path, QPageLayout::Orientation orientation)
{
    return write(db, text, path, orientation);
}

bool saveHTML(const DB &db, const QString &html, const QString &path, QPageLayout::Orientation orientation)
{
    // The imported text is only paged, so the engine may have it without a copy.
    return writeOwned(DocTemplates::attributed(db, html + closingCredit()), path, orientation);
}

bool saveWord(const QTextDocument &text, const QString &path)
{
    return DocxWriter::write(text, path);
}

} // namespace PDFOut
