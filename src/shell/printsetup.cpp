#include "printsetup.h"

#include <QtPrintSupport/QPageSetupDialog>
#include <QtPrintSupport/QPrinter>

namespace PrintSetup {

namespace {

QPageLayout &layout()
{
    static QPageLayout l(QPageSize(QPageSize::Letter), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0),
                         QPageLayout::Point);
    return l;
}

// Whatever a dialog did, margins go back to zero.
QPageLayout bare(QPageLayout l)
{
    l.setMinimumMargins(QMarginsF(0, 0, 0, 0));
    l.setMargins(QMarginsF(0, 0, 0, 0));
    return l;
}

} // namespace

QPageLayout shared()
{
    return layout();
}

QPageLayout info(std::optional<bool> landscape)
{
    QPageLayout l = layout();
    if (landscape)
        l.setOrientation(*landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    return bare(l);
}

void setShared(const QPageLayout &l)
{
    layout() = bare(QPageLayout(l.pageSize(), l.orientation(), QMarginsF(0, 0, 0, 0), QPageLayout::Point));
}

void pageSetup(QWidget *parent)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageLayout(layout());
    QPageSetupDialog dialog(&printer, parent);
    dialog.setWindowModality(Qt::WindowModal);
    if (dialog.exec() == QDialog::Accepted)
        setShared(printer.pageLayout());
}

} // namespace PrintSetup
