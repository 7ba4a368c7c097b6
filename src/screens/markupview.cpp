#include "markupview.h"

#include "documents/pdfmarks.h"
#include "look/fwui.h"
#include "shell/fieldeditors.h"
#include "store/filewrites.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr qreal kMargin = 16; // around and between pages, in pixels
constexpr double kMinZoom = 0.25, kMaxZoom = 8;
// A page is drawn whole while it stays under this many device pixels;
// beyond, only the part in view and a margin around it.
constexpr qint64 kWholePage = 4'000'000;
constexpr int kKeptTiles = 8;

std::optional<QString> askNote(QWidget *parent)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(u"Markup note"_s);
    auto *box = new QVBoxLayout(&dialog);
    auto *title = new QLabel(u"Markup note"_s, &dialog);
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    auto *field = new QLineEdit(&dialog);
    field->setFixedSize(280, 24);
    auto *buttons = new QDialogButtonBox(&dialog);
    buttons->addButton(u"Add"_s, QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(u"Cancel"_s, QDialogButtonBox::RejectRole);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    box->addWidget(title);
    box->addWidget(field);
    box->addWidget(buttons);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return field->text();
}

// The sheets open in a view or waiting to be written, by file: a sheet opened
// again while its marks wait shows them, and a later write carries them all.
QHash<QString, std::weak_ptr<PdfMarkup>> &openSheets()
{
    static QHash<QString, std::weak_ptr<PdfMarkup>> sheets;
    return sheets;
}

std::shared_ptr<PdfMarkup> sheetAt(const QString &path)
{
    std::weak_ptr<PdfMarkup> &slot = openSheets()[path];
    std::shared_ptr<PdfMarkup> pdf = slot.lock();
    if (!pdf) {
        pdf = std::make_shared<PdfMarkup>(path);
        slot = pdf;
    }
    return pdf;
}

QString writeCause(const QString &path)
{
    // Opened for writing, not written: the rights of the user Trestle runs as, as the write had them.
    QFile file(path);
    if (file.exists() && !file.open(QIODevice::ReadWrite))
        return u"the plan sheet's file is read-only"_s;
    return u"the plan sheet's file could not be written"_s;
}

} // namespace

const QStringList &MarkupView::toolNames()
{
    static const QStringList names{u"pan"_s, u"pen"_s, u"box"_s, u"highlight"_s, u"text"_s};
    return names;
}

MarkupView::AskNote &MarkupView::askNoteHook()
{
    static AskNote hook;
    return hook;
}

