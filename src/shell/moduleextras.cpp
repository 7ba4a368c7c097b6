// The editor's factories and the panels shown above a record's lines.
#include "moduleextras.h"

#include "bidleveling.h"
#include "compliancebadge.h"
#include "lineseditor.h"
#include "moduleextraspanels.h"
#include "nav.h"
#include "notice.h"
#include "photostrip.h"
#include "totalsbox.h"
#include "waiverpanel.h"

#include "calc/fmt.h"
#include "calc/money.h"
#include "calc/rules.h"
#include "calc/totals.h"
#include "catalog/moduledef.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "store/db.h"
#include "workflows/estimates.h"

#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {
const QString kWarning = u"exclamationmark.triangle.fill"_s;
}

RecordPanel::RecordPanel(DB &db, const QString &recordId, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_id(recordId)
    , m_column(new QVBoxLayout(this))
{
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(FWUI::shared().px(8));
}

void RecordPanel::refresh()
{
    const Rec *rec = m_db.find(m_id);
    setVisible(rec != nullptr);
    if (rec)
        present(Rec(*rec));
}

void RecordPanel::styleLabel(QLabel *label, qreal points, bool dim)
{
    const FWUI &ui = FWUI::shared();
    label->setFont(ui.font(points));
    QPalette p = label->palette();
    p.setColor(QPalette::WindowText, dim ? ui.theme().dim : ui.theme().text);
    label->setPalette(p);
}

// --- project summary ---

ProjectSummary::ProjectSummary(DB &db, Nav &nav, const QString &projectId, QWidget *parent)
    : RecordPanel(db, projectId, parent)
    , m_totals(new TotalsBox(this))
    , m_days(new QLabel(this))
{
    auto *hub = new FWChromeButton(u"Open in Command Hub"_s, u"gauge.with.dots.needle.67percent"_s, this);
    hub->setObjectName(u"hub"_s);
    connect(hub, &QAbstractButton::clicked, this, [&nav] { nav.setModule(u"hub"_s); });
    column()->addWidget(m_totals);
    column()->addWidget(m_days);
    auto *row = new QHBoxLayout;
    row->addWidget(hub);
    row->addStretch(1);
    column()->addLayout(row);
    m_days->setObjectName(u"days"_s);
    refresh();
}

void ProjectSummary::present(const Rec &project)
{
    const Calc::ContractSummary c = contract(m_db, project);
    m_totals->setRows({{u"Original contract"_s, c.original},
                       {u"Approved changes"_s, c.approved},
                       {u"Pending changes"_s, c.pending},
                       {u"Revised contract"_s, c.revised}});
    m_totals->setFigures(m_db, {{u"contract.original"_s, project.id, {}},
                                {u"contract.approved"_s, project.id, {}},
                                {u"contract.pending"_s, project.id, {}},
                                {u"contract.revised"_s, project.id, {}}});
    m_days->setText(u"Schedule days added by approved change orders: "_s + QString::number(c.daysAdded));
    m_days->setVisible(c.daysAdded != 0);
    styleLabel(m_days, 12, true);
}

// --- compliance ---

ComplianceNotice::ComplianceNotice(DB &db, const QString &recordId, QWidget *parent)
    : RecordPanel(db, recordId, parent)
    , m_notice(new Notice({}, Notice::Tone::Error, kWarning, this))
{
    column()->addWidget(m_notice);
    refresh();
}

QString ComplianceNotice::text() const
{
    return m_notice->isHidden() ? QString() : m_notice->text();
}

void ComplianceNotice::present(const Rec &rec)
{
    const Calc::Compliance c = complianceOf(rec);
    if (c.status == u"expired"_s) {
        m_notice->setTone(Notice::Tone::Error);
        m_notice->setText(u"Expired "_s + QString::number(-c.days) +
                          u" day(s) ago. Don't let this sub on site or pay until a current certificate is on "
                          u"file."_s);
    } else if (c.status == u"expiring"_s) {
        m_notice->setTone(Notice::Tone::Warning);
        m_notice->setText(u"Expires in "_s + QString::number(c.days) +
                          u" day(s). Request a renewed certificate now."_s);
    }
    m_notice->setHidden(c.status != u"expired"_s && c.status != u"expiring"_s);
}

// --- timecard ---

TimecardHours::TimecardHours(DB &db, const QString &recordId, QWidget *parent)
    : RecordPanel(db, recordId, parent)
    , m_totals(new TotalsBox(this))
{
    column()->addWidget(m_totals);
    refresh();
}

void TimecardHours::present(const Rec &timecard)
{
    const double hours =
        Calc::shiftHours(timecard.f.value(u"in"_s), timecard.f.value(u"out"_s), timecard.i(u"break"));
    m_totals->setRows({{u"Hours"_s, Money::fromDouble(hours * double(timecard.i(u"rate")))}});
    m_totals->setOverlay(QString::asprintf("%.2f h", hours));
}

// --- unit-price item ---

UnitItemEarned::UnitItemEarned(DB &db, const QString &recordId, QWidget *parent)
    : RecordPanel(db, recordId, parent)
    , m_totals(new TotalsBox(this))
    , m_overrun(new Notice({}, Notice::Tone::Warning, kWarning, this))
{
    column()->addWidget(m_totals);
    column()->addWidget(m_overrun);
    refresh();
}

QString UnitItemEarned::overrun() const
{
    return m_overrun->isHidden() ? QString() : m_overrun->text();
}

void UnitItemEarned::present(const Rec &item)
{
    const double bidQty = item.d(u"bidQty");
    const qint64 unitPrice = item.i(u"unitPrice");
    const double done = installed(m_db, item);
    const QString unit = item.f.value(u"unit"_s);
    QString earned = u"Earned to date ("_s + Fmt::qty(done) + u' ' + unit;
    if (bidQty > 0)
        earned += u", "_s + QString::asprintf("%.1f%%", std::round(done / bidQty * 100 * 10) / 10);
    earned += u')';
    m_totals->setRows({{u"Bid amount"_s, Money::fromDouble(bidQty * double(unitPrice))},
                       {earned, Money::fromDouble(done * double(unitPrice))}});
    m_totals->setFigures(m_db, {{}, {u"unit.earned"_s, {}, item.id}});
    m_overrun->setText(u"Quantity overrun: "_s + Fmt::qty(done - bidQty) + u' ' + unit +
                       u" over the bid quantity."_s);
    m_overrun->setHidden(!(done > bidQty));
}

// --- assembly adder ---

AssemblyAdder::AssemblyAdder(DB &db, const QString &estimateId, QWidget *parent)
    : RecordPanel(db, estimateId, parent)
    , m_assembly(new QComboBox(this))
    , m_qty(new QLineEdit(this))
{
    auto *add = new FWChromeButton(u"Add"_s, u"plus"_s, this);
    auto *hint = new QLabel(QString::fromUtf16(EstimateText::kAssemblyHint), this);
    m_assembly->setObjectName(u"assembly"_s);
    m_assembly->setPlaceholderText(u"Choose…"_s);
    m_qty->setObjectName(u"qty"_s);
    m_qty->setPlaceholderText(u"Qty"_s);
    m_assembly->setAccessibleName(u"Assembly to add"_s);
    m_qty->setAccessibleName(u"Quantity of the assembly"_s);
    add->setObjectName(u"addAssembly"_s);
    hint->setWordWrap(true);
    connect(add, &QAbstractButton::clicked, this, &AssemblyAdder::addChosen);

    column()->addWidget(new FWCaption(u"Add assembly"_s, this));
    auto *row = new QHBoxLayout;
    row->addWidget(m_assembly, 1);
    row->addWidget(m_qty);
    row->addWidget(add);
    column()->addLayout(row);
    column()->addWidget(hint);
    auto restyle = [this, hint] {
        const FWUI &ui = FWUI::shared();
        m_assembly->setFont(ui.font(12.5));
        m_qty->setFont(ui.font(12.5));
        m_qty->setFixedWidth(ui.px(90));
        styleLabel(hint, 11, true);
    };
    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, restyle);
    refresh();
}

