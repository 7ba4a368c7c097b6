#pragma once
#include <QtGui/QColor>
#include <QtGui/QIcon>
#include <QtGui/QPixmap>

// The program's symbols, drawn from the open icon set the build embeds
// (assets/icons.map names the icon of each symbol).
namespace Icons {
// Whether the symbol has an icon.
bool has(const QString &symbol);
// The symbol drawn in `color` at `size` device-independent pixels; a blank
// pixmap of that size for an unknown symbol, so a layout never shifts.
QPixmap pixmap(const QString &symbol, const QColor &color, int size);
// The symbol as an icon in `color`, for buttons and menus.
QIcon icon(const QString &symbol, const QColor &color, int size = 16);
} // namespace Icons
