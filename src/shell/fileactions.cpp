#include "fileactions.h"

#include "calc/datefmt.h"
#include "documents/printlogo.h"
#include "interchange/backup.h"
#include "look/alert.h"
#include "store/db.h"
#include "store/recovery.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QUrl>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QProgressDialog>

using namespace Qt::StringLiterals;

namespace FileActions {

namespace {

// A progress dialog that the archive job reports to; Cancel stops the job.
struct Progress
{
    QProgressDialog dialog;
    Progress(QWidget *parent, const QString &label)
        : dialog(label, u"Cancel"_s, 0, 1000, parent)
    {
        dialog.setWindowModality(Qt::WindowModal);
        dialog.setMinimumDuration(300);
        dialog.setValue(0);
    }
    Backup::Progress report()
    {
        return [this](qint64 done, qint64 total) {
            dialog.setValue(total > 0 ? int(std::min<qint64>(1000, done * 1000 / total)) : 0);
            QApplication::processEvents();
            return !dialog.wasCanceled();
        };
    }
};

} // namespace

void backupAll(QWidget *parent, DB &db)
{
    const QString proposed =
        QDir::home().filePath(u"Trestle Backup "_s + DateFmt::iso(DateFmt::today()) + u".zip"_s);
    const QString path = saveFileHook() ? saveFileHook()(parent, u"Back Up Everything"_s, proposed)
                                        : QFileDialog::getSaveFileName(parent, u"Back Up Everything"_s,
                                                                       proposed, u"Zip archives (*.zip)"_s);
    if (path.isEmpty())
        return;
    Backup::Result result;
    {
        Progress progress(parent, u"Backing up every company…"_s);
        result = Backup::backup(db, path, progress.report());
    }
    if (result.ok)
        reveal(path); // the new zip, selected in the file manager
    else if (!result.title.isEmpty())
        FWAlert::show(parent, result.title, result.message);
}

void restore(QWidget *parent, DB &db)
{
    QMessageBox ask(QMessageBox::Warning, u"Restore from a backup?"_s, u"Restore from a backup?"_s,
                    QMessageBox::NoButton, parent);
    ask.setInformativeText(u"This replaces ALL companies and data on this computer with the backup. "
                           u"The app quits when it's done; open it again."_s);
    QPushButton *choose = ask.addButton(u"Choose Backup…"_s, QMessageBox::AcceptRole);
    ask.addButton(u"Cancel"_s, QMessageBox::RejectRole);
    ask.exec();
    if (ask.clickedButton() != choose)
        return;
    const QString zip = QFileDialog::getOpenFileName(parent, u"Restore From Backup"_s, QDir::homePath(),
                                                     u"Zip archives (*.zip)"_s);
    if (zip.isEmpty())
        return;
    Backup::Result result;
    {
        Progress progress(parent, u"Restoring…"_s);
        result = Backup::restore(zip, DB::appFolder(), progress.report());
    }
    if (result.ok) {
        // The store still points at the folder that was moved aside: nothing may be written now.
        Q_UNUSED(db);
        QApplication::exit(0);
        return;
    }
    if (!result.title.isEmpty())
        FWAlert::show(parent, result.title, result.message);
}

void exportCSV(QWidget *parent, DB &db)
{
    QFileDialog dialog(parent, u"Export Company as CSV Folder"_s, QDir::homePath());
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setLabelText(QFileDialog::Accept, u"Export Here"_s);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    const ExportResult result = Backup::exportCSV(db, dialog.selectedFiles().first());
    if (!result.folder.isEmpty())
        reveal(result.folder);
}

SaveFile &saveFileHook()
{
    static SaveFile hook;
    return hook;
}

OpenFile &openFileHook()
{
    static OpenFile hook;
    return hook;
}

void chooseLogo(QWidget *parent, DB &db)
{
    const QString message = PrintLogo::kChooseMessage.toString();
    const QString filter =
        u"Images and PDF (*.png *.jpg *.jpeg *.tif *.tiff *.heic *.heif *.pdf *.svg *.gif *.bmp)"_s;
    const QString path = openFileHook()
                             ? openFileHook()(parent, message, filter)
                             : QFileDialog::getOpenFileName(parent, message, QDir::homePath(), filter);
    if (path.isEmpty())
        return;
    if (!PrintLogo::install(db, path))
        FWAlert::show(parent, PrintLogo::kUnreadableTitle.toString(), PrintLogo::kUnreadableText.toString());
}

std::function<void(const QString &)> &revealHook()
{
    static std::function<void(const QString &)> hook;
    return hook;
}

void loadUnsaved(QWidget *parent, DB &db)
{
    const QString title = u"Load Unsaved Changes"_s;
    const QString filter = u"Trestle changes (*.json)"_s;
    const QString path = openFileHook()
                             ? openFileHook()(parent, title, filter)
                             : QFileDialog::getOpenFileName(parent, title, QDir::homePath(), filter);
    if (path.isEmpty())
        return;
    QString error;
    const auto result = Recovery::apply(db, path, &error);
    if (!result) {
        FWAlert::show(parent, u"Could not load the changes"_s, error);
        return;
    }
    QString text = Recovery::summary(*result) + u"."_s;
    // The banner says so too; the summary must not sound like they are on disk.
    if (db.unsavedCount() > 0)
        text += u" They could not be written yet ("_s + db.unsavedCause() + u"); Trestle keeps trying."_s;
    FWAlert::show(parent, u"Unsaved changes loaded"_s, text);
}

void reveal(const QString &path)
{
    if (revealHook()) {
        revealHook()(path);
        return;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 3000);
    if (reply.type() != QDBusMessage::ReplyMessage)
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

} // namespace FileActions
