#pragma once
#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <memory>
#include <optional>

// A plan sheet open for marking up: its pages drawn with their marks, and
// marks added and taken away as real PDF annotations written back into the
// sheet's own file. Besides PdfPages, the only door to the PDF library.
// Positions are in points of the page as it is shown (rotation applied),
// from its top-left corner.
class PdfMarkup
{
public:
    // The kinds of mark a user can make.
    enum class Kind { Ink, Box, Highlight, Note, Other };

    // One annotation found on a page.
    struct Mark
    {
        Kind kind = Kind::Other;
        QColor color; // the stroke, the fill of a highlight, the text of a note
        QRectF rect;  // in page points
        QString text; // a note's text
    };

    // Opens the sheet at `path`; a missing, damaged or locked file gives an empty sheet.
    explicit PdfMarkup(const QString &path);
    ~PdfMarkup();
    PdfMarkup(const PdfMarkup &) = delete;
    PdfMarkup &operator=(const PdfMarkup &) = delete;

    // Why the file at `path` cannot be taken in as a sheet, or nothing when it can.
    static std::optional<QString> problem(const QString &path);

    bool isValid() const;
    QString path() const { return m_path; }
    int pageCount() const;
    // Size of page `index` in points as shown; empty when out of range.
    QSizeF pageSize(int index) const;
    // The part `area` (in pixels at `scale` pixels per point) of page `index`, marks included.
    QImage render(int index, double scale, const QRect &area) const;

    // Each adds a mark to page `index` and gives its handle for undo, or -1 when
    // the page does not exist or the mark would be empty.
    // A freehand line through `points`, 3 points wide.
    int addInk(int index, const QList<QPointF> &points, const QColor &color);
    // A rectangle outline 3 points wide.
    int addBox(int index, const QRectF &rect, const QColor &color);
    // A rectangle filled with `color` at 35 % and no outline.
    int addHighlight(int index, const QRectF &rect, const QColor &color);
    // `text` written at `at` in `color`; 24 high, 8 per character plus 16 wide, at least 80.
    int addNote(int index, const QPointF &at, const QString &text, const QColor &color);
    // Takes the mark made under `handle` off its page; false when there is no such mark.
    bool remove(int handle);

    // Writes the sheet with its marks over its own file, through a temporary file.
    bool save();
    // Writes the sheet with its marks to `path`, through a temporary file.
    bool saveAs(const QString &path);

    // Every annotation of page `index`, in file order.
    QList<Mark> marks(int index) const;

private:
    // An outlined square, or a filled one without outline for a highlight.
    int addSquare(int index, const QRectF &rect, const QColor &color, bool filled);
    struct Impl;
    std::unique_ptr<Impl> d;
    QString m_path;
};
