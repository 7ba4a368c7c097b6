// The panels shown below a record's lines: totals and the buttons that act on them.
#include "moduleextras.h"
#include "savedpdf.h"

#include "bidleveling.h"
#include "moduleextraspanels.h"
#include "nav.h"
#include "totalsbox.h"

#include "calc/datefmt.h"
#include "calc/money.h"
#include "calc/totals.h"
#include "catalog/moduledef.h"
#include "documents/pdfwrite.h"
#include "look/buttons.h"
#include "store/db.h"
#include "workflows/changeorders.h"
#include "workflows/estimates.h"

#include <QtCore/QStandardPaths>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace {

const QStringList kCOStatuses = {u"approved"_s, u"pending"_s, u"rejected"_s, u"void"_s};

QList<TotalsBox::Row> invoiceRows(const DB &db, const Rec &invoice)
{
    const Calc::InvoiceTotals t = invoiceTotals(db, invoice);
    // Retainage is withheld, so it shows as a deduction and the column adds up.
    return {{u"Subtotal"_s, t.subtotal},
            {u"Tax "_s + invoice.f.value(u"tax"_s) + u'%', t.tax},
            {u"Retainage "_s + invoice.f.value(u"ret"_s) + u'%', Money::sub(0, t.retainage)},
            {u"Amount due"_s, t.due}};
}

QList<TotalsBox::Row> poRows(const DB &db, const Rec &po)
{
    return {{u"PO total"_s, poTotal(db, po)}};
}

QList<TotalsBox::Row> assemblyRows(const DB &db, const Rec &assembly)
{
    qint64 cost = 0;
    db.visit(u"asm_line"_s, {.parent = assembly.id}, [&](const Rec &line) {
        cost = Money::add(cost, Calc::lineAmount({line.d(u"qtyPer"), line.i(u"unitCost")}));
    });
    return {{u"Cost per "_s + assembly.f.value(u"unit"_s), cost}};
}

} // namespace

// --- estimate ---

EstimateTotalsPanel::EstimateTotalsPanel(DB &db, Nav &nav, const QString &estimateId, QWidget *parent)
    : RecordPanel(db, estimateId, parent)
    , m_totals(new TotalsBox(this))
    , m_note(new QLabel(this))
{
    auto *pdf = new FWChromeButton(u"Proposal PDF"_s, u"doc.richtext.fill"_s, this);
    auto *budget = new FWChromeButton(u"Use as Project Budget"_s, u"arrow.right.doc.on.clipboard"_s, this);
    pdf->setObjectName(u"proposal"_s);
    budget->setObjectName(u"useAsBudget"_s);
    budget->setToolTip(QString::fromUtf16(EstimateText::kUseAsBudgetHelp));
    connect(pdf, &QAbstractButton::clicked, this, &EstimateTotalsPanel::saveProposal);
    connect(budget, &QAbstractButton::clicked, this, [this, &nav] {
        const std::optional<Rec> estimate = m_db.get(m_id);
        if (!estimate)
            return;
        useEstimateAsBudget(m_db, *estimate);
        nav.setModule(u"budget"_s);
    });
    column()->addWidget(m_totals);
    m_note->setObjectName(u"note"_s);
    m_note->setWordWrap(true);
    m_note->setText(QString::fromUtf16(EstimateText::kTotalsExplained));
    column()->addWidget(m_note);
    auto *row = new QHBoxLayout;
    row->addWidget(pdf);
    row->addWidget(budget);
    row->addStretch(1);
    column()->addLayout(row);
    refresh();
}

QString EstimateTotalsPanel::proposalFileName(const Rec &estimate)
{
    QStringList parts{u"Proposal"_s};
    for (const QString &part : {estimate.f.value(u"number"_s), estimate.f.value(u"title"_s)})
        if (!part.trimmed().isEmpty())
            parts << part.trimmed();
    // A slash would make a folder of part of the name.
    return parts.join(u' ').replace(u'/', u'-') + u".pdf"_s;
}

void EstimateTotalsPanel::saveProposal()
{
    const std::optional<Rec> estimate = m_db.get(m_id);
    if (!estimate)
        return;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString path = QFileDialog::getSaveFileName(
        this, u"Proposal PDF"_s, folder + u'/' + proposalFileName(*estimate), u"PDF documents (*.pdf)"_s);
    SavedPdf::save(this, path,
                   [&](QPageLayout::Orientation o) { return PDFOut::proposal(m_db, *estimate, path, o); });
}

