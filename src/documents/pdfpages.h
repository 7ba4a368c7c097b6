#pragma once
#include <QtCore/QSizeF>
#include <QtCore/QString>
#include <QtGui/QImage>

#include <memory>

// The one door to the PDF library: everything else in the program reads PDF
// files through this class and never sees its headers.
class PdfPages
{
public:
    // Opens `path`; a missing, damaged or locked file gives an empty reader.
    explicit PdfPages(const QString &path);
    // Reads a PDF held in memory, for the same purposes.
    static PdfPages fromData(const QByteArray &data);
    ~PdfPages();
    PdfPages(PdfPages &&) noexcept;
    PdfPages &operator=(PdfPages &&) noexcept;

    // Whether the file opened and holds at least one page.
    bool isValid() const;
    // Pages in the file, 0 when it did not open.
    int pageCount() const;
    // Size of page `index` in points as it is shown, rotation applied; empty when out of range.
    QSizeF pageSize(int index) const;
    // Page `index` drawn at `dpi`, rotation applied, on white; a null image when out of range.
    QImage render(int index, double dpi) const;
    // The text of page `index` in reading order, one line per text line.
    QString text(int index) const;

private:
    PdfPages();
    struct Impl;
    std::unique_ptr<Impl> d;
};
