#include "payappdetail.h"
#include "shell/fileactions.h"
#include "shell/savedpdf.h"

#include "moneygrid.h"

#include "calc/money.h"
#include "documents/payhtml.h"
#include "documents/pdfwrite.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "shell/fieldeditors.h"
#include "shell/nav.h"
#include "shell/notice.h"
#include "shell/numberfield.h"
#include "shell/totalsbox.h"
#include "store/db.h"
#include "workflows/binding.h"
#include "workflows/payappflow.h"

#include <QtCore/QDir>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace {

enum Col {
    ItemCol,
    DescriptionCol,
    ScheduledCol,
    PreviousCol,
    ThisPeriodCol,
    StoredCol,
    CompletedCol,
    PctCol,
    BalanceCol,
    RetainageCol
};

const GridHead &head()
{
    static const GridHead h{
        {u"Item"_s, 46, false},  {u"Description"_s, 0, false}, {u"Scheduled"_s, 108}, {u"Previous"_s, 108},
        {u"This period"_s, 118}, {u"Stored"_s, 108},           {u"Completed"_s, 108}, {u"%"_s, 58},
        {u"Balance"_s, 108},     {u"Retainage"_s, 100}};
    return h;
}

// Line 8 of the summary, the one figure the owner pays on.
constexpr int kDueLine = 9;

QLabel *pctCell(QWidget *row, bool bold)
{
    auto *l = new QLabel(row);
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto style = [l, bold] { l->setFont(TotalsBox::monoFont(12, bold ? QFont::Bold : QFont::Normal)); };
    style();
    QObject::connect(&FWUI::shared(), &FWUI::changed, l, style);
    return l;
}

// A line billed past its scheduled value stays allowed (filling to 100 % and
// change orders rely on it) but its percentage shows in the warning colour
// with a note saying so.
void markPast(QLabel *pct, bool past, const QString &item)
{
    const QString note = past ? u"Line "_s + item + u" is billed past its scheduled value."_s : QString();
    if (pct->toolTip() == note && pct->property("past").toBool() == past)
        return;
    pct->setProperty("past", past);
    pct->setToolTip(note);
    pct->setAccessibleDescription(note);
    QFont f = pct->font();
    f.setBold(past);
    pct->setFont(f);
    QPalette p = pct->palette();
    p.setColor(QPalette::WindowText, past ? Notice::orange() : FWUI::shared().theme().text);
    pct->setPalette(p);
}

// The first pay line of the application for the schedule line, as setPayLine finds it.
const Rec *payLineOf(const DB &db, const QString &payAppId, const QString &sovId)
{
    const Rec *found = nullptr;
    db.visit(u"pay_line"_s, {.parent = payAppId}, [&](const Rec &line) {
        if (!found && line.f.value(u"sov") == sovId)
            found = db.find(line.id);
    });
    return found;
}

} // namespace

