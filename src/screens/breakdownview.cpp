#include "breakdownview.h"

#include "hubparts.h"

#include "calc/datefmt.h"
#include "catalog/modules.h"
#include "documents/breakdownhtml.h"
#include "documents/pdfwrite.h"
#include "interchange/csv.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "shell/nav.h"
#include "shell/printengine.h"
#include "shell/savedpdf.h"
#include "store/db.h"

#include <QtCore/QDir>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>

using namespace Qt::StringLiterals;

namespace {

enum Col { DateCol, NumberCol, DescriptionCol, RuleCol, AmountCol, Cols };

// A row's identity across refreshes: its record, or the figure it opens.
QString keyOf(const Calc::Part &p)
{
    return p.record + u'|' + p.figure + u'|' + p.subject;
}

} // namespace

// The rows of the breakdown shown, read as the table asks for them: a figure of
// thousands of timecards costs nothing until its rows are scrolled to.
class BreakdownModel : public QAbstractTableModel
{
public:
    explicit BreakdownModel(QObject *parent)
        : QAbstractTableModel(parent)
    {}
    void set(const Breakdown *b)
    {
        beginResetModel();
        m_b = b;
        endResetModel();
    }
    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() || !m_b ? 0 : int(m_b->rows.size());
    }
    int columnCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : Cols; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (!m_b || !index.isValid() || index.row() >= m_b->rows.size())
            return {};
        const Calc::Part &p = m_b->rows.at(index.row());
        if (role == Qt::TextAlignmentRole)
            return index.column() == AmountCol ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
        if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
            return {};
        switch (index.column()) {
        case DateCol: return p.date;
        case NumberCol: return p.number;
        case DescriptionCol:
            // A figure made of figures says so with a chevron: it opens here.
            return p.figure.isEmpty() || !p.record.isEmpty() ? p.description : p.description + u"  ›"_s;
        case RuleCol: return p.rule;
        case AmountCol: return Explain::amountText(*m_b, p);
        }
        return {};
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return {};
        static const QString heads[Cols] = {u"Date"_s, u"Number"_s, u"Description"_s, u"Rule applied"_s,
                                            u"Amount"_s};
        return section == AmountCol && m_b && m_b->quantity ? u"Quantity"_s : heads[section];
    }

private:
    const Breakdown *m_b = nullptr;
};

