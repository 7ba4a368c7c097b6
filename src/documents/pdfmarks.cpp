#include "pdfmarks.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtGui/QPolygonF>

#include <map>

#include <poppler/qt6/poppler-annotation.h>
#include <poppler/qt6/poppler-qt6.h>

using namespace Qt::StringLiterals;

namespace {

constexpr double kStroke = 3;
constexpr double kHighlightOpacity = 0.35;
constexpr double kNoteHeight = 24;

std::unique_ptr<Poppler::Document> open(const QString &path)
{
    auto doc = Poppler::Document::load(path);
    if (!doc || doc->isLocked() || doc->isEncrypted())
        return nullptr;
    doc->setRenderHint(Poppler::Document::Antialiasing);
    doc->setRenderHint(Poppler::Document::TextAntialiasing);
    return doc;
}

// Whether the head and the tail of the file look like a whole PDF: a copy cut
// short still opens (the library rebuilds what it can), but would be saved
// back without what was lost.
bool looksWhole(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(1024);
    if (!head.contains("%PDF-"))
        return false;
    const qint64 size = file.size();
    file.seek(std::max<qint64>(0, size - 1024));
    return file.read(1024).contains("%%EOF");
}

} // namespace

struct PdfMarkup::Impl
{
    struct Made
    {
        int page = 0;
        std::unique_ptr<Poppler::Annotation> annotation;
    };

    std::unique_ptr<Poppler::Document> doc;
    std::map<int, Made> made;
    int next = 1;

    std::unique_ptr<Poppler::Page> page(int index) const
    {
        if (!doc || index < 0 || index >= doc->numPages())
            return nullptr;
        return doc->page(index);
    }

    // The library places annotations in fractions of the shown page.
    static QRectF toUnit(const QRectF &r, const QSizeF &size)
    {
        return {r.x() / size.width(), r.y() / size.height(), r.width() / size.width(),
                r.height() / size.height()};
    }
    static QRectF fromUnit(const QRectF &r, const QSizeF &size)
    {
        return {r.x() * size.width(), r.y() * size.height(), r.width() * size.width(),
                r.height() * size.height()};
    }

    int add(int index, std::unique_ptr<Poppler::Annotation> annotation)
    {
        const auto p = page(index);
        if (!p)
            return -1;
        p->addAnnotation(annotation.get());
        const int handle = next++;
        made[handle] = Made{index, std::move(annotation)};
        return handle;
    }
};

PdfMarkup::PdfMarkup(const QString &path)
    : d(std::make_unique<Impl>())
    , m_path(path)
{
    if (looksWhole(path))
        d->doc = open(path);
}

PdfMarkup::~PdfMarkup()
{
    // Marks belong to the document; let them go first.
    d->made.clear();
}

std::optional<QString> PdfMarkup::problem(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    if (!QFileInfo(path).isReadable())
        return u"“%1” could not be read."_s.arg(name);
    if (!looksWhole(path))
        return u"“%1” is not a whole PDF file: it may be damaged or cut short."_s.arg(name);
    const auto doc = Poppler::Document::load(path);
    if (!doc)
        return u"“%1” is damaged and cannot be opened as a PDF."_s.arg(name);
    if (doc->isLocked() || doc->isEncrypted())
        return u"“%1” is protected by a password. Save it without protection and add it again."_s.arg(name);
    if (doc->numPages() < 1)
        return u"“%1” has no pages."_s.arg(name);
    for (int i = 0; i < doc->numPages(); ++i)
        if (!doc->page(i))
            return u"“%1” is damaged: page %2 cannot be read."_s.arg(name).arg(i + 1);
    return std::nullopt;
}

bool PdfMarkup::isValid() const
{
    return pageCount() > 0;
}

int PdfMarkup::pageCount() const
{
    return d->doc ? d->doc->numPages() : 0;
}

QSizeF PdfMarkup::pageSize(int index) const
{
    const auto p = d->page(index);
    return p ? p->pageSizeF() : QSizeF();
}

QImage PdfMarkup::render(int index, double scale, const QRect &area) const
{
    const auto p = d->page(index);
    if (!p || !(scale > 0) || area.isEmpty())
        return {};
    const double dpi = 72 * scale;
    return p->renderToImage(dpi, dpi, area.x(), area.y(), area.width(), area.height());
}

