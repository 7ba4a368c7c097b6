#include "savedpdf.h"

#include "fileactions.h"
#include "printsetup.h"

#include "look/alert.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

using namespace Qt::StringLiterals;

namespace SavedPdf {

namespace {
// Says where the file went and offers to open it or show it, without holding
// up the screen it was saved from.
void announce(QWidget *parent, const QString &path)
{
    const QFileInfo file(path);
    auto *box = new QMessageBox(QMessageBox::Information, u"PDF saved"_s,
                                u"Saved \u201C"_s + file.fileName() + u"\u201D in "_s +
                                    QDir::toNativeSeparators(file.absolutePath()) + u'.',
                                QMessageBox::Close, parent);
    box->setObjectName(QString::fromUtf16(kSavedMessage));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::NonModal);
    QPushButton *openButton = box->addButton(u"Open"_s, QMessageBox::AcceptRole);
    QPushButton *showButton = box->addButton(u"Show in Folder"_s, QMessageBox::ActionRole);
    box->setDefaultButton(openButton);
    QPointer<QWidget> over = parent;
    QObject::connect(box, &QMessageBox::buttonClicked, box, [=](QAbstractButton *clicked) {
        if (clicked == openButton)
            open(path, over);
        else if (clicked == showButton)
            FileActions::reveal(path);
    });
    box->show();
}
} // namespace

std::function<void(const QString &)> &openHook()
{
    static std::function<void(const QString &)> hook;
    return hook;
}

bool open(const QString &path, QWidget *parent)
{
    if (openHook()) {
        openHook()(path);
        return true;
    }
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        return true;
    FWAlert::show(parent, u"No PDF viewer"_s,
                  u"No program to show PDF files could be started. The file is saved at "_s +
                      QDir::toNativeSeparators(path) + u'.');
    return false;
}

bool save(QWidget *parent, const QString &path, const std::function<bool(QPageLayout::Orientation)> &write)
{
    if (path.isEmpty())
        return false;
    if (!write(PrintSetup::shared().orientation())) {
        FWAlert::show(parent, u"Export failed"_s, u"The PDF could not be written to "_s + path + u'.');
        return false;
    }
    announce(parent, path);
    return true;
}

} // namespace SavedPdf
