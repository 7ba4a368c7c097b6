#include "savedpdf.h"

#include "look/alert.h"
#include "printsetup.h"

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

using namespace Qt::StringLiterals;

namespace SavedPdf {

std::function<void(const QString &)> &openHook()
{
    static std::function<void(const QString &)> hook;
    return hook;
}

void open(const QString &path)
{
    if (openHook())
        openHook()(path);
    else
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

bool save(QWidget *parent, const QString &path, const std::function<bool(QPageLayout::Orientation)> &write)
{
    if (path.isEmpty())
        return false;
    if (!write(PrintSetup::shared().orientation())) {
        FWAlert::show(parent, u"Export failed"_s, u"The PDF could not be written to "_s + path + u'.');
        return false;
    }
    open(path);
    return true;
}

} // namespace SavedPdf