MarkupView::MarkupView(const QString &path, QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_file(QFileInfo(path).absoluteFilePath())
    , m_pdf(sheetAt(m_file))
{
    setFrameShape(QFrame::NoFrame);
    FieldLook::thinScrollBar(verticalScrollBar());
    viewport()->setMouseTracking(false);
    for (int i = 0; i < m_pdf->pageCount(); ++i)
        m_sizes.append(m_pdf->pageSize(i));
    setTool(m_tool);
    layoutPages();
}

MarkupView::~MarkupView()
{
    // The last holder gone (no view, no waiting write): forget the sheet.
    const QString path = m_file;
    m_pdf.reset();
    const auto it = openSheets().constFind(path);
    if (it != openSheets().constEnd() && it->expired())
        openSheets().erase(it);
}

void MarkupView::write()
{
    if (m_pdf->save()) {
        FileWrites::shared().written(m_file);
        return;
    }
    // The write holds the sheet, so its marks outlive this view until they are on disk.
    FileWrites::shared().failed(
        m_file, writeCause(m_file),
        [pdf = m_pdf, path = m_file] {
            // A sheet deleted meanwhile has nothing left to keep; a folder gone
            // (a drive not mounted) is not a deletion, so the marks wait for it.
            const QFileInfo info(path);
            return (info.dir().exists() && !info.exists()) || pdf->save();
        },
        [pdf = m_pdf](const QString &to) { return pdf->saveAs(to); });
}

bool MarkupView::isValid() const
{
    return m_pdf->isValid();
}

int MarkupView::pageCount() const
{
    return m_pdf->pageCount();
}

void MarkupView::setTool(const QString &tool)
{
    m_tool = toolNames().contains(tool) ? tool : u"pan"_s;
    viewport()->setCursor(m_tool == u"pan"    ? Qt::OpenHandCursor
                          : m_tool == u"text" ? Qt::IBeamCursor
                                              : Qt::CrossCursor);
}

void MarkupView::setZoom(double zoom)
{
    m_zoom = std::clamp(zoom, kMinZoom, kMaxZoom);
    layoutPages();
}

double MarkupView::scale() const
{
    qreal widest = 0;
    for (const QSizeF &s : m_sizes)
        widest = std::max(widest, s.width());
    if (widest <= 0)
        return 1;
    const qreal room = std::max<qreal>(viewport()->width() - 2 * kMargin, 50);
    return room / widest * m_zoom;
}

void MarkupView::layoutPages()
{
    const double s = scale();
    qreal widest = 0;
    qreal y = kMargin;
    m_tops.clear();
    for (const QSizeF &size : m_sizes) {
        m_tops.append(y);
        y += size.height() * s + kMargin;
        widest = std::max(widest, size.width() * s);
    }
    m_contentW = widest + 2 * kMargin;
    m_contentH = y;
    const QSize vp = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, int(std::ceil(m_contentW)) - vp.width()));
    horizontalScrollBar()->setPageStep(vp.width());
    horizontalScrollBar()->setSingleStep(40);
    verticalScrollBar()->setRange(0, std::max(0, int(std::ceil(m_contentH)) - vp.height()));
    verticalScrollBar()->setPageStep(vp.height());
    verticalScrollBar()->setSingleStep(40);
    // The view keeps showing the same part of the sheet as its size or zoom changes.
    m_relayout = true;
    horizontalScrollBar()->setValue(int(std::lround(m_at.x() * m_contentW)));
    verticalScrollBar()->setValue(int(std::lround(m_at.y() * m_contentH)));
    m_relayout = false;
    viewport()->update();
}

QRectF MarkupView::pageRect(int page) const
{
    const double s = scale();
    const QSizeF size = m_sizes[page] * s;
    const qreal width = std::max<qreal>(m_contentW, viewport()->width());
    return {(width - size.width()) / 2, m_tops[page], size.width(), size.height()};
}

QPointF MarkupView::toViewport(int page, const QPointF &at) const
{
    if (page < 0 || page >= m_sizes.size())
        return {};
    const QPointF scroll(horizontalScrollBar()->value(), verticalScrollBar()->value());
    return pageRect(page).topLeft() + at * scale() - scroll;
}

std::optional<std::pair<int, QPointF>> MarkupView::pageAt(const QPoint &viewportPos) const
{
    const QPointF content =
        QPointF(viewportPos) + QPointF(horizontalScrollBar()->value(), verticalScrollBar()->value());
    for (int i = 0; i < m_sizes.size(); ++i) {
        const QRectF r = pageRect(i);
        if (r.contains(content))
            return std::pair{i, (content - r.topLeft()) / scale()};
    }
    return std::nullopt;
}

