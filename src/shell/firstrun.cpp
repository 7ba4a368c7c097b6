#include "firstrun.h"

#include "connectdialog.h"
#include "nav.h"
#include "tlapp.h"

#include "look/buttons.h"
#include "look/fwui.h"
#include "store/db.h"
#include "store/server/serverlink.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

FirstRunSheet::FirstRunSheet(DB &db, Nav &nav, QWidget *parent)
    : QDialog(parent)
    , m_db(db)
    , m_nav(nav)
{
    const FWUI &ui = FWUI::shared();
    setWindowTitle(u"Welcome to Trestle"_s);
    setWindowModality(Qt::WindowModal);
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(ui.px(22), ui.px(20), ui.px(22), ui.px(18));
    box->setSpacing(ui.px(12));
    auto *title = new QLabel(u"Welcome to Trestle"_s, this);
    title->setFont(ui.font(18, QFont::Bold));
    box->addWidget(title);
    auto *text = new QLabel(u"Start with your own company, or look around the sample company first; "
                            u"it stays apart from yours and can be removed at any time."_s,
                            this);
    text->setWordWrap(true);
    text->setFont(ui.font(12.5));
    box->addWidget(text);
    auto *own = new FWChromeButton(u"Start My Company…"_s, u"building.columns.fill"_s, this);
    own->setObjectName(u"startOwn"_s);
    own->setProminent(true);
    auto *sample = new FWChromeButton(u"Open the Sample Company"_s, u"building.2.fill"_s, this);
    sample->setObjectName(u"openSample"_s);
    auto *server = new FWChromeButton(u"Connect to a Company Server…"_s, u"externaldrive.fill"_s, this);
    server->setObjectName(u"connect"_s);
    for (FWChromeButton *b : {own, sample, server})
        box->addWidget(b);
    connect(own, &QAbstractButton::clicked, this, &FirstRunSheet::startOwn);
    connect(sample, &QAbstractButton::clicked, this, &FirstRunSheet::openSample);
    connect(server, &QAbstractButton::clicked, this, [this] {
        accept();
        ServerActions::connectToServer(parentWidget());
    });
    // Closed without a choice, the window still needs a company: the New Company sheet asks.
    connect(this, &QDialog::rejected, this, [this] {
        if (m_db.count(u"company"_s) == 0)
            m_nav.setNewCompany(true);
    });
    own->setFocus();
    setMinimumWidth(ui.px(440));
}

bool FirstRunSheet::wanted(const DB &db)
{
    return db.isOpen() && !db.readOnly() && db.count(u"company"_s) == 0 && !ServerLink::isConnected();
}

void FirstRunSheet::startOwn()
{
    accept();
    m_nav.setNewCompany(true);
}

void FirstRunSheet::openSample()
{
    TLApp::loadSample(m_db);
    m_nav.setProjectID({});
    m_nav.setModule(u"hub"_s);
    accept();
}
