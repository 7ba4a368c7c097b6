#include "printsource.h"

PrintSource PrintSource::fromHtml(const QString &html)
{
    PrintSource s;
    s.kind = Kind::Html;
    s.html = html;
    return s;
}

PrintSource PrintSource::fromDocument(std::shared_ptr<const QTextDocument> document)
{
    PrintSource s;
    s.kind = Kind::Attributed;
    s.document = std::move(document);
    return s;
}

PrintSource PrintSource::fromPdf(const QString &path, const QString &caption)
{
    PrintSource s;
    s.kind = Kind::Pdf;
    s.pdfPath = path;
    s.caption = caption;
    return s;
}
