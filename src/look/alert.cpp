#include "alert.h"

#include <QtWidgets/QMessageBox>

namespace FWAlert {

void show(QWidget *parent, const QString &title, const QString &text)
{
    QMessageBox box(QMessageBox::Warning, title, title, QMessageBox::Ok, parent);
    box.setInformativeText(text);
    box.setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
    box.exec();
}

} // namespace FWAlert
