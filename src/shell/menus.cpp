#include "menus.h"

#include "connectdialog.h"
#include "fileactions.h"
#include "importdialog.h"
#include "nav.h"
#include "printcenter.h"
#include "printsetup.h"
#include "snapshotdialog.h"
#include "tlapp.h"
#include "tlmain.h"
#include "tlwindow.h"

#include "catalog/modules.h"
#include "look/fwui.h"
#include "store/db.h"
#include "store/server/serverlink.h"

#include <QtGui/QActionGroup>
#include <QtWidgets/QMenuBar>

using namespace Qt::StringLiterals;

namespace Menus {

namespace {

void fileMenu(TLWindow *w, DB &db, Nav &nav)
{
    QMenu *m = w->menuBar()->addMenu(u"&File"_s);
    m->addAction(u"New Project…"_s, QKeySequence(u"Ctrl+N"_s), w, [&nav] { nav.setNewProject(true); });
    m->addAction(u"New Company…"_s, w, [&nav] { nav.setNewCompany(true); });
    m->addSeparator();
    m->addAction(u"Back Up Everything…"_s, QKeySequence(u"Ctrl+B"_s), w,
                 [w, &db] { FileActions::backupAll(w, db); });
    m->addAction(u"Restore From Backup…"_s, w, [w, &db] { FileActions::restore(w, db); });
    m->addAction(u"Restore From Snapshot…"_s, w, [w, &db] { SnapshotActions::restore(w, db); });
    m->addAction(u"Load Unsaved Changes…"_s, w, [w, &db] { FileActions::loadUnsaved(w, db); });
    if (ServerLink::isConnected())
        m->addAction(u"Disconnect From Company Server…"_s, w,
                     [w] { ServerActions::disconnectFromServer(w); });
    else
        m->addAction(u"Connect to Company Server…"_s, w, [w] { ServerActions::connectToServer(w); });
    m->addAction(u"Import…"_s, w, [w, &db] { ImportDialog::chooseAndRun(w, db, false); });
    QMenu *import = m->addMenu(u"Import"_s);
    import->addAction(u"CSV Export Folder…"_s, w, [w, &db] { ImportDialog::chooseAndRun(w, db, true);
});
    import->addAction(u"Save Open-Jobs Template…"_s, w, [w] { ImportDialog::saveTemplate(w);
    } // namespace
);
m->addAction(u"Export Company as CSV Folder…"_s, w, [w, &db] { FileActions::exportCSV(w, db); });
m->addAction(u"Set Company Logo for Printouts…"_s, w, [w, &db] { FileActions::chooseLogo(w, db); });
// A store that did not open takes nothing new; only the ways back stay.
if (!db.isOpen()) {
    import->setEnabled(false);
    for (QAction *a : m->actions())
        if (!a->isSeparator() && !a->text().startsWith(u"Restore From "_s))
            a->setEnabled(false);
}
m->addSeparator();
m->addAction(u"Page Setup…"_s, QKeySequence(u"Ctrl+Shift+P"_s), w, [w] { PrintSetup::pageSetup(w); });
QAction *print =
    m->addAction(u"Print…"_s, QKeySequence(u"Ctrl+P"_s), w, [w] { PrintCenter::shared().print(w); });
print->setObjectName(u"print"_s);
print->setEnabled(PrintCenter::shared().hasJob());
QObject::connect(&PrintCenter::shared(), &PrintCenter::hasJobChanged, print, &QAction::setEnabled);
m->addSeparator();
m->addAction(u"Quit"_s, QKeySequence::Quit, w, &QWidget::close);
} // namespace Menus

void goMenu(TLWindow *w, DB &db, Nav &nav)
{
    QMenu *m = w->menuBar()->addMenu(u"&Go"_s);
    int position = 0;
    for (const ModuleDef &def : Modules::all()) {
        const QString id = def.id;
        // A title's own "&" (Team & Roles) must not become a mnemonic and vanish.
        QAction *a = m->addAction(menuText(def.title), w, [&nav, id] { nav.setModule(id); });
        // The menu ignores the role on purpose: the module area refuses what may not open.
        if (++position <= 9)
            a->setShortcut(QKeySequence(u"Ctrl+"_s + QString::number(position)));
    }
    m->addSeparator();
    QAction *sample = m->addAction(u"Load Sample Company"_s, w, [&db, &nav] {
        TLApp::loadSample(db);
        nav.setModule(u"hub"_s);
    });
    sample->setEnabled(db.isOpen());
    m->setEnabled(db.isOpen());
}

void viewMenu(TLWindow *w)
{
    FWUI &ui = FWUI::shared();
    QMenu *m = w->menuBar()->addMenu(u"&View"_s);
    QMenu *themes = m->addMenu(u"Theme"_s);
    auto *group = new QActionGroup(themes);
    for (const FWTheme &t : FWTheme::all()) {
        const QString id = t.id;
        QAction *a = themes->addAction(menuText(t.name), w, [id] { FWUI::shared().setTheme(id); });
        a->setCheckable(true);
        a->setChecked(ui.theme().id == id);
        group->addAction(a);
    }
    m->addAction(u"Zoom In"_s, QKeySequence(u"Ctrl+="_s), &ui, &FWUI::zoomIn);
    m->addAction(u"Zoom Out"_s, QKeySequence(u"Ctrl+-"_s), &ui, &FWUI::zoomOut);
    m->addAction(u"Actual Size (100%)"_s, QKeySequence(u"Ctrl+0"_s), &ui,
                 [] { FWUI::shared().setZoom(1.0); });
    QAction *line = m->addAction(u"Interface Zoom: "_s + ui.percent());
    line->setEnabled(false);
    QObject::connect(&ui, &FWUI::changed, line, [line, group] {
        const FWUI &ui = FWUI::shared();
        line->setText(u"Interface Zoom: "_s + ui.percent());
        for (QAction *a : group->actions())
            a->setChecked(a->text() == menuText(ui.theme().name));
    });
}

// Edit ▸ Undo Import, offered while the last import can still be taken back as a whole.
void editMenu(TLWindow *w, DB &db)
{
    QMenu *m = w->menuBar()->addMenu(u"&Edit"_s);
    QAction *undo = m->addAction(u"Undo Import"_s, w, [w, &db] { ImportDialog::undoLast(w, db); });
    undo->setObjectName(u"undoImport"_s);
    const auto update = [undo, &db] { undo->setEnabled(Import::canUndo(db, ImportDialog::lastImport())); };
    update();
    QObject::connect(m, &QMenu::aboutToShow, undo, update);
}

void helpMenu(TLWindow *w, Nav &nav)
{
    QMenu *m = w->menuBar()->addMenu(u"&Help"_s);
    // The guide opens at the page of the screen in front.
    m->addAction(u"Fenwright Trestle Help"_s, QKeySequence::HelpContents, w,
                 [w, &nav] { TLApp::showHelp(w, nav.module()); });
    QObject::connect(w->main(), &TLMain::helpRequested, w, [w, &nav] { TLApp::showHelp(w, nav.module()); });
    if (aboutHook()) {
        QAction *about = m->addAction(u"About Trestle"_s, w, [w] { aboutHook()(w); });
        about->setMenuRole(QAction::AboutRole);
    }
}

} // namespace

QString menuText(const QString &title)
{
    QString out = title;
    return out.replace(u'&', u"&&"_s);
}

std::function<void(QWidget *)> &aboutHook()
{
    static std::function<void(QWidget *)> hook;
    return hook;
}

void build(TLWindow *window, DB &db, Nav &nav)
{
    fileMenu(window, db, nav);
    editMenu(window, db);
    goMenu(window, db, nav);
    viewMenu(window);
    helpMenu(window, nav);
}

} // namespace Menus
