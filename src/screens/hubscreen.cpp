#include "hubscreen.h"

#include "fieldpulse.h"
#include "figurelink.h"
#include "hubparts.h"
#include "kpitile.h"
#include "projectchart.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "catalog/moduledef.h"
#include "catalog/modules.h"
#include "catalog/roles.h"
#include "documents/printreports.h"
#include "look/fwui.h"
#include "look/icons.h"
#include "look/statuspill.h"
#include "shell/nav.h"
#include "shell/notice.h"
#include "shell/printbutton.h"
#include "shell/printcenter.h"
#include "shell/screentitle.h"
#include "store/db.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QScrollArea>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString kField = u"Field"_s;

// The hub's printout: the dashboard of what is listed at the moment of printing.
PrintJob dashboardJob(const DB &db, const Nav &nav)
{
    return PrintJob{u"Dashboard Summary"_s, [db = &db, nav = &nav]() -> std::optional<PrintSource> {
                        return PrintSource::fromHtml(PrintReports::hubHTML(*db, nav->project(*db)));
                    }};
}

} // namespace

// --- RingGauge ---

RingGauge::RingGauge(qreal size, QWidget *parent)
    : QWidget(parent)
    , m_size(size)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    Chrome::followLook(this);
}

void RingGauge::set(double fraction, const QString &label)
{
    if (fraction == m_fraction && label == m_label)
        return;
    m_fraction = fraction;
    m_label = label;
    setAccessibleName(label);
    setAccessibleDescription(percentText(fraction));
    update();
}

QString RingGauge::percentText(double fraction)
{
    const double pct = std::isfinite(fraction) ? std::max(0.0, fraction * 100.0) : 0.0;
    return QString::number(std::llround(std::min(pct, 9999.0))) + u'%';
}

QSize RingGauge::sizeHint() const
{
    const int side = FWUI::shared().px(m_size);
    return {side, side};
}

void RingGauge::paintEvent(QPaintEvent *)
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal side = std::min(width(), height());
    const qreal pen = std::max<qreal>(3, side * 0.11);
    const QRectF ring((width() - side) / 2 + pen / 2, (height() - side) / 2 + pen / 2, side - pen,
                      side - pen);
    p.setPen(QPen(t.well, pen, Qt::SolidLine, Qt::FlatCap));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(ring);
    const double f = std::isfinite(m_fraction) ? std::clamp(m_fraction, 0.0, 1.0) : 0.0;
    if (f > 0) {
        const QColor fill = m_fraction > 1.0 ? Notice::red() : t.accent;
        p.setPen(QPen(fill, pen, Qt::SolidLine, Qt::RoundCap));
        // Qt counts sixteenths of a degree, counter-clockwise from three o'clock.
        p.drawArc(ring, 90 * 16, -int(std::lround(f * 360 * 16)));
    }
    p.setPen(t.text);
    p.setFont(ui.font(m_size * 0.2, QFont::Bold));
    const QRectF inner = ring.adjusted(pen, pen, -pen, -pen);
    p.drawText(QRectF(inner.left(), inner.top(), inner.width(), inner.height() * 0.62),
               Qt::AlignHCenter | Qt::AlignBottom, percentText(m_fraction));
    p.setPen(t.dim);
    p.setFont(ui.font(m_size * 0.115, QFont::DemiBold));
    p.drawText(QRectF(inner.left(), inner.top() + inner.height() * 0.62, inner.width(), inner.height() * 0.3),
               Qt::AlignHCenter | Qt::AlignTop, m_label);
}

// --- ProjectCard ---