int PdfMarkup::addInk(int index, const QList<QPointF> &points, const QColor &color)
{
    const QSizeF size = pageSize(index);
    if (size.isEmpty() || points.size() < 2)
        return -1;
    QVector<QPointF> unit;
    unit.reserve(points.size());
    for (const QPointF &pt : points)
        unit.append({pt.x() / size.width(), pt.y() / size.height()});
    const QRectF bounds = QPolygonF(points).boundingRect().adjusted(-kStroke, -kStroke, kStroke, kStroke);
    auto ink = std::make_unique<Poppler::InkAnnotation>();
    ink->setBoundary(Impl::toUnit(bounds, size));
    ink->setInkPaths({unit});
    Poppler::Annotation::Style style;
    style.setColor(color);
    style.setWidth(kStroke);
    ink->setStyle(style);
    return d->add(index, std::move(ink));
}

int PdfMarkup::addBox(int index, const QRectF &rect, const QColor &color)
{
    return addSquare(index, rect, color, false);
}

int PdfMarkup::addHighlight(int index, const QRectF &rect, const QColor &color)
{
    return addSquare(index, rect, color, true);
}

int PdfMarkup::addSquare(int index, const QRectF &rect, const QColor &color, bool filled)
{
    const QSizeF size = pageSize(index);
    const QRectF r = rect.normalized();
    if (size.isEmpty() || r.isEmpty())
        return -1;
    auto box = std::make_unique<Poppler::GeomAnnotation>();
    box->setGeomType(Poppler::GeomAnnotation::InscribedSquare);
    box->setBoundary(Impl::toUnit(r, size));
    Poppler::Annotation::Style style;
    if (filled) {
        // A highlight is the colour laid over the drawing, with no outline.
        box->setGeomInnerColor(color);
        style.setColor(Qt::transparent);
        style.setWidth(0);
        style.setOpacity(kHighlightOpacity);
    } else {
        style.setColor(color);
        style.setWidth(kStroke);
    }
    box->setStyle(style);
    return d->add(index, std::move(box));
}

int PdfMarkup::addNote(int index, const QPointF &at, const QString &text, const QColor &color)
{
    const QSizeF size = pageSize(index);
    const QString note = text.trimmed();
    if (size.isEmpty() || note.isEmpty())
        return -1;
    const double width = std::max(8.0 * double(note.size()) + 16, 80.0);
    // No font is set on purpose: the library then writes the note in the
    // standard Helvetica, where a chosen font would be copied into the file whole.
    auto free = std::make_unique<Poppler::TextAnnotation>(Poppler::TextAnnotation::InPlace);
    free->setBoundary(Impl::toUnit(QRectF(at.x(), at.y(), width, kNoteHeight), size));
    free->setContents(note);
    free->setTextColor(color);
    Poppler::Annotation::Style style;
    style.setColor(Qt::transparent);
    style.setWidth(0);
    free->setStyle(style);
    const int handle = d->add(index, std::move(free));
    // A written note only gets its look once the page has been drawn; without
    // it other readers would show an empty box.
    if (const auto p = d->page(index))
        p->renderToImage(4, 4);
    return handle;
}

bool PdfMarkup::remove(int handle)
{
    const auto it = d->made.find(handle);
    if (it == d->made.end())
        return false;
    if (const auto p = d->page(it->second.page))
        p->removeAnnotation(it->second.annotation.get());
    // The library deleted its side of the mark with it.
    (void)it->second.annotation.release();
    d->made.erase(it);
    return true;
}

bool PdfMarkup::save()
{
    return saveAs(m_path);
}

bool PdfMarkup::saveAs(const QString &path)
{
    if (!d->doc)
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const auto converter = d->doc->pdfConverter();
    converter->setOutputDevice(&file);
    converter->setPDFOptions(Poppler::PDFConverter::WithChanges);
    if (!converter->convert()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

QList<PdfMarkup::Mark> PdfMarkup::marks(int index) const
{
    const auto p = d->page(index);
    if (!p)
        return {};
    const QSizeF size = p->pageSizeF();
    QList<Mark> out;
    for (const auto &a : p->annotations()) {
        Mark m;
        m.rect = Impl::fromUnit(a->boundary(), size);
        m.color = a->style().color();
        m.text = a->contents();
        switch (a->subType()) {
        case Poppler::Annotation::AInk: m.kind = Kind::Ink; break;
        case Poppler::Annotation::AGeom: {
            const auto *g = static_cast<const Poppler::GeomAnnotation *>(a.get());
            const bool filled = g->geomInnerColor().isValid() && g->geomInnerColor().alpha() > 0;
            m.kind = filled ? Kind::Highlight : Kind::Box;
            if (filled)
                m.color = g->geomInnerColor();
            break;
        }
        case Poppler::Annotation::AText: {
            const auto *t = static_cast<const Poppler::TextAnnotation *>(a.get());
            if (t->textType() == Poppler::TextAnnotation::InPlace) {
                m.kind = Kind::Note;
                m.color = t->textColor();
            }
            break;
        }
        default: break;
        }
        out.append(m);
    }
    return out;
}
