#include "reportsscreen.h"
#include "shell/savedpdf.h"

#include "breakdownview.h"
#include "figurelink.h"

#include "fieldpulse.h"
#include "hubparts.h"
#include "projectchart.h"
#include "wipscheduleview.h"

#include "catalog/moduledef.h"
#include "documents/pdfwrite.h"
#include "documents/reportshtml.h"
#include "documents/wipschedulehtml.h"
#include "interchange/csv.h"
#include "look/alert.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "look/segment.h"
#include "shell/nav.h"
#include "shell/printbutton.h"
#include "shell/printcenter.h"
#include "shell/printengine.h"
#include "shell/screentitle.h"
#include "store/db.h"
#include "store/settings.h"
#include "workflows/figures.h"

#include <QtCore/QDir>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedWidget>

using namespace Qt::StringLiterals;

namespace {

const QString kWipTitle = u"WIP Report"_s;
const QString kViewKey = u"fenwright.reports.view"_s;

PrintJob wipJob(const DB &db)
{
    return PrintJob{kWipTitle, [db = &db]() -> std::optional<PrintSource> {
                        return PrintSource::fromHtml(PrintReports::wipHTML(*db));
                    }};
}

} // namespace

// --- WipTable ---

WipTable::WipTable(QWidget *parent)
    : FWPanel(parent)
    , m_grid(new QGridLayout)
{
    auto *box = new QVBoxLayout(this);
    box->addWidget(HubParts::heading(u"chart.bar.doc.horizontal.fill"_s,
                                     new LookLabel(u"Work in progress"_s, 14, QFont::Bold), this));
    box->addLayout(m_grid);
    auto margins = [this, box] {
        const FWUI &ui = FWUI::shared();
        box->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(14));
        box->setSpacing(ui.px(10));
        m_grid->setHorizontalSpacing(ui.px(14));
        m_grid->setVerticalSpacing(ui.px(5));
    };
    margins();
    connect(&FWUI::shared(), &FWUI::changed, this, margins);
}

QWidget *WipTable::cell(int row, int column) const
{
    QLayoutItem *item = m_grid->itemAtPosition(row + 1, column);
    return item ? item->widget() : nullptr;
}

QStringList WipTable::heads()
{
    return {u"Number"_s,    u"Project"_s, u"Revised contract"_s, u"Billed"_s,          u"% billed"_s,
            u"Retainage"_s, u"Paid"_s,    u"Cost to date"_s,     u"Projected margin"_s};
}

