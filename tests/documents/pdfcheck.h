#pragma once
// Writes documents through the paged engine and reads the PDF back, so the
// tests judge the file a user would get.
#include "documents/pageddocument.h"
#include "documents/pdfpages.h"
#include "documents/pdfwrite.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

namespace PdfCheck {

using namespace Qt::StringLiterals;

// The words of each page of the PDF at `path`.
inline QList<QStringList> pageWords(const QString &path)
{
    const PdfPages pdf(path);
    QList<QStringList> pages;
    static const QRegularExpression space(u"\\s+"_s);
    for (int i = 0; i < pdf.pageCount(); ++i)
        pages.append(pdf.text(i).split(space, Qt::SkipEmptyParts));
    return pages;
}

// Writes `pages` to a file in `dir` and returns the words of each page.
inline QList<QStringList> written(const PagedDocument &pages, const QTemporaryDir &dir,
                                  const QString &name = u"out.pdf"_s)
{
    const QString path = dir.filePath(name);
    if (!PDFOut::writePaged(pages, path))
        return {};
    // TRESTLE_KEEP_PDF=<folder> keeps each file for a look with pdftoppm.
    if (const QString keep = qEnvironmentVariable("TRESTLE_KEEP_PDF"); !keep.isEmpty()) {
        QFile::remove(keep + u'/' + name);
        QFile::copy(path, keep + u'/' + name);
    }
    return pageWords(path);
}

} // namespace PdfCheck
