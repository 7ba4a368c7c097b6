#pragma once
#include <QtCore/QSizeF>
#include <QtGui/QImage>

class QTextDocument;
class QTextImageFormat;

// Pictures in a paged document. The layout's unit is the point (a 72-dpi
// device), and Qt would size a picture as 96-dpi pixels on it, printing it at
// 75 %. Here a stated width or height is taken in points, as every other size
// of the document HTML is, and a picture with none keeps its size at 96 dpi.
namespace PointImages {
// Makes `doc`'s layout size and draw its pictures in points; call once its paint device is set.
void install(QTextDocument &doc);
// The size a picture takes on the page, in points: the stated width and height,
// the missing one in proportion, both fitted within `maxWidth` when above 0.
QSizeF size(QTextDocument &doc, const QTextImageFormat &format, double maxWidth = 0);
// The picture a format names, from the document's resources; a null image when unreadable.
QImage image(QTextDocument &doc, const QTextImageFormat &format);
} // namespace PointImages