void AssemblyAdder::addChosen()
{
    const std::optional<Rec> estimate = m_db.get(m_id);
    const std::optional<Rec> assembly = m_db.get(m_assembly->currentData().toString());
    if (!estimate || !assembly)
        return;
    // "1,200" is read as 1200: the grouping is how quantities are written.
    const double qty = RecText::parseDouble(m_qty->text().remove(u',').trimmed()).value_or(0);
    addAssembly(m_db, *assembly, *estimate, std::isfinite(qty) ? qty : 0);
}

void AssemblyAdder::present(const Rec &)
{
    if (m_assembly->view()->isVisible())
        return;
    QList<std::pair<QString, QString>> options;
    m_db.visit(u"assembly"_s, {}, [&](const Rec &a) {
        options.append({a.id, a.f.value(u"name"_s) + u" (per "_s + a.f.value(u"unit"_s) + u')'});
    });
    if (options == m_options)
        return;
    const QString chosen = m_assembly->currentData().toString();
    m_options = options;
    m_assembly->clear();
    for (const auto &[id, label] : options)
        m_assembly->addItem(label, id);
    m_assembly->setCurrentIndex(m_assembly->findData(chosen));
}

// --- factories ---

PanelFactory &documentPanelFactory()
{
    static PanelFactory factory;
    return factory;
}

QWidget *makeModuleExtras(DB &db, Nav &nav, const ModuleDef &m, const QString &recordId, QWidget *parent)
{
    if (!db.find(recordId))
        return nullptr;
    if (m.id == u"projects"_s)
        return new ProjectSummary(db, nav, recordId, parent);
    if (m.id == u"waivers"_s)
        return new WaiverPanel(db, recordId, parent);
    if (m.id == u"compliance"_s)
        return new ComplianceNotice(db, recordId, parent);
    if (m.id == u"timecards"_s)
        return new TimecardHours(db, recordId, parent);
    if (m.id == u"unititems"_s)
        return new UnitItemEarned(db, recordId, parent);
    if (m.id == u"estimates"_s)
        return new AssemblyAdder(db, recordId, parent);
    if (m.id == u"documents"_s && documentPanelFactory())
        return documentPanelFactory()(db, nav, recordId, parent);
    // Photos (daily logs, punch, safety) are placed by the editor through makePhotoStrip.
    return nullptr;
}

QWidget *makeLinesEditor(DB &db, Nav &, const ModuleDef &m, const QString &recordId, QWidget *parent)
{
    if (!m.lineKind || !db.find(recordId))
        return nullptr;
    return new LinesEditor(db, recordId, *m.lineKind, m.lineFields, parent);
}

QWidget *makePhotoStrip(DB &db, const QString &recordId, QWidget *parent)
{
    if (!db.find(recordId))
        return nullptr;
    return new PhotoStrip(db, recordId, parent);
}