const QImage &MarkupView::tileFor(int page, const QRect &visible, double dpr)
{
    const double s = scale() * dpr;
    Tile &tile = m_tiles[page];
    if (tile.scale == s && tile.area.contains(visible))
        return tile.image;
    const QRect whole(0, 0, int(std::ceil(m_sizes[page].width() * s)),
                      int(std::ceil(m_sizes[page].height() * s)));
    if (qint64(whole.width()) * whole.height() <= kWholePage) {
        tile.area = whole;
        tile.image = m_pdf->render(page, s, whole);
        ++m_renders;
    } else if (tile.scale != s || !tile.area.intersects(visible)) {
        // A large page at a new scale: first only what shows, so the view answers at once.
        tile.area = visible & whole;
        tile.image = m_pdf->render(page, s, tile.area);
        ++m_renders;
    } else {
        // Scrolled on: keep what was drawn, and draw only the strips coming
        // into view with an eighth of a view beyond them, so the next few
        // steps of scrolling draw nothing.
        const int mx = int(viewport()->width() * dpr / 8), my = int(viewport()->height() * dpr / 8);
        const QRect area = visible.adjusted(-mx, -my, mx, my) & whole;
        QImage grown(area.size(), QImage::Format_ARGB32_Premultiplied);
        grown.fill(Qt::white);
        QImage kept = tile.image;
        kept.setDevicePixelRatio(1); // composed in device pixels
        QPainter p(&grown);
        p.drawImage(tile.area.topLeft() - area.topLeft(), kept);
        for (const QRect &strip : QRegion(area).subtracted(QRegion(tile.area))) {
            p.drawImage(strip.topLeft() - area.topLeft(), m_pdf->render(page, s, strip));
            ++m_renders;
        }
        p.end();
        tile.area = area;
        tile.image = std::move(grown);
    }
    tile.scale = s;
    tile.image.setDevicePixelRatio(dpr);
    if (m_tiles.size() > kKeptTiles) {
        // Let go of the pages farthest from this one.
        QList<int> pages = m_tiles.keys();
        std::sort(pages.begin(), pages.end(),
                  [page](int a, int b) { return std::abs(a - page) > std::abs(b - page); });
        for (int i = 0; i < pages.size() - kKeptTiles; ++i)
            m_tiles.remove(pages[i]);
    }
    return m_tiles[page].image;
}

void MarkupView::dropTiles(int page)
{
    m_tiles.remove(page);
}