PayAppDetail::PayAppDetail(DB &db, Nav &nav, const QString &payAppId, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_nav(nav)
    , m_id(payAppId)
    , m_notice(new Notice(QString(), Notice::Tone::Warning, u"lock.fill"_s, this))
    , m_number(new QLabel(this))
    , m_sheet(new MoneyGrid(head(), this))
    , m_note(new QLabel(this))
    , m_summaryTitle(new QLabel(u"G702 · Application for payment"_s, this))
    , m_pdf(new FWChromeButton(u"G702 / G703 PDF"_s, u"doc.richtext"_s, this))
    , m_fill(new FWChromeButton(QString::fromUtf16(PayAppText::kFill), u"bolt.fill"_s, this))
    , m_conditional(
          new FWChromeButton(QString::fromUtf16(PayAppText::kConditionalWaiver), u"signature"_s, this))
    , m_unconditional(
          new FWChromeButton(QString::fromUtf16(PayAppText::kUnconditionalWaiver), u"signature"_s, this))
{
    m_sheet->setAccessibleName(u"G703 continuation sheet"_s);
    auto field = [&](const FD &fd) {
        auto *e = new FieldEditor(db, fd, TextBinding::of(recBinding(db, payAppId, fd.key)), QString(), false,
                                  this);
        e->setObjectName(fd.key);
        return e;
    };
    QStringList statuses;
    for (const char16_t *s : PayAppText::kStatuses)
        statuses.append(QString::fromUtf16(s));
    m_status = field({u"status"_s, u"Status"_s, FT::makeChoice(statuses)});
    m_periodTo = field({u"periodTo"_s, u"Period to"_s, FT::of(FT::date)});
    m_retWork = field({u"retWork"_s, u"Ret. work %"_s, FT::of(FT::percent)});
    m_retMat = field({u"retMat"_s, u"Ret. stored %"_s, FT::of(FT::percent)});

    auto *col = new QVBoxLayout(this);
    col->setContentsMargins(0, 0, 0, 0);
    m_notice->setObjectName(u"lock"_s);
    col->addWidget(m_notice);

    // The header: number and status, then the period and the two retainage percentages.
    auto *headerPanel = new FWPanel(this);
    auto *header = new QHBoxLayout(headerPanel);
    m_number->setTextFormat(Qt::PlainText);
    header->addWidget(m_number);
    header->addWidget(m_status);
    header->addSpacing(FWUI::shared().px(16));
    const QList<std::pair<QString, FieldEditor *>> captioned{
        {u"Period to"_s, m_periodTo}, {u"Ret. work %"_s, m_retWork}, {u"Ret. stored %"_s, m_retMat}};
    for (const auto &[caption, editor] : captioned) {
        auto *pair = new QVBoxLayout;
        pair->setSpacing(3);
        auto *c = new FWCaption(caption, headerPanel);
        m_captions.append(c);
        pair->addWidget(c);
        pair->addWidget(editor);
        header->addLayout(pair);
    }
    header->addStretch(1);
    col->addWidget(headerPanel);

    auto *sheetPanel = new FWPanel(this);
    auto *sheetCol = new QVBoxLayout(sheetPanel);
    sheetCol->addWidget(m_sheet);
    m_note->setText(u"Previous = work billed on earlier applications. Retainage on work uses previous + this "
                    u"period; on stored materials uses stored.\n"_s +
                    QString::fromUtf16(PayAppText::kRetainageExplained));
    m_note->setWordWrap(true);
    sheetCol->addWidget(m_note);
    col->addWidget(sheetPanel);

    // The summary and the actions side by side under the sheet.
    auto *lower = new QHBoxLayout;
    auto *summaryPanel = new FWPanel(this);
    auto *summary = new QGridLayout(summaryPanel);
    summary->addWidget(m_summaryTitle, 0, 0, 1, 2);
    static const QString lineFigures[] = {
        u"payapp.original"_s,  u"payapp.changes"_s,        u"payapp.contractsum"_s,
        u"payapp.completed"_s, u"payapp.retainage.work"_s, u"payapp.retainage.stored"_s,
        u"payapp.retainage"_s, u"payapp.earned"_s,         u"payapp.previous"_s,
        u"payapp.due"_s,       u"payapp.balance"_s};
    for (const QString &label : g702Labels()) {
        const int row = int(m_summaryLabels.size()) + 1;
        auto *l = new QLabel(label, summaryPanel);
        auto *v = new MoneyCell(summaryPanel);
        FigureLink::attach(v, m_db, m_nav, appFigure(lineFigures[m_summaryLabels.size()]));
        summary->addWidget(l, row, 0);
        summary->addWidget(v, row, 1);
        m_summaryLabels.append(l);
        m_summaryValues.append(v);
    }
    m_summaryValues[kDueLine]->setPoints(18);
    summary->setColumnStretch(0, 1);
    lower->addWidget(summaryPanel, 1);

    auto *actions = new QVBoxLayout;
    for (FWChromeButton *b : {m_pdf, m_fill, m_conditional, m_unconditional})
        actions->addWidget(b);
    m_pdf->setObjectName(u"pdf"_s);
    m_fill->setObjectName(u"fill"_s);
    m_fill->setToolTip(QString::fromUtf16(PayAppText::kFillHelp));
    m_conditional->setObjectName(u"conditional"_s);
    m_unconditional->setObjectName(u"unconditional"_s);
    actions->addStretch(1);
    lower->addLayout(actions);
    lower->addStretch(1);
    col->addLayout(lower);

    connect(m_pdf, &QAbstractButton::clicked, this, &PayAppDetail::savePDF);
    connect(m_fill, &QAbstractButton::clicked, this, &PayAppDetail::fillThisPeriod);
    connect(m_conditional, &QAbstractButton::clicked, this, [this] { waiver(false); });
    connect(m_unconditional, &QAbstractButton::clicked, this, &PayAppDetail::unconditionalWaiver);

    restyle();
    connect(&FWUI::shared(), &FWUI::changed, this, &PayAppDetail::restyle);
    refresh();
}

void PayAppDetail::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    auto *col = static_cast<QVBoxLayout *>(layout());
    col->setSpacing(ui.px(12));
    for (FWPanel *panel : findChildren<FWPanel *>(Qt::FindDirectChildrenOnly))
        panel->layout()->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(12));
    m_number->setFont(ui.font(15, QFont::Bold));
    m_summaryTitle->setFont(ui.font(13, QFont::DemiBold));
    m_note->setFont(ui.font(11));
    QPalette dim = m_note->palette();
    dim.setColor(QPalette::WindowText, t.dim);
    m_note->setPalette(dim);
    for (qsizetype i = 0; i < m_summaryLabels.size(); ++i)
        m_summaryLabels[i]->setFont(
            ui.font(i == kDueLine ? 14 : 12, i == kDueLine ? QFont::Bold : QFont::Normal));
    m_periodTo->setMinimumWidth(ui.px(170));
    m_retWork->setFixedWidth(ui.px(110));
    m_retMat->setFixedWidth(ui.px(110));
    m_status->setMinimumWidth(ui.px(150));
}

