#include "headerbar.h"

#include "companyactions.h"
#include "connectdialog.h"
#include "nav.h"

#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "store/db.h"
#include "store/server/pg.h"
#include "store/server/serverlink.h"
#include "store/server/serversync.h"

#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>

using namespace Qt::StringLiterals;

HeaderMenuButton::HeaderMenuButton(const QString &caption, const QString &symbol, QMenu *menu,
                                   QWidget *parent)
    : QAbstractButton(parent)
    , m_caption(caption)
    , m_symbol(symbol)
    , m_menu(menu)
{
    nameForReader();
    setCursor(Qt::PointingHandCursor);
    // The value is elided, so at large zooms the menus give up width rather than widen the window.
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    Chrome::followLook(this);
    connect(this, &QAbstractButton::pressed, this, [this] {
        m_menu->popup(mapToGlobal(QPoint(0, height())));
        setDown(false);
    });
}

void HeaderMenuButton::setCaption(const QString &caption)
{
    if (caption == m_caption)
        return;
    m_caption = caption;
    nameForReader();
    updateGeometry();
    update();
}

void HeaderMenuButton::setValue(const QString &value)
{
    if (value == text())
        return;
    setText(value);
    nameForReader();
    updateGeometry();
    update();
}

void HeaderMenuButton::nameForReader()
{
    // The face may elide the value; a reader hears what is chosen in full.
    setAccessibleName(text().isEmpty() ? m_caption : m_caption + u": "_s + text());
}

void HeaderMenuButton::setCompact(bool compact)
{
    m_compact = compact;
    updateGeometry();
    update();
}

QSize HeaderMenuButton::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    const int textW = std::min(QFontMetrics(ui.font(13, QFont::DemiBold)).horizontalAdvance(text()),
                               ui.px(m_compact ? 130 : 220));
    const int captionW = QFontMetrics(ui.font(9.5, QFont::DemiBold)).horizontalAdvance(m_caption.toUpper());
    const int icon = m_symbol.isEmpty() ? 0 : ui.px(22);
    return {ui.px(14) + icon + std::max(textW, m_compact ? 0 : captionW) + ui.px(26), ui.px(40)};
}

QSize HeaderMenuButton::minimumSizeHint() const
{
    const FWUI &ui = FWUI::shared();
    const int icon = m_symbol.isEmpty() ? 0 : ui.px(22);
    return {ui.px(14) + icon + ui.px(48) + ui.px(26), ui.px(40)};
}

void HeaderMenuButton::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    p.setBrush(t.well);
    QColor edge = t.metalMid;
    edge.setAlphaF(0.5);
    p.setPen(QPen(edge, 1));
    p.drawRoundedRect(r, ui.s(9), ui.s(9));
    int x = ui.px(8);
    if (!m_symbol.isEmpty()) {
        const int icon = ui.px(18);
        p.drawPixmap(x, (height() - icon) / 2, Icons::pixmap(m_symbol, t.accent, icon));
        x += ui.px(22) + ui.px(2);
    }
    const int right = width() - ui.px(20);
    const QFont valueFont = ui.font(13, QFont::DemiBold);
    if (m_compact) {
        p.setFont(valueFont);
        p.setPen(t.text);
        p.drawText(QRect(x, 0, right - x, height()), Qt::AlignVCenter,
                   p.fontMetrics().elidedText(text(), Qt::ElideRight, right - x));
    } else {
        p.setFont(ui.font(9.5, QFont::DemiBold));
        p.setPen(t.dim);
        p.drawText(QRect(x, ui.px(4), right - x, ui.px(14)), Qt::AlignVCenter, m_caption.toUpper());
        p.setFont(valueFont);
        p.setPen(t.text);
        p.drawText(QRect(x, ui.px(17), right - x, ui.px(18)), Qt::AlignVCenter,
                   p.fontMetrics().elidedText(text(), Qt::ElideRight, right - x));
    }
    const int chevron = ui.px(12);
    p.drawPixmap(width() - ui.px(16), (height() - chevron) / 2,
                 Icons::pixmap(u"chevron.down"_s, t.dim, chevron));
}

