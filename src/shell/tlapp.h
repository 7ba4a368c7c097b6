#pragma once
#include <QtCore/QList>
#include <QtCore/QSize>
#include <QtCore/QStringList>

#include <functional>
#include <optional>

class DB;
struct ModuleDef;
class QWidget;

// The window side of the program: launch, the one window, and the hooks
// that later layers fill (help pages).
namespace TLApp {
// Whether the command line asks for the window rather than a verb.
bool wantsWindow(int argc, char **argv);
// Launches: names the program, builds the help pages, opens the store, loads
// the sample company on an empty store, shows the window and runs the loop.
// A hidden "--screenshot FILE [MODULE [RECORD]] [--finish NAME] [--zoom PCT] [--size WxH]"
// saves the window after its first paint and quits.
int run(int &argc, char **argv);

// What a screenshot run asks for.
struct ScreenshotRequest
{
    QString file;
    QString module;             // empty: the module the window opens on
    QString record;             // a record id or number; empty: none chosen
    QString finish;             // a finish id; empty: the stored one
    std::optional<double> zoom; // 1.5 for 150 %
    QSize size;                 // the window's size; invalid: as it opens
    QString error;              // why the command line can't be used; empty when it can
};
// Reads the arguments after the program's name, starting at "--screenshot".
ScreenshotRequest parseScreenshot(const QStringList &args);
// The id of the record a screenshot names: a record id, or the number of a
// record of the module's kind (the first in list order); empty when none.
QString findRecord(const DB &db, const ModuleDef &m, const QString &idOrNumber);
// Adds the sample company and its files.
void loadSample(DB &db);
// Loads the sample company when the store has no company at all.
void ensureCompany(DB &db);
// Opens the help window over `parent` at the page `pageId` (a module's id), when the
// help pages are installed.
void showHelp(QWidget *parent, const QString &pageId = {});
// Builds the help pages at launch; set by the help layer before run().
std::function<void()> &helpPagesHook();
// Shows the help window; set by the help layer.
std::function<void(QWidget *, const QString &pageId)> &helpWindowHook();
// Run once the application object exists, before the window is made: what
// must come after the toolkit's own set-up (the screens' accessibility).
QList<std::function<void()>> &appReadyHooks();
} // namespace TLApp
