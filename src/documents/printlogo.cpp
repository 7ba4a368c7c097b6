#include "printlogo.h"

#include "pageddocument.h"
#include "pdfpages.h"
#include "store/db.h"

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtGui/QImageReader>
#include <QtGui/QPainter>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtGui/QTextTable>

#include <cmath>

using namespace Qt::StringLiterals;

namespace PrintLogo {

namespace {
constexpr double kHeight = 54;
constexpr double kMaxWidth = 170;
const QString kResource = u"trestle-logo://company"_s;

bool writeWhole(const QString &path, const QByteArray &data)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit();
}
} // namespace

QString dir(const DB &db)
{
    const QString path = QFileInfo(db.filesRoot()).absoluteDir().filePath(u"Logo"_s);
    QDir().mkpath(path);
    return path;
}

QImage load(const QString &path)
{
    if (path.endsWith(u".pdf"_s, Qt::CaseInsensitive)) {
        const PdfPages pdf(path);
        return pdf.render(0, 300);
    }
    QImageReader reader(path);
    reader.setAutoTransform(true);
    // A huge picture is read at a size that is still far above what a letterhead needs.
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > 64'000'000)
        reader.setScaledSize(size.scaled(8000, 8000, Qt::KeepAspectRatio));
    const QImage image = reader.read();
    return image.width() > 0 && image.height() > 0 ? image : QImage();
}

QImage image(const DB &db, const std::optional<Rec> &company)
{
    const std::optional<Rec> c = company ? company : db.company();
    if (!c)
        return {};
    const QString name = c->f.value(u"logo");
    if (name.isEmpty())
        return {};
    for (const QString &path : {QDir(dir(db)).filePath(name), db.fileURL(name, c->id)}) {
        if (!QFileInfo::exists(path))
            continue;
        const QImage img = load(path);
        if (!img.isNull())
            return img;
    }
    return {};
}

void attach(const DB &db, QTextDocument &doc)
{
    QTextCursor found = doc.find(kMark.toString());
    if (found.isNull())
        return;
    const QImage logo = image(db);
    if (logo.isNull()) {
        found.removeSelectedText();
        return;
    }
    double w = kHeight * logo.width() / logo.height();
    double h = kHeight;
    if (w > kMaxWidth) {
        h = kMaxWidth * logo.height() / logo.width();
        w = kMaxWidth;
    }
    doc.addResource(QTextDocument::ImageResource, QUrl(kResource), logo);
    QTextImageFormat format;
    format.merge(found.charFormat());
    format.clearProperty(QTextFormat::IsAnchor); // a link would underline and colour the picture
    format.setName(kResource);
    format.setWidth(w);
    format.setHeight(h);
    found.removeSelectedText();
    found.insertImage(format);
    // The letterhead's logo column is made wide enough for the logo, so a wide
    // one never runs under the company name beside it.
    if (QTextTable *table = found.currentTable()) {
        const int column = table->cellAt(found).column();
        QTextTableFormat tf = table->format();
        QList<QTextLength> widths = tf.columnWidthConstraints();
        while (widths.size() < table->columns())
            widths.append(QTextLength());
        // Qt takes a fixed column width as 96-dpi pixels and scales it to the
        // layout's points, as it did pictures.
        const double needed = (w + 2 * (tf.cellPadding() + std::max(0.0, tf.border())) + 1) * 96.0 /
                              PagedDocument::pointDevice()->logicalDpiX();
        const QTextLength &was = widths.at(column);
        if (was.type() != QTextLength::FixedLength || was.rawValue() < needed) {
            widths[column] = QTextLength(QTextLength::FixedLength, needed);
            tf.setColumnWidthConstraints(widths);
            table->setFormat(tf);
        }
    }
}

std::optional<QByteArray> pngData(const QImage &image)
{
    if (image.width() <= 0 || image.height() <= 0)
        return std::nullopt;
    const double scale = std::min(2400.0 / image.width(), 600.0 / image.height());
    const int w = std::max(1, int(std::lround(image.width() * scale)));
    const int h = std::max(1, int(std::lround(image.height() * scale)));
    QImage out(w, h, QImage::Format_RGBA8888);
    out.fill(Qt::transparent);
    {
        QPainter p(&out);
        p.setRenderHint(QPainter::SmoothPixmapTransform);
        p.drawImage(QRectF(0, 0, w, h), image);
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!out.save(&buffer, "PNG"))
        return std::nullopt;
    return bytes;
}

bool install(DB &db, const QString &path)
{
    std::optional<Rec> company = db.company();
    if (!company)
        return false;
    const std::optional<QByteArray> png = pngData(load(path));
    if (!png)
        return false;
    const QString stem = company->id + u"-logo"_s;
    QDir folder(dir(db));
    // The new files are written before the old ones go, so a failure keeps the old logo.
    const QString suffix = QFileInfo(path).suffix().toLower();
    const QString original = stem + u"-original."_s + (suffix.isEmpty() ? u"img"_s : suffix);
    const QString pngName = stem + u".png"_s;
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        return false;
    const QByteArray originalBytes = source.readAll();
    const QString tmpPng = u".new-"_s + pngName, tmpOriginal = u".new-"_s + original;
    if (!writeWhole(folder.filePath(tmpPng), *png) ||
        !writeWhole(folder.filePath(tmpOriginal), originalBytes)) {
        folder.remove(tmpPng);
        folder.remove(tmpOriginal);
        return false;
    }
    for (const QString &old : folder.entryList({stem + u'*'}, QDir::Files))
        folder.remove(old);
    folder.rename(tmpPng, pngName);
    folder.rename(tmpOriginal, original);
    company->f.insert(u"logo"_s, pngName);
    db.save(*company);
    return true;
}

} // namespace PrintLogo