ProjectCard::ProjectCard(const Rec &project, const ProjectFigures &figures, bool money, QWidget *parent)
    : FWPanel(parent)
    , m_id(project.id)
    , m_gauge(new RingGauge(68, this))
    , m_name(new LookLabel({}, 14, QFont::Bold, false, this))
    , m_kind(new LookLabel({}, 11.5, QFont::Normal, true, this))
    , m_number(new LookLabel({}, 11.5, QFont::DemiBold, true, this))
    , m_status(new StatusPill({}, this))
    , m_money(new QWidget(this))
    , m_contract(new LookLabel({}, 12, QFont::DemiBold, false, m_money))
    , m_billed(new LookLabel({}, 12, QFont::DemiBold, false, m_money))
    , m_margin(new LookLabel({}, 12, QFont::DemiBold, false, m_money))
{
    // A card is a Tab stop and opens with Enter or Space, as a click does.
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    m_name->setWordWrap(true);
    m_kind->setWordWrap(true);
    auto *box = new QHBoxLayout(this);
    box->addWidget(m_gauge, 0, Qt::AlignTop);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(m_name);
    texts->addWidget(m_kind);
    auto *numberRow = new QHBoxLayout;
    numberRow->addWidget(m_number);
    numberRow->addWidget(m_status);
    numberRow->addStretch(1);
    texts->addLayout(numberRow);
    auto *grid = new QGridLayout(m_money);
    grid->setContentsMargins(0, 4, 0, 0);
    grid->setVerticalSpacing(1);
    int row = 0;
    for (auto [title, value] : {std::pair{u"Contract"_s, m_contract}, std::pair{u"Billed"_s, m_billed},
                                std::pair{u"Margin"_s, m_margin}}) {
        grid->addWidget(new LookLabel(title, 11.5, QFont::Normal, true, m_money), row, 0);
        value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(value, row, 1);
        ++row;
    }
    grid->setColumnStretch(1, 1);
    texts->addWidget(m_money);
    texts->addStretch(1);
    box->addLayout(texts, 1);
    auto margins = [this, box] {
        const FWUI &ui = FWUI::shared();
        box->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(12));
        box->setSpacing(ui.px(12));
    };
    margins();
    connect(&FWUI::shared(), &FWUI::changed, this, margins);
    present(project, figures, money);
}

double ProjectCard::scheduleFraction(const Rec &project, const QDateTime &now)
{
    const std::optional<QDate> start = DateFmt::parseIso(project.f.value(u"start"_s));
    const std::optional<QDate> end = DateFmt::parseIso(project.f.value(u"end"_s));
    if (!start || !end || !(*end > *start))
        return 0;
    const QDateTime from = start->startOfDay();
    const double span = double(from.secsTo(end->startOfDay()));
    return span > 0 ? double(from.secsTo(now)) / span : 0;
}

void ProjectCard::present(const Rec &project, const ProjectFigures &f, bool money)
{
    m_id = project.id;
    const QString name = project.f.value(u"name"_s);
    m_name->setText(name);
    setAccessibleName(name);
    QStringList kind;
    for (const QString &part : {project.f.value(u"type"_s), project.f.value(u"address"_s)})
        if (!part.isEmpty())
            kind << part;
    m_kind->setText(kind.join(u" · "_s));
    m_kind->setVisible(!kind.isEmpty());
    m_number->setText(project.f.value(u"number"_s));
    m_status->setText(project.f.value(u"status"_s));
    m_status->setVisible(!project.f.value(u"status"_s).isEmpty());
    m_money->setVisible(money);
    if (money) {
        const qint64 revised = f.contract.revised;
        m_contract->setText(Money::fmt(revised));
        m_billed->setText(Money::fmt(f.billed));
        m_margin->setText(Money::fmt(Money::sub(revised, f.budget)));
        m_gauge->set(revised != 0 ? double(f.billed) / double(revised) : 0.0, u"BILLED"_s);
    } else {
        m_contract->clear();
        m_billed->clear();
        m_margin->clear();
        m_gauge->set(scheduleFraction(project, DateFmt::now()), u"TIME"_s);
    }
}

QList<QWidget *> ProjectCard::figures() const
{
    return {m_contract, m_billed, m_margin};
}

void ProjectCard::mousePressEvent(QMouseEvent *event)
{
    // Taking the press makes the card receive the release that chooses it.
    if (event->button() == Qt::LeftButton)
        event->accept();
    else
        FWPanel::mousePressEvent(event);
}

