#pragma once

class DB;
class Nav;
class TLWindow;

// The menu bar of the window: File, Go, View and Help.
namespace Menus {
void build(TLWindow *window, DB &db, Nav &nav);
} // namespace Menus
