#pragma once
#include "printsource.h"

#include <QtCore/QString>
#include <QtGui/QPageLayout>

#include <optional>

class DB;
struct ModuleDef;
struct Rec;
class PagedDocument;
class QTextDocument;

// Writing documents out as PDF and Word files. Every write goes to a
// temporary file that is renamed into place, so a failed write leaves no
// partial file behind. The window asks for the file name; these only write.
namespace PDFOut {

// The maker's web address, in every credit and footer.
inline constexpr QStringView kMakerAddress = u"https://fenwright.example/trestle";
// The paragraph that closes every generated HTML document.
QString closingCredit();
// The left footer of a saved PDF.
QString savedFooter();
// The left footer of a printout.
QString printedFooter();

// Writes every page of `pages` to a PDF at `path` on its current paper.
bool writePaged(const PagedDocument &pages, const QString &path);
// Writes `text` as a PDF on US Letter in `orientation`, titled by the file's name.
bool write(const DB &db, const QTextDocument &text, const QString &path,
           QPageLayout::Orientation orientation = QPageLayout::Portrait);
// The same as write: the save flow without its file chooser and viewer.
bool save(const DB &db, const QTextDocument &text, const QString &path,
          QPageLayout::Orientation orientation = QPageLayout::Portrait);
// Imports `html` with the closing credit through the page shell and saves it as a PDF.
bool saveHTML(const DB &db, const QString &html, const QString &path,
              QPageLayout::Orientation orientation = QPageLayout::Portrait);
// Saves the PDF of one record: a document's body, any other record's document.
// A plan sheet turns to suit its drawing whatever `orientation` says.
bool record(const DB &db, const ModuleDef &def, const Rec &rec, const QString &path,
            QPageLayout::Orientation orientation = QPageLayout::Portrait);
// A plan sheet's PDF as it stands, captioned with its number and title; nothing when the file is missing.
std::optional<PrintSource> sheetSource(const DB &db, const Rec &sheet);
// Saves the client proposal of an estimate.
bool proposal(const DB &db, const Rec &estimate, const QString &path,
              QPageLayout::Orientation orientation = QPageLayout::Portrait);
// Writes `text` as a Word document (.docx).
bool saveWord(const QTextDocument &text, const QString &path);

} // namespace PDFOut
