#include "photostrip.h"

#include "fieldeditors.h"

#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtCore/QFileInfo>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtGui/QImageReader>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QToolButton>

using namespace Qt::StringLiterals;

namespace {
constexpr qreal kThumbW = 120, kThumbH = 90, kRadius = 10;
}

PhotoThumb::PhotoThumb(const QString &path, QWidget *parent)
    : QWidget(parent)
    , m_path(path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    // Decode near the size shown (twice, for sharp zoom and high-density
    // screens) rather than the camera's full resolution.
    const QSize full = reader.size();
    if (full.isValid())
        reader.setScaledSize(
            full.scaled(QSize(int(kThumbW * 4), int(kThumbH * 4)), Qt::KeepAspectRatioByExpanding)
                .boundedTo(full));
    m_image = reader.read();
    setToolTip(QFileInfo(path).fileName());
    Chrome::followLook(this);
}

QSize PhotoThumb::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    return {ui.px(kThumbW), ui.px(kThumbH)};
}

void PhotoThumb::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath clip;
    clip.addRoundedRect(r, ui.s(kRadius), ui.s(kRadius));
    p.fillPath(clip, t.well);
    if (m_image.isNull()) {
        const int size = ui.px(24);
        QColor dim = t.dim;
        dim.setAlphaF(0.6);
        p.drawPixmap(QPointF(r.center().x() - size / 2.0, r.center().y() - size / 2.0),
                     Icons::pixmap(u"camera.fill"_s, dim, size));
    } else {
        // Crop to fill the frame, centred.
        const QSizeF shown = QSizeF(m_image.size()).scaled(r.size(), Qt::KeepAspectRatioByExpanding);
        const QRectF target(r.center().x() - shown.width() / 2, r.center().y() - shown.height() / 2,
                            shown.width(), shown.height());
        p.setClipPath(clip);
        p.drawImage(target, m_image);
        p.setClipping(false);
    }
    QColor edge = t.deep;
    p.setPen(QPen(edge, 1));
    p.setBrush(Qt::NoBrush);
    p.drawPath(clip);
}

void PhotoThumb::mouseDoubleClickEvent(QMouseEvent *)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(m_path));
}

// One photo: its thumbnail, caption box and delete button.
class PhotoTile : public QWidget
{
public:
    PhotoTile(DB &db, const Rec &photo, QWidget *parent)
        : QWidget(parent)
        , m_caption(db, photo.id, u"caption"_s)
        , m_thumb(new PhotoThumb(db.fileURL(photo.f.value(u"file"_s), photo.company), this))
        , m_box(new QLineEdit(this))
        , m_delete(new QToolButton(this))
    {
        setObjectName(photo.id);
        auto *col = new QVBoxLayout(this);
        col->setContentsMargins(0, 0, 0, 0);
        col->addWidget(m_thumb);
        auto *row = new QHBoxLayout;
        row->setSpacing(2);
        row->addWidget(m_box, 1);
        row->addWidget(m_delete);
        col->addLayout(row);
        m_box->setObjectName(u"caption"_s);
        m_box->setPlaceholderText(u"Caption"_s);
        m_delete->setObjectName(u"delete"_s);
        m_delete->setAutoRaise(true);
        m_delete->setToolTip(u"Delete photo"_s);
        connect(m_box, &QLineEdit::textEdited, this, [this](const QString &text) { m_caption.set(text); });
        const QString id = photo.id;
        connect(m_delete, &QToolButton::clicked, this, [&db, id] { db.remove(id); });
        restyle();
        refresh(photo);
    }

    void refresh(const Rec &photo)
    {
        const QString caption = photo.f.value(u"caption"_s);
        if (!m_box->hasFocus() && m_box->text() != caption) {
            m_box->setText(caption);
            m_box->setCursorPosition(0);
        }
        // The box is narrower than most captions; the whole one shows on hovering.
        m_box->setToolTip(caption);
    }

    void restyle()
    {
        const FWUI &ui = FWUI::shared();
        layout()->setSpacing(ui.px(4));
        m_thumb->setFixedSize(m_thumb->sizeHint());
        setFixedWidth(ui.px(kThumbW));
        m_box->setFont(ui.font(11.5));
        // A little room inside the narrow box, so the caption does not touch its edge.
        m_box->setTextMargins(ui.px(3), 0, ui.px(2), 0);
        m_delete->setIcon(Icons::icon(u"trash"_s, ui.theme().dim, ui.px(14)));
        m_delete->setIconSize(QSize(ui.px(14), ui.px(14)));
    }

private:
    RecBinding m_caption;
    PhotoThumb *m_thumb;
    QLineEdit *m_box;
    QToolButton *m_delete;
};

