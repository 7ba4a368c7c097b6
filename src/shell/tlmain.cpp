#include "tlmain.h"

#include "headerbar.h"
#include "modulearea.h"
#include "modulerail.h"
#include "nav.h"
#include "recoveryscreen.h"
#include "savebanner.h"
#include "serverbar.h"
#include "sheets.h"

#include "look/applook.h"
#include "look/fwui.h"
#include "look/tones.h"
#include "store/db.h"
#include "store/server/serverlink.h"

#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>

TLMain::TLMain(DB &db, Nav &nav, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_nav(nav)
    , m_header(new HeaderBar(db, nav, this))
    , m_rail(new ModuleRail(db, nav, this))
    , m_area(new ModuleArea(db, nav, this))
    , m_banner(new SaveBanner(db, this))
{
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    box->addWidget(m_header);
    box->addWidget(m_banner);
    box->addWidget(new ServerBar(db, ServerLink::sync(), this));
    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(m_rail);
    row->addWidget(m_area, 1);
    if (!db.isOpen()) {
        // Nothing of the books can be shown or edited: only the ways back.
        m_recovery = new RecoveryScreen(db, this);
        for (QWidget *w : {static_cast<QWidget *>(m_header), static_cast<QWidget *>(m_rail),
                           static_cast<QWidget *>(m_area)})
            w->hide();
        row->addWidget(m_recovery, 1);
    }
    box->addLayout(row, 1);
    connect(m_header, &HeaderBar::helpRequested, this, &TLMain::helpRequested);
    connect(&db, &DB::changed, this, &TLMain::scheduleRefresh);
    connect(&db, &DB::selectionChanged, this, &TLMain::scheduleRefresh);
    connect(&nav, &Nav::changed, this, &TLMain::scheduleRefresh);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        applyLook();
        scheduleRefresh();
    });
    applyLook();
}

void TLMain::scheduleRefresh()
{
    if (m_pending)
        return;
    m_pending = true;
    QMetaObject::invokeMethod(this, &TLMain::refresh, Qt::QueuedConnection);
}

void TLMain::refresh()
{
    m_pending = false;
    if (m_recovery)
        return;
    ++m_refreshes;
    m_header->refresh();
    m_rail->refresh();
    m_area->refresh();
    syncSheets();
}

void TLMain::syncSheets()
{
    auto open = [this](QPointer<QDialog> &slot, bool wanted, auto make, auto clear) {
        if (wanted && !slot) {
            slot = make();
            slot->setAttribute(Qt::WA_DeleteOnClose);
            connect(slot, &QDialog::finished, this, clear);
            slot->open();
        } else if (!wanted && slot) {
            slot->close();
        }
    };
    open(
        m_projectSheet, m_nav.newProject(), [this] { return new NewProjectSheet(m_db, m_nav, window()); },
        [this] { m_nav.setNewProject(false); });
    open(
        m_companySheet, m_nav.newCompany(), [this] { return new NewCompanySheet(m_db, m_nav, window()); },
        [this] { m_nav.setNewCompany(false); });
}

void TLMain::applyLook()
{
    // Standard widgets, dialogs, menus and drop-down lists follow the finish through the
    // application's palette and font.
    AppLook::follow();
    update();
}

void TLMain::paintEvent(QPaintEvent *)
{
    // The blueprint backdrop: a deep wash with a fine and a coarse grid.
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    QLinearGradient g(0, 0, width(), height());
    g.setColorAt(0, t.base);
    g.setColorAt(1, t.deep);
    p.fillRect(rect(), g);
    const int step = std::max(6, ui.px(24));
    QColor fine = t.accent;
    fine.setAlphaF(0.05);
    QColor coarse = t.accent;
    coarse.setAlphaF(0.10);
    for (int i = 0, x = 0; x < width(); ++i, x += step) {
        p.setPen(i % 5 == 0 ? coarse : fine);
        p.drawLine(x, 0, x, height());
    }
    for (int i = 0, y = 0; y < height(); ++i, y += step) {
        p.setPen(i % 5 == 0 ? coarse : fine);
        p.drawLine(0, y, width(), y);
    }
    // The rail sits on a darker strip with a light edge.
    if (m_rail && m_rail->isVisible()) {
        const QRect r = m_rail->geometry();
        p.fillRect(r, FWTones::current().railStrip);
        QColor edge = t.metalHi;
        edge.setAlphaF(0.1);
        p.setPen(edge);
        p.drawLine(r.topRight(), r.bottomRight());
    }
}