void WipTable::setRows(const QList<QStringList> &rows)
{
    if (m_shown && rows == m_rows)
        return;
    m_shown = true;
    m_rows = rows;
    while (QLayoutItem *item = m_grid->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const QStringList head = heads();
    auto align = [](int column) { return (column >= 2 ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter; };
    for (int c = 0; c < head.size(); ++c) {
        auto *l = new LookLabel(head.at(c), 11, QFont::DemiBold, true, this);
        l->setAlignment(align(c));
        m_grid->addWidget(l, 0, c);
    }
    for (int r = 0; r < rows.size(); ++r) {
        const QStringList &row = rows.at(r);
        for (int c = 0; c < head.size() && c < row.size(); ++c) {
            auto *l = new LookLabel(row.at(c), 12, c == 1 ? QFont::DemiBold : QFont::Normal, false, this);
            l->setAlignment(align(c));
            l->setTextInteractionFlags(Qt::TextSelectableByMouse);
            if (c == 1)
                l->setWordWrap(true);
            m_grid->addWidget(l, r + 1, c);
        }
    }
    if (rows.isEmpty()) {
        auto *none = new LookLabel(u"No projects yet."_s, 12, QFont::Normal, true, this);
        m_grid->addWidget(none, 1, 0, 1, int(head.size()));
    }
    for (int c = 0; c < head.size(); ++c)
        m_grid->setColumnStretch(c, c == 1 ? 3 : 1);
}

// --- ReportsScreen ---

ReportsScreen::SaveFile &ReportsScreen::saveFileHook()
{
    static SaveFile hook;
    return hook;
}

QList<QStringList> ReportsScreen::csvRows(const DB &db)
{
    QList<QStringList> rows{WipTable::heads()};
    for (const Rec &p : db.list(u"project"_s))
        rows.append(PrintReports::line(p, ProjectFigures::of(db, p)));
    return rows;
}

ReportsScreen::ReportsScreen(const ScreenContext &ctx, QWidget *parent)
    : ShellScreen(parent)
    , m_db(ctx.db)
    , m_nav(ctx.nav)
    , m_m(ctx.module)
    , m_box(new QVBoxLayout(this))
{
    const PrintJob job = wipJob(m_db);
    auto *buttons = new QWidget(this);
    auto *row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    auto *pdf = new FWChromeButton(u"WIP PDF"_s, u"doc.richtext.fill"_s, buttons);
    auto *csv = new FWChromeButton(u"WIP CSV"_s, u"doc.plaintext.fill"_s, buttons);
    connect(pdf, &QAbstractButton::clicked, this, &ReportsScreen::savePDF);
    connect(csv, &QAbstractButton::clicked, this, &ReportsScreen::saveCSV);
    row->addWidget(pdf);
    row->addWidget(csv);
    row->addWidget(new PrintButton(job, false, false, buttons));
    m_reportButtons = buttons;
    m_box->addWidget(
        new ScreenTitle(m_m, u"Work in progress, billing and cost for every project"_s, buttons, this));
    m_views = new FWSegment({u"WIP Report"_s, PrintReports::kWipScheduleTitle}, this);
    m_views->setAccessibleName(u"Report"_s);
    connect(m_views, &FWSegment::currentChanged, this, [this](int index) {
        showView(index);
        Settings::setText(kViewKey, index == 1 ? u"schedule"_s : u"report"_s);
    });
    auto *switchRow = new QHBoxLayout;
    switchRow->addWidget(m_views);
    switchRow->addStretch(1);
    m_box->addLayout(switchRow);

    auto *content = new QWidget;
    auto *body = new QVBoxLayout(content);
    body->setContentsMargins(0, 0, 0, 0);
    m_chart = new ProjectChart(content);
    body->addWidget(m_chart);
    m_table = new WipTable(content);
    body->addWidget(m_table);
    m_pulse = new FieldPulse(m_db, false, content);
    body->addWidget(m_pulse);

    auto *report = m_reportPanel = new FWPanel(content);
    auto *reportBox = new QVBoxLayout(report);
    reportBox->addWidget(
        HubParts::heading(u"printer.fill"_s, new LookLabel(u"Project report"_s, 14, QFont::Bold), report));
    reportBox->addWidget(
        new LookLabel(u"Figures, change orders, open RFIs and open punch items of one project."_s, 12,
                      QFont::Normal, true, report));
    auto *pick = new QHBoxLayout;
    m_projects = new QComboBox(report);
    m_projects->setAccessibleName(u"Project"_s);
    m_projects->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    connect(m_projects, &QComboBox::activated, this,
            [this](int index) { chooseReportProject(m_projects->itemData(index).toString()); });
    m_printReport = new FWChromeButton(u"Print Project Report"_s, u"printer.fill"_s, report);
    connect(m_printReport, &QAbstractButton::clicked, this, &ReportsScreen::printProjectReport);
    pick->addWidget(m_projects);
    pick->addWidget(m_printReport);
    pick->addStretch(1);
    reportBox->addLayout(pick);
    body->addWidget(report);
    body->addStretch(1);
    m_stack = new QStackedWidget(this);
    m_stack->addWidget(HubParts::scroller(content, this));
    m_schedule = new WipScheduleView(m_db, m_stack);
    connect(m_schedule, &WipScheduleView::pdfRequested, this, &ReportsScreen::saveSchedulePDF);
    connect(m_schedule, &WipScheduleView::csvRequested, this, &ReportsScreen::saveScheduleCSV);
    connect(m_schedule->table(), &WipScheduleTable::figureOpened, this,
            [this](const FigureRef &ref) { BreakdownView::show(this, m_db, m_nav, ref); });
    m_stack->addWidget(m_schedule);
    switchRow->addWidget(m_schedule->buttons());
    m_box->addWidget(m_stack, 1);

    m_printable = new Printable(this, 0, job);
    // The screen opens on the view the user chose last.
    showView(Settings::text(kViewKey) == u"schedule" ? 1 : 0);
    margins();
    connect(&FWUI::shared(), &FWUI::changed, this, &ReportsScreen::margins);
    refresh();
}

void ReportsScreen::margins()
{
    const FWUI &ui = FWUI::shared();
    m_box->setContentsMargins(ui.px(24), ui.px(18), ui.px(24), ui.px(6));
    m_box->setSpacing(ui.px(14));
    if (QWidget *content = m_table->parentWidget()) {
        content->layout()->setSpacing(ui.px(14));
        content->layout()->setContentsMargins(0, 0, ui.px(6), ui.px(12));
    }
    m_reportPanel->layout()->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(14));
    m_projects->setFont(ui.font(13));
}

void ReportsScreen::refresh()
{
    const QList<Rec> projects = m_db.list(u"project"_s);
    // Every project's figures cost a job-cost walk each; the views are redone
    // only when the records or the company changed, not for a look change, and
    // only the projects that a change can reach are worked out again.
    const std::pair<quint64, QString> seen{m_db.revision(), m_db.companyID()};
    if (seen != m_figuresOf) {
        m_figuresOf = seen;
        QList<ChartGroup> groups;
        QList<QStringList> rows;
        QList<std::pair<Rec, ProjectFigures>> figures;
        for (const Rec &p : projects) {
            const ProjectFigures f = m_figures.of(m_db, p);
            groups.append({p.f.value(u"name"_s), f.contract.revised, f.billed, f.cost});
            rows.append(PrintReports::line(p, f));
            figures.append({p, f});
        }
        m_chart->setGroups(groups);
        m_table->setRows(rows);
        // Each project's figures open into their breakdowns; labels kept from the last rows keep theirs.
        static const QString columnFigures[] = {{},
                                                {},
                                                u"contract.revised"_s,
                                                u"project.billed"_s,
                                                {},
                                                u"project.retainage"_s,
                                                u"project.paid"_s,
                                                u"jobcost.actual"_s,
                                                u"budget.margin"_s};
        for (int r = 0; r < projects.size(); ++r)
            for (int c = 0; c < int(std::size(columnFigures)); ++c)
                if (QWidget *cell = m_table->cell(r, c);
                    cell && !columnFigures[c].isEmpty() && !FigureLink::refOf(cell))
                    FigureLink::attach(cell, m_db, m_nav,
                                       [ref = FigureRef{columnFigures[c], projects.at(r).id, {}}] {
                                           return std::optional(ref);
                                       });
        // The schedule reads the same figures, so they are worked out once.
        m_schedule->setSchedule(WipSchedule::from(figures));
        m_pulse->refresh(std::nullopt);
    }

    // The choice of the project report keeps its project while the list changes around it.
    QStringList key;
    for (const Rec &p : projects)
        key << p.id << p.f.value(u"number"_s) << p.f.value(u"name"_s);
    if (key != m_projectKey) {
        m_projectKey = key;
        m_projects->clear();
        for (const Rec &p : projects)
            m_projects->addItem(QString(p.f.value(u"number"_s) + u' ' + p.f.value(u"name"_s)).trimmed(),
                                p.id);
    }
    int index = m_projects->findData(m_reportProject);
    if (index < 0 && m_projects->count() > 0) {
        // Start with the project chosen in the header, else the first.
        index = std::max(0, m_projects->findData(m_nav.projectID()));
        m_reportProject = m_projects->itemData(index).toString();
    }
    if (index < 0)
        m_reportProject.clear();
    m_projects->setCurrentIndex(index);
    m_projects->setEnabled(!projects.isEmpty());
    m_printReport->setEnabled(!projects.isEmpty());
}

void ReportsScreen::chooseReportProject(const QString &id)
{
    m_reportProject = id;
    m_projects->setCurrentIndex(m_projects->findData(id));
}

QString ReportsScreen::ask(const QString &caption, const QString &name, const QString &filter)
{
    const QString proposed = QDir::home().filePath(name);
    if (saveFileHook())
        return saveFileHook()(this, caption, proposed, filter);
    return QFileDialog::getSaveFileName(this, caption, proposed, filter);
}

void ReportsScreen::savePDF()
{
    const QString path = ask(u"Save WIP PDF"_s, kWipTitle + u".pdf"_s, u"PDF files (*.pdf)"_s);
    SavedPdf::save(this, path, [&](QPageLayout::Orientation o) {
        return PDFOut::saveHTML(m_db, PrintReports::wipHTML(m_db), path, o);
    });
}

void ReportsScreen::saveCSV()
{
    const QString path = ask(u"Export WIP CSV"_s, kWipTitle + u".csv"_s, u"CSV files (*.csv)"_s);
    if (!path.isEmpty() && !CSV::save(csvRows(m_db), path))
        FWAlert::show(this, u"Export failed"_s, u"The CSV file could not be written to "_s + path + u'.');
}

void ReportsScreen::showView(int index)
{
    index = std::clamp(index, 0, 1);
    m_views->setCurrent(index);
    m_stack->setCurrentIndex(index);
    m_reportButtons->setVisible(index == 0);
    m_schedule->buttons()->setVisible(index == 1);
    m_printable->setJob(index == 0 ? wipJob(m_db) : WipScheduleView::job(m_db));
}

int ReportsScreen::view() const
{
    return m_stack->currentIndex();
}

void ReportsScreen::saveSchedulePDF()
{
    const QString path =
        ask(u"Save WIP Schedule PDF"_s, PrintReports::kWipScheduleTitle + u".pdf"_s, u"PDF files (*.pdf)"_s);
    if (!path.isEmpty() && !PDFOut::wipSchedule(m_db, path))
        FWAlert::show(this, u"Export failed"_s, u"The PDF could not be written to "_s + path + u'.');
}

void ReportsScreen::saveScheduleCSV()
{
    const QString path = ask(u"Export WIP Schedule CSV"_s, PrintReports::kWipScheduleTitle + u".csv"_s,
                             u"CSV files (*.csv)"_s);
    if (!path.isEmpty() && !CSV::save(WipSchedule::of(m_db).csvRows(), path))
        FWAlert::show(this, u"Export failed"_s, u"The CSV file could not be written to "_s + path + u'.');
}

void ReportsScreen::printProjectReport()
{
    const std::optional<Rec> project = m_db.get(m_reportProject);
    if (!project || project->kind != u"project")
        return;
    const QString id = project->id;
    PrintEngine::run(PrintJob{u"Project Report "_s + project->f.value(u"name"_s),
                              [db = &m_db, id]() -> std::optional<PrintSource> {
                                  const std::optional<Rec> p = db->get(id);
                                  if (!p)
                                      return std::nullopt;
                                  return PrintSource::fromHtml(PrintReports::projectReport(*db, *p));
                              }},
                     this);
}