PhotoStrip::PhotoStrip(DB &db, const QString &recordId, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_id(recordId)
    , m_caption(new FWCaption(u"Photos"_s, this))
    , m_add(new FWChromeButton(u"Add Photos…"_s, u"camera.fill"_s, this))
    , m_scroll(new QScrollArea(this))
    , m_tilesLayout(nullptr)
{
    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    auto *heading = new QHBoxLayout;
    heading->addWidget(m_caption);
    heading->addStretch(1);
    heading->addWidget(m_add);
    col->addLayout(heading);
    col->addWidget(m_scroll);
    m_caption->setObjectName(u"caption"_s);
    m_add->setObjectName(u"add"_s);
    connect(m_add, &QAbstractButton::clicked, this, &PhotoStrip::addPhotos);

    // Many photos scroll sideways rather than stretch the editor.
    auto *tiles = new QWidget(m_scroll);
    m_tilesLayout = new QHBoxLayout(tiles);
    m_tilesLayout->setContentsMargins(0, 0, 0, 0);
    m_tilesLayout->addStretch(1);
    m_scroll->setWidget(tiles);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->viewport()->setAutoFillBackground(false);
    FieldLook::thinScrollBars(m_scroll);
    tiles->setAutoFillBackground(false);

    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &PhotoStrip::restyle);
    refresh();
}

QString PhotoStrip::caption() const
{
    return u"Photos ("_s + (m_order.isEmpty() ? u"none"_s : QString::number(m_order.size())) + u')';
}

void PhotoStrip::addPhotos()
{
    const QStringList paths = QFileDialog::getOpenFileNames(
        this, u"Add Photos"_s, {}, u"Images (*.png *.jpg *.jpeg *.gif *.bmp *.webp *.tif *.tiff *.heic)"_s);
    if (!paths.isEmpty())
        addFiles(paths);
}

void PhotoStrip::addFiles(const QStringList &paths)
{
    const std::optional<Rec> owner = m_db.get(m_id);
    if (!owner)
        return;
    for (const QString &path : paths) {
        const std::optional<QString> stored = m_db.importFile(path);
        if (!stored)
            continue;
        Fields f;
        f.insert(u"file"_s, *stored);
        f.insert(u"caption"_s, QFileInfo(path).completeBaseName());
        m_db.add(u"photo"_s, owner->project, owner->id, f);
    }
}

void PhotoStrip::refresh()
{
    const std::optional<Rec> owner = m_db.get(m_id);
    setVisible(owner.has_value());
    if (!owner)
        return;
    const QList<Rec> photos = m_db.list(u"photo"_s, {.parent = m_id});
    QStringList order;
    for (const Rec &photo : photos) {
        order.append(photo.id);
        if (PhotoTile *tile = m_tiles.value(photo.id))
            tile->refresh(photo);
        else
            m_tiles.insert(photo.id, new PhotoTile(m_db, photo, m_scroll->widget()));
    }
    for (auto it = m_tiles.begin(); it != m_tiles.end();) {
        if (!order.contains(it.key())) {
            delete it.value();
            it = m_tiles.erase(it);
        } else {
            ++it;
        }
    }
    if (order != m_order) {
        for (int i = 0; i < order.size(); ++i) {
            PhotoTile *tile = m_tiles.value(order[i]);
            m_tilesLayout->removeWidget(tile);
            m_tilesLayout->insertWidget(i, tile);
        }
        m_order = order;
    }
    m_caption->setText(caption().toUpper());
    m_scroll->setVisible(!order.isEmpty());
}

void PhotoStrip::restyle()
{
    const FWUI &ui = FWUI::shared();
    layout()->setSpacing(ui.px(8));
    m_tilesLayout->setSpacing(ui.px(12));
    for (PhotoTile *tile : std::as_const(m_tiles))
        tile->restyle();
    // Room for the thumbnail, the caption box and a horizontal scroll bar.
    m_scroll->setFixedHeight(ui.px(kThumbH) + ui.px(4) + ui.px(30) + ui.px(14));
}
