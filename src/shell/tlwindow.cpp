#include "tlwindow.h"

#include "focuscycle.h"
#include "importdialog.h"
#include "menus.h"
#include "tlmain.h"

#include "calc/datefmt.h"
#include "look/alert.h"
#include "store/db.h"
#include "store/filewrites.h"

#include <QtCore/QDir>
#include <QtCore/QMimeData>
#include <QtCore/QSettings>
#include <QtCore/QTimer>
#include <QtGui/QCloseEvent>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

using namespace Qt::StringLiterals;

namespace {
const QString geometryKey = u"window/main/geometry"_s;
}

TLWindow::TLWindow(DB &db, Nav &nav, QWidget *parent)
    : QMainWindow(parent)
    , m_db(db)
    , m_main(new TLMain(db, nav, this))
{
    setObjectName(u"main"_s);
    setWindowTitle(u"Fenwright Trestle"_s);
    setCentralWidget(m_main);
    Menus::build(this, db, nav);
    FocusCycle::install(this, m_main);
    setAcceptDrops(true);
    const QByteArray geometry = QSettings(u"Fenwright"_s, u"Trestle"_s).value(geometryKey).toByteArray();
    if (geometry.isEmpty() || !restoreGeometry(geometry))
        resize(1500, 940);
}

void TLWindow::dragEnterEvent(QDragEnterEvent *e)
{
    if (m_db.isOpen() && !ImportDialog::droppedPath(e->mimeData()).isEmpty())
        e->acceptProposedAction();
}

void TLWindow::dropEvent(QDropEvent *e)
{
    const QString path = ImportDialog::droppedPath(e->mimeData());
    if (path.isEmpty())
        return;
    e->acceptProposedAction();
    // After the drop returns, so the file manager is not kept waiting by the dialog.
    QTimer::singleShot(0, this, [this, path] { ImportDialog::run(this, m_db, path); });
}

TLWindow::AskUnsaved &TLWindow::askUnsavedHook()
{
    static AskUnsaved hook;
    return hook;
}

void TLWindow::bringToFront()
{
    setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
}

namespace {

TLWindow::UnsavedAnswer askWithDialogs(QWidget *parent, qsizetype count, const QString &cause)
{
    QMessageBox box(QMessageBox::Warning, u"Changes not saved"_s,
                    count == 1 ? u"1 change could not be saved."_s
                               : QString::number(count) + u" changes could not be saved."_s,
                    QMessageBox::NoButton, parent);
    box.setInformativeText(u"Trestle could not write them because "_s + cause +
                           u". Fix that (free some disk space, for example) and choose Try Again, or save "
                           u"them to a file somewhere else so that nothing is lost."_s);
    QPushButton *retry = box.addButton(u"Try Again"_s, QMessageBox::AcceptRole);
    QPushButton *file = box.addButton(u"Save to a File…"_s, QMessageBox::ActionRole);
    box.addButton(u"Keep Trestle Open"_s, QMessageBox::RejectRole);
    box.setDefaultButton(retry);
    box.exec();
    TLWindow::UnsavedAnswer answer;
    if (box.clickedButton() == retry) {
        answer.choice = TLWindow::UnsavedAnswer::TryAgain;
    } else if (box.clickedButton() == file) {
        answer.choice = TLWindow::UnsavedAnswer::SaveToFile;
        answer.file =
            QFileDialog::getSaveFileName(parent, u"Save Unsaved Changes"_s,
                                         QDir::home().filePath(u"Trestle unsaved changes "_s +
                                                               DateFmt::iso(DateFmt::today()) + u".json"_s),
                                         u"Trestle changes (*.json)"_s);
    }
    return answer;
}

} // namespace

bool TLWindow::settleUnsaved()
{
    // Records and files kept outside the store (a marked-up plan sheet) wait alike.
    FileWrites &files = FileWrites::shared();
    const auto waiting = [&] { return m_db.unsavedCount() + files.count(); };
    const auto retry = [&] {
        const bool records = m_db.retryUnsaved();
        return files.retry() && records;
    };
    if (waiting() == 0 || retry())
        return true;
    for (;;) {
        const QString cause = m_db.unsavedCount() > 0 ? m_db.unsavedCause() : files.cause();
        const UnsavedAnswer a = askUnsavedHook() ? askUnsavedHook()(this, waiting(), cause)
                                                 : askWithDialogs(this, waiting(), cause);
        if (a.choice == UnsavedAnswer::TryAgain) {
            if (retry())
                return true;
        } else if (a.choice == UnsavedAnswer::SaveToFile) {
            if (a.file.isEmpty())
                continue; // the file dialog was cancelled: ask again
            // The records go into the file, the waiting files beside it.
            QString error;
            if ((m_db.unsavedCount() == 0 || m_db.saveUnsavedTo(a.file, &error)) &&
                files.saveCopiesBeside(a.file, &error))
                return true;
            FWAlert::show(this, u"Could not save the changes"_s,
                          u"Trestle could not write "_s + QDir::toNativeSeparators(a.file) + u": "_s + error);
        } else {
            return false;
        }
    }
}

void TLWindow::closeEvent(QCloseEvent *e)
{
    if (!settleUnsaved()) {
        e->ignore();
        return;
    }
    QSettings(u"Fenwright"_s, u"Trestle"_s).setValue(geometryKey, saveGeometry());
    QMainWindow::closeEvent(e);
}
