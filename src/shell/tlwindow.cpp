#include "tlwindow.h"

#include "menus.h"
#include "tlmain.h"

#include <QtCore/QSettings>
#include <QtGui/QCloseEvent>

using namespace Qt::StringLiterals;

namespace {
const QString geometryKey = u"window/main/geometry"_s;
}

TLWindow::TLWindow(DB &db, Nav &nav, QWidget *parent)
    : QMainWindow(parent)
    , m_main(new TLMain(db, nav, this))
{
    setObjectName(u"main"_s);
    setWindowTitle(u"Fenwright Trestle"_s);
    setCentralWidget(m_main);
    Menus::build(this, db, nav);
    const QByteArray geometry = QSettings(u"Fenwright"_s, u"Trestle"_s).value(geometryKey).toByteArray();
    if (geometry.isEmpty() || !restoreGeometry(geometry))
        resize(1500, 940);
}

void TLWindow::closeEvent(QCloseEvent *e)
{
    QSettings(u"Fenwright"_s, u"Trestle"_s).setValue(geometryKey, saveGeometry());
    QMainWindow::closeEvent(e);
}
