#pragma once
#include <QtCore/QString>

#include <functional>
#include <memory>
#include <optional>

class QTextDocument;

// What is to be printed: generated HTML, a rich-text document, or every page
// of a plan sheet's PDF file.
struct PrintSource
{
    enum class Kind { Html, Attributed, Pdf };
    Kind kind = Kind::Html;
    QString html;                                  // Html: a body in the document HTML subset
    std::shared_ptr<const QTextDocument> document; // Attributed: never null for that kind
    QString pdfPath;                               // Pdf: the sheet's file
    QString caption;                               // Pdf: the line above each sheet page
    bool landscape = false;                        // Html: columns too wide for a portrait page

    // A generated document; the engine adds the closing credit.
    static PrintSource fromHtml(const QString &html);
    // A rich-text document, printed as it stands.
    static PrintSource fromDocument(std::shared_ptr<const QTextDocument> document);
    // A plan sheet with its caption.
    static PrintSource fromPdf(const QString &path, const QString &caption);
};

// A title and the function that makes the source; `make` runs only when the
// user really prints, so registering a job costs nothing.
struct PrintJob
{
    QString title;
    std::function<std::optional<PrintSource>()> make;
};