BreakdownView::BreakdownView(DB &db, Nav &nav, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_db(db)
    , m_nav(nav)
    , m_title(new LookLabel({}, 16, QFont::Bold))
    , m_scope(new LookLabel({}, 12, QFont::DemiBold, true))
    , m_rule(new LookLabel({}, 11, QFont::Normal, true))
    , m_total(new LookLabel({}, 14, QFont::Bold))
    , m_back(new FWChromeButton(u"Back"_s, u"arrow.uturn.backward"_s))
    , m_model(new BreakdownModel(this))
    , m_table(new QTableView)
{
    setObjectName(u"breakdown"_s);
    setWindowTitle(u"Breakdown"_s);
    auto *outer = new QVBoxLayout(this);
    auto *top = new QHBoxLayout;
    top->addWidget(m_back);
    top->addWidget(m_title, 1);
    auto *print = new FWChromeButton(u"Print"_s, u"printer.fill"_s);
    auto *pdf = new FWChromeButton(u"PDF"_s, u"doc.richtext.fill"_s);
    auto *csv = new FWChromeButton(u"CSV"_s, u"doc.plaintext.fill"_s);
    top->addWidget(print);
    top->addWidget(pdf);
    top->addWidget(csv);
    outer->addLayout(top);
    outer->addWidget(m_scope);
    m_rule->setWordWrap(true);
    outer->addWidget(m_rule);
    outer->addWidget(m_table, 1);
    m_total->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    outer->addWidget(m_total);

    m_table->setModel(m_model);
    m_model->set(&m_breakdown);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->verticalHeader()->hide();
    // Rows of one height: thousands of them are laid out without measuring each.
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->setWordWrap(false);
    setAttribute(Qt::WA_StyledBackground);
    m_table->horizontalHeader()->setSectionResizeMode(DescriptionCol, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(RuleCol, QHeaderView::Stretch);
    m_table->setAccessibleName(u"Rows of the figure"_s);
    // Enter and a double click both open the row.
    connect(m_table, &QAbstractItemView::activated, this,
            [this](const QModelIndex &i) { activate(i.row()); });

    connect(m_back, &QAbstractButton::clicked, this, &BreakdownView::back);
    connect(print, &QAbstractButton::clicked, this, [this] {
        PrintEngine::run(PrintJob{PrintReports::breakdownTitle(m_breakdown),
                                  [this]() -> std::optional<PrintSource> {
                                      return PrintSource::fromHtml(
                                          PrintReports::breakdownHTML(m_db, m_breakdown));
                                  }},
                         this);
    });
    connect(pdf, &QAbstractButton::clicked, this, [this] {
        const QString path =
            ask(u"Save Breakdown PDF"_s, PrintReports::breakdownTitle(m_breakdown) + u".pdf"_s,
                u"PDF files (*.pdf)"_s);
        SavedPdf::save(this, path, [this, path](QPageLayout::Orientation o) {
            return PDFOut::saveHTML(m_db, PrintReports::breakdownHTML(m_db, m_breakdown), path, o);
        });
    });
    connect(csv, &QAbstractButton::clicked, this, [this] {
        const QString path =
            ask(u"Export Breakdown CSV"_s, PrintReports::breakdownTitle(m_breakdown) + u".csv"_s,
                u"CSV files (*.csv)"_s);
        if (!path.isEmpty() && !saveCsv(path))
            QApplication::beep();
    });
    // Like every screen: one refresh on the next turn however many changes came.
    connect(&m_db, &DB::changed, this, [this] {
        if (m_refreshQueued)
            return;
        m_refreshQueued = true;
        QTimer::singleShot(0, this, [this] {
            m_refreshQueued = false;
            refresh();
        });
    });
    connect(&FWUI::shared(), &FWUI::changed, this, &BreakdownView::restyle);
    restyle();
}

std::function<QString(QWidget *, const QString &, const QString &, const QString &)> &BreakdownView::askHook()
{
    static std::function<QString(QWidget *, const QString &, const QString &, const QString &)> hook;
    return hook;
}

QString BreakdownView::ask(const QString &caption, const QString &name, const QString &filter)
{
    QString safe = name;
    safe.replace(u'/', u'-');
    const QString proposed = QDir::home().filePath(safe);
    if (askHook())
        return askHook()(this, caption, proposed, filter);
    return QFileDialog::getSaveFileName(this, caption, proposed, filter);
}

void BreakdownView::restyle()
{
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    layout()->setContentsMargins(ui.px(16), ui.px(14), ui.px(16), ui.px(14));
    // A window of its own: it paints the finish's colours itself.
    setStyleSheet(u"BreakdownView { background: "_s + t.base.name() + u"; }"_s);
    QColor grid = t.dim;
    grid.setAlphaF(0.25);
    m_table->setFont(ui.font(12));
    m_table->setStyleSheet(
        u"QTableView { background: "_s + t.panel.name() + u"; color: "_s + t.text.name() +
        u"; gridline-color: "_s + grid.name(QColor::HexArgb) +
        u"; border: none; selection-background-color: "_s + t.raised.name() + u"; selection-color: "_s +
        t.accent2.name() + u"; } QHeaderView::section { background: "_s + t.base.name() + u"; color: "_s +
        t.dim.name() + u"; border: none; padding: "_s + QString::number(ui.px(4)) + u"px; }"_s);
    m_table->verticalHeader()->setDefaultSectionSize(ui.px(24));
    m_table->horizontalHeader()->resizeSection(DateCol, ui.px(96));
    m_table->horizontalHeader()->resizeSection(NumberCol, ui.px(90));
    m_table->horizontalHeader()->resizeSection(AmountCol, ui.px(130));
}

void BreakdownView::open(const FigureRef &ref)
{
    if (!m_ref.name.isEmpty() && !(ref == m_ref))
        m_history.append({m_ref, m_table->currentIndex().row(), m_table->verticalScrollBar()->value()});
    m_ref = ref;
    refresh();
    m_table->setCurrentIndex(m_model->index(0, 0));
    m_table->verticalScrollBar()->setValue(0);
}

void BreakdownView::back()
{
    if (m_history.isEmpty())
        return;
    const Place place = m_history.takeLast();
    m_ref = place.ref;
    refresh();
    m_table->setCurrentIndex(m_model->index(place.row, 0));
    m_table->verticalScrollBar()->setValue(place.scroll);
}

void BreakdownView::refresh()
{
    if (m_ref.name.isEmpty())
        return;
    QString error;
    std::optional<Breakdown> b = Explain::explain(m_db, m_ref, &error);
    m_problem = b ? QString() : error;
    m_breakdown = b ? *std::move(b) : Breakdown{m_ref, m_ref.name, {}, error, false, {}, {}, 0, 0};
    fill();
}

void BreakdownView::fill()
{
    // The row the user is on and the scroll stay put when the rows change under them.
    const QModelIndex at = m_table->currentIndex();
    const QString current =
        at.isValid() && at.row() < m_shownKeys.size() ? m_shownKeys.at(at.row()) : QString();
    const int scroll = m_table->verticalScrollBar()->value();

    const Breakdown &b = m_breakdown;
    const std::optional<Rec> project = b.ref.project.isEmpty() ? std::nullopt : m_db.get(b.ref.project);
    setWindowTitle(PrintReports::breakdownTitle(b) + u" — Breakdown"_s);
    m_title->setText(b.title);
    QStringList scope;
    if (project)
        scope << project->f.value(u"number"_s) + u' ' + project->f.value(u"name"_s);
    if (!b.scope.isEmpty())
        scope << b.scope;
    scope << DateFmt::nice(DateFmt::today());
    m_scope->setText(scope.join(u" · "_s));
    m_rule->setText(m_problem.isEmpty() ? u"Rule: "_s + b.rule : m_problem);
    m_total->setText(u"Total  "_s + Explain::totalText(b));
    m_back->setEnabled(!m_history.isEmpty());

    m_model->set(&m_breakdown);
    m_shownKeys.clear();
    m_shownKeys.reserve(b.rows.size());
    int keep = -1;
    for (const Calc::Part &p : b.rows) {
        m_shownKeys.append(keyOf(p));
        if (keep < 0 && !current.isEmpty() && m_shownKeys.last() == current)
            keep = int(m_shownKeys.size()) - 1;
    }
    if (keep >= 0)
        m_table->setCurrentIndex(m_model->index(keep, std::max(at.column(), 0)));
    m_table->verticalScrollBar()->setValue(scroll);
}

void BreakdownView::activate(int row)
{
    if (row < 0 || row >= m_breakdown.rows.size())
        return;
    const Calc::Part &p = m_breakdown.rows.at(row);
    // A row of a record opens the record; a row that is only a figure opens the figure.
    if (!p.record.isEmpty() && openRecord(m_db, m_nav, p.record))
        return;
    if (const std::optional<FigureRef> sub = Explain::subFigure(m_breakdown, p)) {
        open(*sub);
        return;
    }
    QApplication::beep();
}

bool BreakdownView::openRecord(const DB &db, Nav &nav, const QString &id)
{
    const Rec *rec = db.find(id);
    if (!rec)
        return false;
    const Rec *target = rec;
    const ModuleDef *module = Modules::ofKind(rec->kind);
    // A line is edited on its document.
    if (!module && !rec->parent.isEmpty())
        if (const Rec *parent = db.find(rec->parent)) {
            target = parent;
            module = Modules::ofKind(parent->kind);
        }
    // Schedule-of-values lines live on the pay applications screen.
    if (!module && rec->kind == u"sov_line")
        module = Modules::get(u"payapps");
    if (!module)
        return false;
    nav.open(module->id, target->kind == u"sov_line" ? std::nullopt : std::optional(target->id),
             target->project.isEmpty() ? std::nullopt : std::optional(target->project));
    return true;
}

bool BreakdownView::savePdf(const QString &path) const
{
    return PDFOut::saveHTML(m_db, PrintReports::breakdownHTML(m_db, m_breakdown), path);
}

bool BreakdownView::saveCsv(const QString &path) const
{
    return CSV::save(Explain::csvRows(m_breakdown), path);
}

BreakdownView *BreakdownView::show(QWidget *anchor, DB &db, Nav &nav, const FigureRef &ref)
{
    QWidget *top = anchor->window();
    auto *view = top->findChild<BreakdownView *>(u"breakdown"_s, Qt::FindDirectChildrenOnly);
    if (!view) {
        view = new BreakdownView(db, nav, top);
        const FWUI &ui = FWUI::shared();
        view->resize(ui.px(980), ui.px(620));
    }
    view->open(ref);
    view->QWidget::show();
    view->raise();
    view->activateWindow();
    return view;
}