FigureLink::RefFn PayAppDetail::appFigure(const QString &name) const
{
    return [this, name]() -> std::optional<FigureRef> {
        if (m_id.isEmpty())
            return std::nullopt;
        return FigureRef{name, {}, m_id};
    };
}

const QStringList &PayAppDetail::g702Labels()
{
    static const QStringList labels{u"1. Original contract sum"_s,
                                    u"2. Net change by change orders"_s,
                                    u"3. Contract sum to date"_s,
                                    u"4. Total completed & stored to date"_s,
                                    u"5a. Retainage on completed work"_s,
                                    u"5b. Retainage on stored material"_s,
                                    u"5. Total retainage"_s,
                                    u"6. Total earned less retainage"_s,
                                    u"7. Less previous certificates"_s,
                                    u"8. CURRENT PAYMENT DUE"_s,
                                    u"9. Balance to finish, incl. retainage"_s};
    return labels;
}

QList<qint64> PayAppDetail::g702Values(const Calc::G702 &g)
{
    return {g.l1, g.l2, g.l3, g.l4, g.l5a, g.l5b, g.l5, g.l6, g.l7, g.l8, g.l9};
}

QString PayAppDetail::totalKey()
{
    return u"\x1e"_s + u"TOTAL"_s;
}

TextBinding PayAppDetail::lineBinding(DB &db, const QString &payAppId, const QString &sovId,
                                      const QString &key)
{
    return {[&db, payAppId, sovId, key] {
                const Rec *line = payLineOf(db, payAppId, sovId);
                return line ? line->f.value(key) : QString();
            },
            [&db, payAppId, sovId, key](const QString &text) {
                const std::optional<Rec> app = db.get(payAppId);
                if (!app)
                    return;
                // An emptied box is an amount of nothing.
                const qint64 cents = RecText::parseInt(text).value_or(0);
                const Rec *line = payLineOf(db, payAppId, sovId);
                if (line && line->f.value(key) == QString::number(cents))
                    return;
                const bool thisPeriod = key == u"thisPeriod";
                setPayLine(db, *app, sovId, thisPeriod ? std::optional<qint64>(cents) : std::nullopt,
                           thisPeriod ? std::nullopt : std::optional<qint64>(cents));
            }};
}

NumberField *PayAppDetail::box(const QString &sovId, const QString &key) const
{
    return m_sheet->cell<NumberField>(sovId, key == u"thisPeriod" ? ThisPeriodCol : StoredCol);
}

qint64 PayAppDetail::summaryValue(int i) const
{
    return m_summaryValues.value(i) ? m_summaryValues.at(i)->value() : 0;
}