void MarkupView::paintEvent(QPaintEvent *)
{
    QPainter p(viewport());
    const FWTheme &theme = FWUI::shared().theme();
    p.fillRect(viewport()->rect(), theme.deep);
    const QPointF scroll(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const QRectF view(QPointF(0, 0), QSizeF(viewport()->size()));
    const double dpr = viewport()->devicePixelRatioF();
    for (int i = 0; i < m_sizes.size(); ++i) {
        const QRectF r = pageRect(i).translated(-scroll);
        if (r.bottom() < view.top())
            continue;
        if (r.top() > view.bottom())
            break;
        p.fillRect(r.translated(2, 3), QColor(0, 0, 0, 60));
        p.fillRect(r, Qt::white);
        const QRectF shown = r & view;
        const QRect visible =
            QRectF((shown.topLeft() - r.topLeft()) * dpr, shown.size() * dpr).toAlignedRect();
        const QImage &image = tileFor(i, visible, dpr);
        if (!image.isNull())
            p.drawImage(r.topLeft() + QPointF(m_tiles[i].area.topLeft()) / dpr, image);
    }

    // The mark being drawn, until it is finished and written.
    if (m_page < 0)
        return;
    p.setRenderHint(QPainter::Antialiasing);
    const double s = scale();
    const auto at = [&](const QPointF &pt) { return toViewport(m_page, pt); };
    if (m_tool == u"pen" && m_path.size() > 1) {
        QPainterPath path(at(m_path.first()));
        for (const QPointF &pt : std::as_const(m_path))
            path.lineTo(at(pt));
        p.setPen(QPen(m_color, 3 * s, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPath(path);
    } else if (m_tool == u"box") {
        p.setPen(QPen(m_color, 3 * s));
        p.drawRect(QRectF(at(m_start), at(m_end)).normalized());
    } else if (m_tool == u"highlight") {
        QColor fill = m_color;
        fill.setAlphaF(0.35f);
        p.fillRect(QRectF(at(m_start), at(m_end)).normalized(), fill);
    }
}

void MarkupView::resizeEvent(QResizeEvent *e)
{
    QAbstractScrollArea::resizeEvent(e);
    layoutPages();
}

void MarkupView::scrollContentsBy(int, int)
{
    if (!m_relayout && m_contentW > 0 && m_contentH > 0)
        m_at =
            QPointF(horizontalScrollBar()->value() / m_contentW, verticalScrollBar()->value() / m_contentH);
    viewport()->update();
}

void MarkupView::mousePressEvent(QMouseEvent *e)
{
    if (e->button() != Qt::LeftButton)
        return;
    if (m_tool == u"pan") {
        m_panning = true;
        m_panFrom = e->position().toPoint();
        viewport()->setCursor(Qt::ClosedHandCursor);
        return;
    }
    const auto hit = pageAt(e->position().toPoint());
    if (!hit)
        return;
    const auto [page, at] = *hit;
    if (m_tool == u"text") {
        const AskNote &hook = askNoteHook();
        const std::optional<QString> text = hook ? hook(this) : askNote(this);
        if (text && !text->trimmed().isEmpty())
            finishMark(m_pdf->addNote(page, at, *text, m_color), page);
        return;
    }
    m_page = page;
    m_start = m_end = at;
    m_path = {at};
}

void MarkupView::mouseMoveEvent(QMouseEvent *e)
{
    if (m_panning) {
        const QPoint delta = e->position().toPoint() - m_panFrom;
        m_panFrom = e->position().toPoint();
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - delta.x());
        verticalScrollBar()->setValue(verticalScrollBar()->value() - delta.y());
        return;
    }
    if (m_page < 0)
        return;
    const QPointF content = e->position() +
                            QPointF(horizontalScrollBar()->value(), verticalScrollBar()->value()) -
                            pageRect(m_page).topLeft();
    const QSizeF size = m_sizes[m_page];
    const QPointF at(std::clamp(content.x() / scale(), 0.0, size.width()),
                     std::clamp(content.y() / scale(), 0.0, size.height()));
    m_end = at;
    if (m_tool == u"pen")
        m_path.append(at);
    viewport()->update();
}

void MarkupView::mouseReleaseEvent(QMouseEvent *e)
{
    if (e->button() != Qt::LeftButton)
        return;
    if (m_panning) {
        m_panning = false;
        viewport()->setCursor(Qt::OpenHandCursor);
        return;
    }
    if (m_page < 0)
        return;
    const int page = m_page;
    m_page = -1;
    const QRectF rect = QRectF(m_start, m_end).normalized();
    int handle = -1;
    if (m_tool == u"pen")
        handle = m_pdf->addInk(page, m_path, m_color);
    else if (m_tool == u"box")
        handle = m_pdf->addBox(page, rect, m_color);
    else if (m_tool == u"highlight")
        handle = m_pdf->addHighlight(page, rect, m_color);
    m_path.clear();
    finishMark(handle, page);
}

void MarkupView::finishMark(int handle, int page)
{
    if (handle > 0) {
        m_added.append({handle, page});
        write();
        dropTiles(page);
        Q_EMIT marksChanged();
    }
    viewport()->update();
}

bool MarkupView::undoLast()
{
    if (m_added.isEmpty())
        return false;
    const auto [handle, page] = m_added.takeLast();
    m_pdf->remove(handle);
    write();
    dropTiles(page);
    viewport()->update();
    Q_EMIT marksChanged();
    return true;
}

void MarkupView::wheelEvent(QWheelEvent *e)
{
    if (!(e->modifiers() & Qt::ControlModifier)) {
        QAbstractScrollArea::wheelEvent(e);
        return;
    }
    // Ctrl+wheel zooms about the pointer.
    const QPointF pos = e->position();
    const QPointF content = pos + QPointF(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const double before = scale();
    setZoom(m_zoom * (e->angleDelta().y() > 0 ? 1.25 : 0.8));
    const double ratio = scale() / before;
    horizontalScrollBar()->setValue(int(content.x() * ratio - pos.x()));
    verticalScrollBar()->setValue(int(content.y() * ratio - pos.y()));
    e->accept();
}