void ProjectCard::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space: Q_EMIT chosen(m_id); return;
    default: FWPanel::keyPressEvent(event);
    }
}

void ProjectCard::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        Q_EMIT chosen(m_id);
    FWPanel::mouseReleaseEvent(event);
}

// --- AlertsPanel ---

AlertsPanel::AlertsPanel(Nav &nav, QWidget *parent)
    : FWPanel(parent)
    , m_nav(nav)
    , m_heading(new LookLabel({}, 14, QFont::Bold))
    , m_rows(new QVBoxLayout)
{
    auto *box = new QVBoxLayout(this);
    m_headingRow = new QWidget(this);
    auto *head = new QHBoxLayout(m_headingRow);
    head->setContentsMargins(0, 0, 0, 0);
    auto *icon = new QLabel(m_headingRow);
    icon->setObjectName(u"alertsIcon"_s);
    head->addWidget(icon);
    m_heading->setParent(m_headingRow);
    head->addWidget(m_heading, 1);
    box->addWidget(m_headingRow);
    box->addLayout(m_rows);
    box->addStretch(1);
    auto margins = [this, box] {
        const FWUI &ui = FWUI::shared();
        box->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(12));
        box->setSpacing(ui.px(6));
        m_rows->setSpacing(ui.px(2));
    };
    margins();
    // The rows' symbols are drawn at the zoom; the refresh after a change of look draws them again.
    connect(&FWUI::shared(), &FWUI::changed, this, [this, margins] {
        margins();
        m_shown = false;
    });
}

QColor AlertsPanel::color(AlertColor c)
{
    switch (c) {
    case AlertColor::red: return Notice::red();
    case AlertColor::orange: return Notice::orange();
    case AlertColor::yellow: return QColor(0xE3, 0xB3, 0x2B);
    case AlertColor::blue: break;
    }
    return QColor(0x4A, 0x90, 0xE2);
}

QString AlertsPanel::headingText() const
{
    return m_heading->text();
}

void AlertsPanel::setAlerts(const QList<HubAlert> &alerts)
{
    // Alert ids are new on every computation; what is shown is compared instead.
    QList<QStringList> keys;
    for (const HubAlert &a : alerts)
        keys.append({a.symbol, a.text, QString::number(int(a.color)), a.module, a.record.value_or(QString()),
                     a.project.value_or(QString())});
    const FWUI &ui = FWUI::shared();
    auto *icon = m_headingRow->findChild<QLabel *>(u"alertsIcon"_s);
    if (alerts.isEmpty()) {
        m_heading->setText(u"All clear"_s);
        icon->setPixmap(Icons::pixmap(u"checkmark.seal.fill"_s, QColor(0x3F, 0xB3, 0x7F), ui.px(16)));
    } else {
        m_heading->setText(QString::number(alerts.size()) + u" Alerts"_s);
        icon->setPixmap(Icons::pixmap(u"exclamationmark.triangle.fill"_s, Notice::orange(), ui.px(16)));
    }
    if (m_shown && keys == m_keys)
        return;
    m_shown = true;
    m_keys = keys;
    while (QLayoutItem *item = m_rows->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const HubAlert &a : alerts) {
        auto *row = new ClickRow(this);
        row->setAccessibleName(a.text);
        row->setToolTip(a.text);
        auto *line = new QHBoxLayout(row);
        line->setContentsMargins(ui.px(6), ui.px(4), ui.px(6), ui.px(4));
        line->setSpacing(ui.px(8));
        auto *symbol = new QLabel(row);
        symbol->setPixmap(Icons::pixmap(a.symbol, color(a.color), ui.px(15)));
        line->addWidget(symbol, 0, Qt::AlignTop);
        auto *text = new LookLabel(a.text, 12, QFont::Normal, false, row);
        text->setWordWrap(true);
        line->addWidget(text, 1);
        const QString module = a.module;
        const std::optional<QString> record = a.record, project = a.project;
        connect(row, &QAbstractButton::clicked, this,
                [this, module, record, project] { m_nav.open(module, record, project); });
        m_rows->addWidget(row);
    }
}