void PayAppDetail::refresh()
{
    const std::optional<Rec> app = m_db.get(m_id);
    if (!app)
        return;
    const PayAppData data = payAppData(m_db, *app);
    const bool locked = isLocked(*app);

    m_notice->setVisible(locked);
    if (locked)
        m_notice->setText(::lockNotice(*app));
    m_number->setText(u"Application #"_s + app->f.value(u"number"));
    for (FieldEditor *e : {m_status, m_periodTo, m_retWork, m_retMat})
        e->refresh();
    // The status stays open, since setting it back is how a locked application is changed.
    for (FieldEditor *e : lockedFields())
        e->setEnabled(!locked);
    m_fill->setEnabled(!locked);

    QStringList keys;
    for (const Rec &sov : data.sov)
        keys.append(sov.id);
    keys.append(totalKey());
    m_sheet->sync(keys, [this](const QString &key, QWidget *row) {
        const bool total = key == totalKey();
        // The total row's figures open into the sheet's lines.
        auto money = [this, row, total](const QString &figure) {
            auto *cell = new MoneyCell(row);
            if (total)
                FigureLink::attach(cell, m_db, m_nav, appFigure(figure));
            return cell;
        };
        MoneyGrid::Cells cells{MoneyGrid::text(row, total), MoneyGrid::text(row, total),
                               money(u"payapp.scheduled"_s), money(u"payapp.workprevious"_s)};
        for (const QString &field : {u"thisPeriod"_s, u"stored"_s}) {
            if (total) {
                cells.append(money(field == u"stored" ? u"payapp.stored"_s : u"payapp.thisperiod"_s));
                continue;
            }
            auto *box = new NumberField(lineBinding(m_db, m_id, key, field), true, u"0.00"_s, row);
            box->box()->setAlignment(Qt::AlignRight);
            box->setObjectName(field);
            cells.append(box);
        }
        cells << money(u"payapp.completed"_s) << pctCell(row, total) << money(u"payapp.tofinish"_s)
              << money(u"payapp.retainage"_s);
        return cells;
    });
    auto fill = [&](const QString &key, const QString &item, const QString &description, qint64 scheduled,
                    qint64 previous, std::optional<std::pair<qint64, qint64>> typed, qint64 completed,
                    const QString &pct, qint64 balance, qint64 retainage) {
        const bool total = key == totalKey();
        const MoneyGrid::Cells cells = m_sheet->cells(key);
        static_cast<QLabel *>(cells.at(ItemCol))->setText(item);
        static_cast<QLabel *>(cells.at(DescriptionCol))->setText(description);
        static_cast<MoneyCell *>(cells.at(ScheduledCol))->set(scheduled, total);
        static_cast<MoneyCell *>(cells.at(PreviousCol))->set(previous, total);
        for (int c : {ThisPeriodCol, StoredCol}) {
            if (auto *box = qobject_cast<NumberField *>(cells.at(c))) {
                box->refresh();
                box->setEnabled(!locked);
            } else if (typed) {
                static_cast<MoneyCell *>(cells.at(c))
                    ->set(c == ThisPeriodCol ? typed->first : typed->second, true);
            }
        }
        static_cast<MoneyCell *>(cells.at(CompletedCol))->set(completed, total);
        static_cast<QLabel *>(cells.at(PctCol))->setText(pct);
        static_cast<MoneyCell *>(cells.at(BalanceCol))->set(balance, total);
        static_cast<MoneyCell *>(cells.at(RetainageCol))->set(retainage, total);
    };
    for (qsizetype i = 0; i < data.sov.size() && i < data.calc.rows.size(); ++i) {
        const Rec &sov = data.sov.at(i);
        const Calc::PayRow &r = data.calc.rows.at(i);
        fill(sov.id, sov.f.value(u"item"), sov.f.value(u"description"), r.line.scheduled, r.line.previous,
             std::nullopt, r.completed, QString::asprintf("%.1f%%", r.pct), r.balance,
             Money::add(r.retWork, r.retMat));
        markPast(m_sheet->cell<QLabel>(sov.id, PctCol),
                 r.line.scheduled >= 0 && r.completed > r.line.scheduled, sov.f.value(u"item"));
    }
    const Calc::PayTotals &t = data.calc.totals;
    fill(totalKey(), QString(), u"TOTAL"_s, t.scheduled, t.previous, std::pair{t.thisPeriod, t.stored},
         t.completed, QString(), t.balance, Money::add(t.retWork, t.retMat));
    m_sheet->nameInputs();

    const QList<qint64> values = g702Values(data.calc.g702);
    for (qsizetype i = 0; i < values.size(); ++i)
        m_summaryValues[i]->set(values.at(i), i == kDueLine);
}

void PayAppDetail::fillThisPeriod()
{
    const std::optional<Rec> app = m_db.get(m_id);
    if (!app || isLocked(*app))
        return;
    billBalanceOfThisPeriod(m_db, *app, payAppData(m_db, *app));
}

void PayAppDetail::waiver(bool final)
{
    const std::optional<Rec> app = m_db.get(m_id);
    if (!app)
        return;
    const Rec w = makeWaiver(m_db, *app, payAppData(m_db, *app).calc.g702.l8, final);
    m_nav.open(u"waivers"_s, w.id);
}

void PayAppDetail::unconditionalWaiver()
{
    const std::optional<Rec> app = m_db.get(m_id);
    if (!app)
        return;
    waiver(finalAfterPaid(payAppData(m_db, *app).calc.g702));
}

void PayAppDetail::savePDF()
{
    const std::optional<Rec> app = m_db.get(m_id);
    if (!app)
        return;
    // A slash would make a folder of the suggested name.
    const QString name = u"Pay App "_s + app->f.value(u"number") + u" — G702-G703.pdf"_s;
    const QString proposed = QDir::home().filePath(name);
    const QString path =
        FileActions::saveFileHook()
            ? FileActions::saveFileHook()(this, u"Save PDF"_s, proposed)
            : QFileDialog::getSaveFileName(this, u"Save PDF"_s, proposed, u"PDF files (*.pdf)"_s);
    SavedPdf::save(this, path, [&](QPageLayout::Orientation o) {
        return PDFOut::saveHTML(m_db, PrintReports::payHTML(m_db, *app), path, o);
    });
}
