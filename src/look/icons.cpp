#include "icons.h"

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

#include <memory>

using namespace Qt::StringLiterals;

namespace Icons {

namespace {

QString resource(const QString &symbol)
{
    return u":/icons/"_s + symbol + u".svg"_s;
}

// Parsed renderers, one per symbol, so a repaint never reparses SVG.
QSvgRenderer *renderer(const QString &symbol)
{
    static QHash<QString, std::shared_ptr<QSvgRenderer>> cache;
    auto it = cache.find(symbol);
    if (it == cache.end()) {
        auto r = std::make_shared<QSvgRenderer>(resource(symbol));
        it = cache.insert(symbol, r->isValid() ? r : nullptr);
    }
    return it->get();
}

} // namespace

bool has(const QString &symbol)
{
    return QFile::exists(resource(symbol));
}

QPixmap pixmap(const QString &symbol, const QColor &color, int size)
{
    const qreal dpr = qApp ? qApp->devicePixelRatio() : 1.0;
    QPixmap pm(QSize(size, size) * dpr);
    pm.setDevicePixelRatio(dpr);
    pm.fill(Qt::transparent);
    if (QSvgRenderer *r = renderer(symbol)) {
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        r->render(&p, QRectF(0, 0, size, size));
        // The set is drawn in one colour; tint it to the finish.
        p.setCompositionMode(QPainter::CompositionMode_SourceIn);
        p.fillRect(QRectF(0, 0, size, size), color);
    }
    return pm;
}

QIcon icon(const QString &symbol, const QColor &color, int size)
{
    QIcon i;
    i.addPixmap(pixmap(symbol, color, size));
    return i;
}

} // namespace Icons