// --- HubScreen ---

HubScreen::HubScreen(const ScreenContext &ctx, QWidget *parent)
    : ShellScreen(parent)
    , m_db(ctx.db)
    , m_nav(ctx.nav)
    , m_m(ctx.module)
    , m_box(new QVBoxLayout(this))
{
    const PrintJob job = dashboardJob(m_db, m_nav);
    m_title = new ScreenTitle(m_m, {}, new PrintButton(job), this);
    m_box->addWidget(m_title);

    auto *content = new QWidget;
    auto *body = new QVBoxLayout(content);
    body->setContentsMargins(0, 0, 0, 0);
    m_tileRow = new ReflowGrid(200, content);
    QList<QWidget *> tiles;
    for (const auto &[title, symbol] :
         {std::pair{u"Revised contracts"_s, u"arrow.up.doc.fill"_s},
          std::pair{u"Pending CO exposure"_s, u"exclamationmark.triangle.fill"_s},
          std::pair{u"Billed to date"_s, u"doc.text.fill"_s},
          std::pair{u"Retainage held"_s, u"lock.doc.fill"_s},
          std::pair{u"Cost to date"_s, u"creditcard.fill"_s}}) {
        auto *tile = new KPITile(title, symbol);
        static const QString figures[] = {u"hub.revised"_s, u"hub.pending"_s, u"hub.billed"_s,
                                          u"hub.retainage"_s, u"hub.cost"_s};
        // Over what the hub lists: the chosen project, or every active one.
        FigureLink::attach(tile, m_db, m_nav, [this, name = figures[m_tiles.size()]] {
            const std::optional<Rec> chosen = m_nav.project(m_db);
            return std::optional(FigureRef{name, chosen ? chosen->id : QString(), {}});
        });
        m_tiles << tile;
        tiles << tile;
    }
    m_tileRow->setWidgets(tiles);
    body->addWidget(m_tileRow);

    auto *columns = new QHBoxLayout;
    auto *left = new QVBoxLayout;
    m_cards = new ReflowGrid(300, content);
    left->addWidget(m_cards);
    m_noProjects = new LookLabel(u"No active projects."_s, 13, QFont::Normal, true, content);
    left->addWidget(m_noProjects);
    m_chart = new ProjectChart(content);
    left->addWidget(m_chart);
    left->addStretch(1);
    columns->addLayout(left, 5);
    auto *right = new QVBoxLayout;
    m_alerts = new AlertsPanel(m_nav, content);
    right->addWidget(m_alerts);
    m_pulse = new FieldPulse(m_db, true, content);
    right->addWidget(m_pulse);
    right->addStretch(1);
    columns->addLayout(right, 3);
    body->addLayout(columns);
    m_box->addWidget(HubParts::scroller(content, this), 1);

    m_printable = new Printable(this, 0, job);
    // Gaps between the parts follow the zoom like everything else drawn.
    auto margins = [this, body, columns, left, right] {
        const FWUI &ui = FWUI::shared();
        m_box->setContentsMargins(ui.px(24), ui.px(18), ui.px(24), ui.px(6));
        m_box->setSpacing(ui.px(14));
        body->setContentsMargins(0, 0, ui.px(6), ui.px(12));
        for (QBoxLayout *l : {static_cast<QBoxLayout *>(body), static_cast<QBoxLayout *>(columns),
                              static_cast<QBoxLayout *>(left), static_cast<QBoxLayout *>(right)})
            l->setSpacing(ui.px(14));
    };
    margins();
    connect(&FWUI::shared(), &FWUI::changed, this, margins);
    refresh();
}

QList<Rec> HubScreen::listed(const DB &db, const Nav &nav)
{
    if (std::optional<Rec> chosen = nav.project(db))
        return {*chosen};
    QList<Rec> out = db.list(u"project"_s);
    out.removeIf([](const Rec &p) { return p.f.value(u"status"_s) == u"Complete"; });
    return out;
}