HeaderBar::HeaderBar(DB &db, Nav &nav, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_nav(nav)
    , m_companyMenu(new QMenu(this))
    , m_projectMenu(new QMenu(this))
    , m_userMenu(new QMenu(this))
    , m_themeMenu(new QMenu(this))
    , m_company(new HeaderMenuButton(u"Company"_s, u"building.columns.fill"_s, m_companyMenu, this))
    , m_project(new HeaderMenuButton(u"Project"_s, u"building.2.fill"_s, m_projectMenu, this))
    , m_user(new HeaderMenuButton(u"User"_s, u"person.crop.circle.fill"_s, m_userMenu, this))
    , m_theme(new FWChromeButton(QString(), u"paintpalette.fill"_s, this))
    , m_zoomOut(new FWOrbButton(u"minus.magnifyingglass"_s, u"Zoom out (Ctrl+−)"_s, this))
    , m_zoomIn(new FWOrbButton(u"plus.magnifyingglass"_s, u"Zoom in (Ctrl+=)"_s, this))
    , m_zoom(new QLabel(this))
    , m_help(new FWOrbButton(u"questionmark.circle"_s, u"Fenwright Trestle Help"_s, this))
    , m_brand(new QLabel(u"TRESTLE"_s, this))
    , m_server(new QLabel(this))
{
    auto *row = new QHBoxLayout(this);
    row->addWidget(m_brand);
    row->addWidget(m_company);
    row->addWidget(m_project);
    row->addWidget(m_user);
    row->addStretch(1);
    row->addWidget(m_server);
    row->addWidget(m_theme);
    row->addWidget(m_zoomOut);
    row->addWidget(m_zoom);
    row->addWidget(m_zoomIn);
    row->addWidget(m_help);
    m_theme->setToolTip(u"Theme"_s);
    m_zoom->setToolTip(u"Interface zoom"_s);
    for (QMenu *menu : {m_companyMenu, m_projectMenu, m_userMenu})
        connect(menu, &QMenu::aboutToShow, this, &HeaderBar::rebuildMenus);
    m_server->setObjectName(u"serverState"_s);
    if (ServerSync *sync = ServerLink::sync())
        connect(sync, &ServerSync::stateChanged, this, &HeaderBar::showServer);
    showServer();
    FWUI &ui = FWUI::shared();
    for (const FWTheme &t : FWTheme::all()) {
        const QString id = t.id;
        m_themeMenu->addAction(t.name, this, [id] { FWUI::shared().setTheme(id); });
    }
    connect(m_theme, &QAbstractButton::clicked, this,
            [this] { m_themeMenu->popup(m_theme->mapToGlobal(QPoint(0, m_theme->height()))); });
    connect(m_zoomIn, &QAbstractButton::clicked, &ui, &FWUI::zoomIn);
    connect(m_zoomOut, &QAbstractButton::clicked, &ui, &FWUI::zoomOut);
    connect(m_help, &QAbstractButton::clicked, this, &HeaderBar::helpRequested);
    connect(&ui, &FWUI::changed, this, &HeaderBar::restyle);
    restyle();
    rebuildMenus();
    refresh();
}

void HeaderBar::chooseCompany(DB &db, Nav &nav, const QString &id)
{
    db.setCompanyID(id);
    const QList<Rec> users = db.list(u"user"_s, {.company = id});
    db.setUserID(users.isEmpty() ? QString() : users.first().id);
    nav.setProjectID({});
}

void HeaderBar::rebuildMenus()
{
    m_companyMenu->clear();
    for (const Rec &c : m_db.list(u"company"_s)) {
        const QString id = c.id;
        m_companyMenu->addAction(c.f[u"name"], this, [this, id] { chooseCompany(m_db, m_nav, id); });
    }
    m_companyMenu->addSeparator();
    m_companyMenu->addAction(u"New Company…"_s, this, [this] { m_nav.setNewCompany(true); });
    const bool some = m_db.company().has_value() && !m_db.readOnly();
    m_companyMenu->addAction(u"Rename…"_s, this, [this] { CompanyActions::askRename(this, m_db); })
        ->setEnabled(some);
    m_companyMenu->addAction(u"Remove…"_s, this, [this] { CompanyActions::askRemove(this, m_db, m_nav); })
        ->setEnabled(some);

    m_projectMenu->clear();
    m_projectMenu->addAction(u"All projects"_s, this, [this] { m_nav.setProjectID({}); });
    m_projectMenu->addSeparator();
    for (const Rec &p : m_db.list(u"project"_s)) {
        const QString id = p.id;
        m_projectMenu->addAction(p.f[u"number"] + u' ' + p.f[u"name"], this,
                                 [this, id] { m_nav.setProjectID(id); });
    }
    m_projectMenu->addSeparator();
    m_projectMenu->addAction(u"New Project…"_s, this, [this] { m_nav.setNewProject(true); });

    m_userMenu->clear();
    // On a company server the person is who signed in, and the server says their role.
    if (ServerSync *sync = ServerLink::sync(); sync && m_db.roleFromServer()) {
        m_userMenu->addAction(u"Signed in as "_s + sync->login())->setEnabled(false);
        m_userMenu->addSeparator();
        m_userMenu->addAction(u"Sign In As…"_s, this, [this] { ServerActions::signInAs(window()); });
        m_userMenu->addAction(u"Sign Out"_s, this, [] { ServerActions::signOut(); });
        return;
    }
    for (const Rec &u : m_db.list(u"user"_s)) {
        const QString id = u.id;
        m_userMenu->addAction(u.f[u"name"] + u" — "_s + u.f[u"role"], this,
                              [this, id] { m_db.setUserID(id); });
    }
}

void HeaderBar::refresh()
{
    const std::optional<Rec> company = m_db.company();
    m_company->setValue(company ? company->f[u"name"] : u"No company"_s);
    const std::optional<Rec> project = m_nav.project(m_db);
    m_project->setValue(project ? project->f[u"number"] + u' ' + project->f[u"name"] : u"All projects"_s);
    const std::optional<Rec> user = m_db.user();
    m_user->setValue(user ? user->f[u"name"] + u" — "_s + m_db.role() : m_db.role());
    m_user->setCaption(m_db.roleFromServer() ? u"Signed in"_s : u"User"_s);
}

void HeaderBar::showServer()
{
    ServerSync *sync = ServerLink::sync();
    m_server->setVisible(sync != nullptr);
    if (!sync)
        return;
    const FWUI &ui = FWUI::shared();
    const qsizetype waiting = sync->waiting();
    QString text;
    switch (sync->state()) {
    case ServerSync::State::Online:
        text = waiting > 0 ? u"Sending "_s + QString::number(waiting) + u"…"_s : u"Connected"_s;
        break;
    case ServerSync::State::Offline:
        text = waiting > 0 ? u"Offline, "_s + QString::number(waiting) + u" waiting"_s : u"Offline"_s;
        break;
    case ServerSync::State::Connecting: text = u"Reconnecting…"_s; break;
    }
    m_server->setFont(ui.font(11, QFont::DemiBold));
    m_server->setText(text);
    m_server->setToolTip(Pg::describe(sync->conninfo()) +
                         (sync->problem().isEmpty() ? QString() : u"\n"_s + sync->problem()));
    m_server->setAccessibleName(u"Company server: "_s + text);
}

void HeaderBar::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    auto *row = static_cast<QHBoxLayout *>(layout());
    row->setContentsMargins(ui.px(14), ui.px(8), ui.px(14), ui.px(8));
    row->setSpacing(ui.px(8));
    QFont brand = ui.font(15, QFont::Black);
    brand.setLetterSpacing(QFont::AbsoluteSpacing, ui.s(3));
    m_brand->setFont(brand);
    m_zoom->setFont(ui.font(12, QFont::DemiBold));
    m_zoom->setText(ui.percent());
    QPalette p = palette();
    p.setColor(QPalette::WindowText, t.accent);
    m_brand->setPalette(p);
    p.setColor(QPalette::WindowText, t.dim);
    m_zoom->setPalette(p);
    m_theme->setText(t.name);
    setFixedHeight(ui.px(56));
    // Decided before the next layout: the wide form's minimum at a large zoom would
    // otherwise widen the window before the first resize could make it compact.
    fitToWidth();
}

void HeaderBar::fitToWidth()
{
    // Below this width the menus drop their captions and the theme its name.
    const bool compact = width() < FWUI::shared().px(1180);
    for (HeaderMenuButton *b : {m_company, m_project, m_user})
        b->setCompact(compact);
    m_theme->setCompact(compact);
    m_brand->setVisible(!compact);
}

void HeaderBar::resizeEvent(QResizeEvent *e)
{
    fitToWidth();
    QWidget::resizeEvent(e);
}

void HeaderBar::paintEvent(QPaintEvent *)
{
    const FWTheme &t = FWUI::shared().theme();
    QPainter p(this);
    QLinearGradient g(0, 0, 0, height());
    g.setColorAt(0, t.raised);
    g.setColorAt(1, t.panel);
    p.fillRect(rect(), g);
    QColor line = t.metalHi;
    line.setAlphaF(0.18);
    p.setPen(line);
    p.drawLine(0, 0, width(), 0);
    p.setPen(t.deep);
    p.drawLine(0, height() - 1, width(), height() - 1);
}