void EstimateTotalsPanel::present(const Rec &estimate)
{
    styleLabel(m_note, 11.5, true);
    const Calc::EstimateTotals t = estimateTotals(m_db, estimate);
    m_totals->setRows({{u"Subtotal"_s, t.subtotal},
                       {u"Markup "_s + estimate.f.value(u"markup"_s) + u'%', t.markup},
                       {u"Tax "_s + estimate.f.value(u"tax"_s) + u'%', t.tax},
                       {u"Proposal total"_s, t.total}});
    m_totals->setFigures(m_db,
                         TotalsPanel::figuresOf(estimate.id, {u"estimate.subtotal"_s, u"estimate.markup"_s,
                                                              u"estimate.tax"_s, u"estimate.total"_s}));
}

// --- change order ---

ChangeOrderPanel::ChangeOrderPanel(DB &db, const QString &coId, QWidget *parent)
    : RecordPanel(db, coId, parent)
    , m_totals(new TotalsBox(this))
    , m_note(new QLabel(this))
{
    column()->addWidget(m_totals);
    auto *row = new QHBoxLayout;
    for (const QString &word : kCOStatuses) {
        auto *button = new FWChromeButton(capitalizedIfLower(word), {}, this);
        button->setObjectName(u"status:"_s + word);
        connect(button, &QAbstractButton::clicked, this, [this, word] {
            if (const std::optional<Rec> co = m_db.get(m_id))
                setCOStatus(m_db, *co, word);
        });
        row->addWidget(button);
        m_buttons.append({word, button});
    }
    row->addStretch(1);
    column()->addLayout(row);
    column()->addWidget(m_note);
    m_note->setObjectName(u"note"_s);
    m_note->setWordWrap(true);
    refresh();
}

FWChromeButton *ChangeOrderPanel::statusButton(const QString &word) const
{
    for (const auto &[w, button] : m_buttons)
        if (w == word)
            return button;
    return nullptr;
}

void ChangeOrderPanel::present(const Rec &co)
{
    const Calc::COTotals t = coTotals(m_db, co);
    m_totals->setRows({{u"Subtotal"_s, t.subtotal},
                       {u"Markup "_s + co.f.value(u"markup"_s) + u'%', t.markup},
                       {u"Change order total"_s, t.total}});
    m_totals->setFigures(m_db,
                         TotalsPanel::figuresOf(co.id, {u"co.subtotal"_s, u"co.markup"_s, u"co.total"_s}));
    const QString status = co.f.value(u"status"_s);
    for (const auto &[word, button] : m_buttons)
        button->setProminent(word == status);
    m_note->setText(co.f.value(u"kind"_s) == u"owner"_s ? QString::fromUtf16(COText::kOwnerEffect)
                                                        : QString::fromUtf16(COText::kSubEffect));
    styleLabel(m_note, 11.5, true);
}

// --- invoices, purchase orders, assemblies ---

TotalsPanel::TotalsPanel(DB &db, const QString &recordId, Reader rows, QWidget *parent, QStringList figures)
    : RecordPanel(db, recordId, parent)
    , m_rows(std::move(rows))
    , m_figureNames(std::move(figures))
    , m_totals(new TotalsBox(this))
{
    column()->addWidget(m_totals);
    refresh();
}

void TotalsPanel::present(const Rec &rec)
{
    m_totals->setRows(m_rows(m_db, rec));
    m_totals->setFigures(m_db, figuresOf(rec.id, m_figureNames));
}

QList<FigureRef> TotalsPanel::figuresOf(const QString &recordId, const QStringList &names)
{
    QList<FigureRef> refs;
    for (const QString &name : names)
        refs.append({name, {}, recordId});
    return refs;
}

QWidget *makeModuleExtrasAfterLines(DB &db, Nav &nav, const ModuleDef &m, const QString &recordId,
                                    QWidget *parent)
{
    if (!db.find(recordId))
        return nullptr;
    if (m.id == u"estimates"_s)
        return new EstimateTotalsPanel(db, nav, recordId, parent);
    if (m.id == u"assemblies"_s)
        return new TotalsPanel(db, recordId, assemblyRows, parent);
    if (m.id == u"cos"_s)
        return new ChangeOrderPanel(db, recordId, parent);
    if (m.id == u"invoices"_s)
        return new TotalsPanel(
            db, recordId, invoiceRows, parent,
            {u"invoice.subtotal"_s, u"invoice.tax"_s, u"invoice.retainage"_s, u"invoice.due"_s});
    if (m.id == u"pos"_s)
        return new TotalsPanel(db, recordId, poRows, parent, {u"po.total"_s});
    if (m.id == u"bids"_s)
        return new BidLevelingPanel(db, recordId, parent);
    return nullptr;
}
