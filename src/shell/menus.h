#pragma once
#include <QtCore/QString>

#include <functional>

class DB;
class QWidget;
class Nav;
class TLWindow;

// The menu bar of the window: File, Go, View and Help.
namespace Menus {
void build(TLWindow *window, DB &db, Nav &nav);
// A title as a menu item's text: its own "&" doubled so that it shows rather than marking a key.
QString menuText(const QString &title);
// Shows the About window over the given window; set by the screens layer.
std::function<void(QWidget *)> &aboutHook();
} // namespace Menus
