#pragma once
#include <functional>

class DB;
class QWidget;

// The window side of the program: launch, the one window, and the hooks
// that later layers fill (help pages).
namespace TLApp {
// Whether the command line asks for the window rather than a verb.
bool wantsWindow(int argc, char **argv);
// Launches: names the program, builds the help pages, opens the store, loads
// the sample company on an empty store, shows the window and runs the loop.
// A hidden "--screenshot FILE [MODULE]" saves the window after its first paint and quits.
int run(int &argc, char **argv);
// Adds the sample company and its files.
void loadSample(DB &db);
// Loads the sample company when the store has no company at all.
void ensureCompany(DB &db);
// Opens the help window over `parent` when the help pages are installed.
void showHelp(QWidget *parent);
// Builds the help pages at launch; set by the help layer before run().
std::function<void()> &helpPagesHook();
// Shows the help window; set by the help layer.
std::function<void(QWidget *)> &helpWindowHook();
} // namespace TLApp