QList<ProjectCard *> HubScreen::cards() const
{
    QList<ProjectCard *> out;
    for (QWidget *w : m_cards->widgets())
        out << static_cast<ProjectCard *>(w);
    return out;
}

void HubScreen::refresh()
{
    const std::optional<Rec> company = m_db.company();
    const std::optional<Rec> chosen = m_nav.project(m_db);
    const QString scope = chosen ? chosen->f.value(u"name"_s) : u"all active projects"_s;
    m_title->setSubtitle((company ? company->f.value(u"name"_s) : QString()) + u" · "_s + scope);

    const bool money = m_db.role() != kField;
    const QList<Rec> projects = listed(m_db, m_nav);
    QList<ProjectFigures> figures;
    figures.reserve(projects.size());
    qint64 revised = 0, pending = 0, billed = 0, retainage = 0, cost = 0;
    for (const Rec &p : projects) {
        const ProjectFigures f = m_figures.of(m_db, p);
        revised = Money::add(revised, f.contract.revised);
        pending = Money::add(pending, f.contract.pending);
        billed = Money::add(billed, f.billed);
        retainage = Money::add(retainage, f.retainage);
        cost = Money::add(cost, f.cost);
        figures.append(f);
    }

    m_tileRow->setVisible(money);
    const qint64 sums[] = {revised, pending, billed, retainage, cost};
    for (qsizetype i = 0; i < m_tiles.size(); ++i)
        m_tiles[i]->setValue(money ? Money::fmt(sums[i], true) : QString());
    m_tiles[1]->setWarn(money && pending != 0);

    // Cards are rebuilt only when the list or the role changes; otherwise updated in place.
    QStringList key{money ? u"money"_s : u"field"_s};
    for (const Rec &p : projects)
        key << p.id;
    if (key != m_cardKey) {
        m_cardKey = key;
        QList<QWidget *> cards;
        for (qsizetype i = 0; i < projects.size(); ++i) {
            auto *card = new ProjectCard(projects[i], figures[i], money);
            connect(card, &ProjectCard::chosen, this, [this](const QString &id) { m_nav.setProjectID(id); });
            static const QString cardFigures[] = {u"contract.revised"_s, u"project.billed"_s,
                                                  u"budget.margin"_s};
            for (int k = 0; k < 3; ++k)
                FigureLink::attach(
                    card->figures().at(k), m_db, m_nav,
                    [ref = FigureRef{cardFigures[k], projects[i].id, {}}] { return std::optional(ref); });
            cards << card;
        }
        m_cards->setWidgets(cards);
    } else {
        const QList<ProjectCard *> shown = this->cards();
        for (qsizetype i = 0; i < projects.size(); ++i)
            shown[i]->present(projects[i], figures[i], money);
    }
    m_cards->setVisible(!projects.isEmpty());
    m_noProjects->setVisible(projects.isEmpty());

    const bool chart = money && !projects.isEmpty();
    m_chart->setVisible(chart);
    if (chart) {
        QList<ChartGroup> groups;
        for (qsizetype i = 0; i < projects.size(); ++i)
            groups.append({projects[i].f.value(u"name"_s), figures[i].contract.revised, figures[i].billed,
                           figures[i].cost});
        m_chart->setGroups(groups);
    }

    // An alert leads into its module, so one the role may not open is left out; this
    // also keeps the pending change orders' amounts from a field user.
    QList<HubAlert> alerts = Alerts::all(m_db, chosen ? std::optional<QString>(chosen->id) : std::nullopt);
    const QString role = m_db.role();
    alerts.removeIf([&role](const HubAlert &a) {
        const ModuleDef *m = Modules::get(a.module);
        return m && !Roles::mayOpen(role, *m);
    });
    m_alerts->setAlerts(alerts);

    QSet<QString> ids;
    for (const Rec &p : projects)
        ids.insert(p.id);
    m_pulse->refresh(ids);
}
