#include "pointimages.h"

#include <QtCore/QUrl>
#include <QtCore/QVariant>
#include <QtGui/QAbstractTextDocumentLayout>
#include <QtGui/QPainter>
#include <QtGui/QPixmap>
#include <QtGui/QTextDocument>
#include <QtGui/QTextFormat>
#include <QtGui/QTextObjectInterface>

namespace {

class Handler : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)
public:
    QSizeF intrinsicSize(QTextDocument *doc, int, const QTextFormat &format) override
    {
        // A picture is never wider than the text.
        return PointImages::size(*doc, format.toImageFormat(), doc->textWidth());
    }
    void drawObject(QPainter *painter, const QRectF &rect, QTextDocument *doc, int,
                    const QTextFormat &format) override
    {
        const QImage picture = PointImages::image(*doc, format.toImageFormat());
        if (picture.isNull())
            return;
        painter->save();
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(rect, picture);
        painter->restore();
    }
};

} // namespace

namespace PointImages {

QImage image(QTextDocument &doc, const QTextImageFormat &format)
{
    const QUrl url(format.name());
    const QVariant res = doc.resource(QTextDocument::ImageResource, url);
    QImage picture;
    if (res.typeId() == QMetaType::QImage)
        return res.value<QImage>();
    if (res.typeId() == QMetaType::QPixmap)
        picture = res.value<QPixmap>().toImage();
    else if (res.typeId() == QMetaType::QByteArray)
        picture.loadFromData(res.toByteArray());
    // Decoded once: the layout asks for the size on every pass.
    if (!picture.isNull())
        doc.addResource(QTextDocument::ImageResource, url, picture);
    return picture;
}

QSizeF size(QTextDocument &doc, const QTextImageFormat &format, double maxWidth)
{
    const bool hasW = format.hasProperty(QTextFormat::ImageWidth) && format.width() > 0;
    const bool hasH = format.hasProperty(QTextFormat::ImageHeight) && format.height() > 0;
    double w = format.width(), h = format.height();
    if (!hasW || !hasH) {
        const QImage picture = image(doc, format);
        const QSizeF natural = picture.isNull() ? QSizeF() : picture.deviceIndependentSize() * 0.75;
        if (natural.isEmpty())
            return {hasW ? w : 0, hasH ? h : 0};
        if (!hasW && !hasH) {
            w = natural.width();
            h = natural.height();
        } else if (hasW) {
            h = w * natural.height() / natural.width();
        } else {
            w = h * natural.width() / natural.height();
        }
    }
    if (maxWidth > 0 && w > maxWidth) {
        h = h * maxWidth / w;
        w = maxWidth;
    }
    return {w, h};
}

void install(QTextDocument &doc)
{
    static Handler *handler = new Handler; // lives as long as the program; layouts hold it weakly
    doc.documentLayout()->registerHandler(QTextFormat::ImageObject, handler);
}

} // namespace PointImages

#include "pointimages.moc"
