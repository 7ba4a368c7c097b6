#include "ganttview.h"
#include "shell/savedpdf.h"

#include "gantt.h"

#include "calc/datefmt.h"
#include "calc/schedule.h"
#include "documents/pdfwrite.h"
#include "documents/schedulehtml.h"
#include "look/buttons.h"
#include "look/chrome.h"
#include "look/fwui.h"
#include "shell/fieldeditors.h"
#include "shell/numberfield.h"
#include "shell/printbutton.h"
#include "shell/printcenter.h"
#include "shell/screentitle.h"
#include "store/db.h"
#include "workflows/binding.h"

#include <QtCore/QDir>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollArea>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// Column widths of the task rows in points before zoom.
constexpr qreal kNameW = 190, kStartW = 150, kDaysW = 50, kAfterW = 90, kProgressW = 46, kRemoveW = 24;
// The After column grows with its longest list up to this; beyond, the list is cut and whole in the tip.
constexpr qreal kAfterMaxW = 320;
// A chrome button's padding on each side, in points before zoom.
constexpr qreal kButtonPad = 12;
constexpr qreal kGap = 6, kPad = 8;

QStringList predIDs(const Rec &task)
{
    return task.f.value(u"preds").split(u',', Qt::SkipEmptyParts);
}

QList<Rec> tasksOf(const DB &db, const QString &project)
{
    return db.list(u"task"_s, RecFilter{.project = project});
}

// The After column's width: the longest list whole, within its bounds.
int afterWidth(const QStringList &texts)
{
    const FWUI &ui = FWUI::shared();
    const QFontMetrics fm(ui.font(12.5, QFont::DemiBold));
    int width = ui.px(kAfterW);
    for (const QString &text : texts)
        // Two pixels spare: the eliding measures a little wider than the advance.
        width = std::max(width, fm.horizontalAdvance(text) + 2 * ui.px(kButtonPad) + 4);
    return std::min(width, ui.px(kAfterMaxW));
}

// The After face cut to its button, the whole list in the tip.
void showAfter(FWChromeButton *button, const QString &text, int width)
{
    const FWUI &ui = FWUI::shared();
    const QFontMetrics fm(ui.font(12.5, QFont::DemiBold));
    button->setFixedWidth(width);
    button->setText(text.isEmpty() ? u"—"_s
                                   : fm.elidedText(text, Qt::ElideRight, width - 2 * ui.px(kButtonPad) - 2));
    button->setToolTip(text.isEmpty() ? u"Starts after: choose predecessors"_s : u"Starts after "_s + text);
    // The face is elided; a reader hears the whole list.
    button->setAccessibleName(button->toolTip());
}

// Names a row's boxes after the task, so a reader moving between rows hears whose they are.
void nameRow(QWidget *row, const QString &task)
{
    const QString of = task.isEmpty() ? u" of untitled task"_s : u" of "_s + task;
    if (auto *start = row->findChild<ThemedDate *>())
        start->setLabel(u"Start"_s + of);
    for (const auto &[object, name] :
         {std::pair{u"duration"_s, u"Duration in days"_s}, std::pair{u"progress"_s, u"Progress %"_s}})
        if (auto *box = row->findChild<NumberField *>(object)) {
            box->setAccessibleName(name + of);
            box->box()->setAccessibleName(name + of);
        }
    if (auto *remove = row->findChild<FWChromeButton *>(u"remove"_s))
        remove->setAccessibleName(u"Remove task"_s + (task.isEmpty() ? QString() : u" "_s + task));
}

// The Start column: its set width, or wider when the zoomed font needs it to show a whole date.
int startWidth()
{
    return std::max(FWUI::shared().px(kStartW), ThemedDate::fullWidth());
}

} // namespace

GanttView::GanttView(DB &db, const Rec &project, const ModuleDef &m, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
    , m_project(project)
    , m_m(m)
{
    const FWUI &ui = FWUI::shared();
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(ui.px(12));

    auto *trailing = new QWidget(this);
    auto *buttons = new QHBoxLayout(trailing);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(ui.px(8));
    auto *add = new FWChromeButton(u"Add Task"_s, u"plus"_s, trailing);
    add->setProminent(true);
    connect(add, &QAbstractButton::clicked, this,
            [this] { addTask(m_db, m_project, tasksOf(m_db, m_project.id)); });
    auto *pdf = new FWChromeButton(u"PDF"_s, u"doc.richtext"_s, trailing);
    connect(pdf, &QAbstractButton::clicked, this, &GanttView::savePDF);
    m_print = new PrintButton(printJob(), false, false, trailing);
    buttons->addWidget(add);
    buttons->addWidget(pdf);
    buttons->addWidget(m_print);
    m_title = new ScreenTitle(m, QString(), trailing, this);
    outer->addWidget(m_title);
    m_printable = new Printable(this, 1, printJob());

    auto *well = new FWWell(this);
    auto *wellBox = new QVBoxLayout(well);
    wellBox->setContentsMargins(ui.px(4), ui.px(4), ui.px(4), ui.px(4));
    m_scroll = new QScrollArea(well);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(false);
    m_scroll->viewport()->setAutoFillBackground(false);
    FieldLook::thinScrollBars(m_scroll);
    auto *content = new QWidget;
    content->setAutoFillBackground(false);
    auto *row = new QHBoxLayout(content);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->setSizeConstraint(QLayout::SetFixedSize);
    m_column = new QWidget(content);
    m_rowBox = new QVBoxLayout(m_column);
    m_rowBox->setContentsMargins(0, 0, 0, 0);
    m_rowBox->setSpacing(0);
    m_canvas = new GanttCanvas(content);
    row->addWidget(m_column, 0, Qt::AlignTop);
    row->addWidget(m_canvas, 0, Qt::AlignTop);
    m_scroll->setWidget(content);
    content->setAutoFillBackground(false);
    wellBox->addWidget(m_scroll);
    outer->addWidget(well, 1);

    // The heading row: as tall as the chart's date band.
    m_heading = new QWidget(m_column);
    auto *heads = new QHBoxLayout(m_heading);
    heads->setContentsMargins(ui.px(kPad), 0, ui.px(kPad), 0);
    heads->setSpacing(ui.px(kGap));
    const std::pair<QString, qreal> columns[] = {{u"Task"_s, kNameW},  {u"Start"_s, kStartW},
                                                 {u"Days"_s, kDaysW},  {u"After"_s, kAfterW},
                                                 {u"%"_s, kProgressW}, {QString(), kRemoveW}};
    for (const auto &[text, width] : columns) {
        auto *cap = new FWCaption(text, m_heading);
        cap->setFixedWidth(text == u"Start" ? startWidth() : ui.px(width));
        if (text == u"After")
            m_afterHead = cap;
        heads->addWidget(cap);
    }
    m_heading->setFixedHeight(ui.px(GanttSize::kHeader));
    m_rowBox->addWidget(m_heading);
    // Without tasks the list would be a bare heading over an empty well.
    m_empty = new QLabel(u"No tasks yet. Click Add Task to start the schedule."_s, m_column);
    m_empty->setContentsMargins(ui.px(kPad), ui.px(10), ui.px(kPad), ui.px(10));
    m_empty->setFont(ui.font(12.5));
    QPalette dim = m_empty->palette();
    dim.setColor(QPalette::WindowText, ui.theme().dim);
    m_empty->setPalette(dim);
    m_rowBox->addWidget(m_empty);
    refresh();
}

GanttView::~GanttView() = default;

QString GanttView::subtitle(const Rec &project, const QHash<QString, DateSpan> &dates)
{
    QDate last;
    for (const DateSpan &span : dates)
        if (span.finish.isValid() && (!last.isValid() || span.finish > last))
            last = span.finish;
    return QString(project.f.value(u"name") + u" · "_s + QString::number(dates.size()) +
                   u" tasks · finish "_s + (last.isValid() ? DateFmt::nice(last) : u"—"_s));
}

QString GanttView::afterText(const DB &db, const Rec &task)
{
    QStringList names;
    for (const QString &id : predIDs(task))
        if (const Rec *pred = db.find(id); pred && pred->kind == u"task")
            names.append(pred->f.value(u"name"));
    return names.join(u", "_s);
}

Rec GanttView::addTask(DB &db, const Rec &project, const QList<Rec> &tasks)
{
    Fields f;
    f.insert(u"name"_s, u"New task"_s);
    f.insert(u"duration"_s, u"5"_s);
    f.insert(u"progress"_s, u"0"_s);
    f.insert(u"sort"_s, QString::number(tasks.size() + 1));
    if (!tasks.isEmpty()) {
        // A task added at the end follows the one before it.
        f.insert(u"preds"_s, tasks.last().id);
    } else {
        const QString start = project.f.value(u"start");
        f.insert(u"start"_s, start.isEmpty() ? DateFmt::iso(DateFmt::today()) : start);
    }
    return db.add(u"task"_s, project.id, QString(), f);
}

void GanttView::togglePred(DB &db, const Rec &task, const QString &predID)
{
    QStringList preds = predIDs(task);
    if (!preds.removeOne(predID))
        preds.append(predID);
    Rec copy = task;
    copy.f.insert(u"preds"_s, preds.join(u','));
    db.save(copy);
}

QString GanttView::scheduleHTML(const DB &db, const Rec &project)
{
    return PrintReports::scheduleHTML(db, project);
}

void GanttView::refresh()
{
    if (const std::optional<Rec> p = m_db.get(m_project.id))
        m_project = *p;
    const QList<Rec> tasks = tasksOf(m_db, m_project.id);
    const QHash<QString, DateSpan> dates = scheduleDates(m_db, m_project.id);
    m_canvas->setSchedule(tasks, dates, GanttRange::of(dates, m_project.f.value(u"start"), DateFmt::today()));
    m_title->setSubtitle(subtitle(m_project, dates));
    m_dates = dates;
    m_printable->setTitle(u"Schedule "_s + m_project.f.value(u"name"));

    QStringList ids, afters;
    for (const Rec &t : tasks) {
        ids.append(t.id);
        afters.append(afterText(m_db, t));
    }
    m_afterW = afterWidth(afters);
    m_afterHead->setFixedWidth(m_afterW);
    if (ids != m_rowIDs) {
        for (QWidget *w : std::as_const(m_rows))
            w->deleteLater();
        m_rows.clear();
        for (const Rec &t : tasks) {
            QWidget *w = makeRow(t);
            m_rowBox->addWidget(w);
            m_rows.append(w);
        }
        m_rowIDs = ids;
    } else {
        for (int i = 0; i < m_rows.size(); ++i) {
            for (QObject *child : m_rows[i]->children())
                if (auto *r = dynamic_cast<Refreshable *>(child))
                    r->refresh();
            nameRow(m_rows[i], tasks[i].f.value(u"name"));
        }
    }
    for (int i = 0; i < m_rows.size(); ++i) {
        if (auto *after = m_rows[i]->findChild<FWChromeButton *>(u"after"_s))
            showAfter(after, afters[i], m_afterW);
        if (auto *start = m_rows[i]->findChild<ThemedDate *>(u"start"_s))
            suggestStart(start, tasks[i], dates.value(tasks[i].id).start, afters[i]);
    }
    m_empty->setVisible(tasks.isEmpty());
    m_column->adjustSize();
}

QWidget *GanttView::makeRow(const Rec &task)
{
    const FWUI &ui = FWUI::shared();
    auto *row = new QWidget(m_column);
    row->setFixedHeight(ui.px(GanttSize::kRow));
    auto *box = new QHBoxLayout(row);
    box->setContentsMargins(ui.px(kPad), 0, ui.px(kPad), 0);
    box->setSpacing(ui.px(kGap));
    const auto bind = [&](const QString &key) { return TextBinding::of(recBinding(m_db, task.id, key)); };

    auto *name = new ThemedTextField(bind(u"name"_s), u"Task name"_s, false, row);
    name->setFixedWidth(ui.px(kNameW));
    auto *start = new ThemedDate(bind(u"start"_s), row);
    start->setObjectName(u"start"_s);
    start->setFixedWidth(startWidth());
    auto *days = new NumberField(bind(u"duration"_s), false, u"0"_s, row);
    days->setObjectName(u"duration"_s);
    days->setFixedWidth(ui.px(kDaysW));
    auto *after = new FWChromeButton(QString(), QString(), row);
    after->setObjectName(u"after"_s);
    showAfter(after, afterText(m_db, task), m_afterW);
    connect(after, &QAbstractButton::clicked, this, [this, after, id = task.id] {
        const int i = int(m_rowIDs.indexOf(id));
        if (QMenu *menu = afterMenu(i))
            menu->exec(after->mapToGlobal(QPoint(0, after->height())));
    });
    auto *progress = new NumberField(bind(u"progress"_s), false, u"0"_s, row);
    progress->setObjectName(u"progress"_s);
    progress->setFixedWidth(ui.px(kProgressW));
    auto *remove = new FWChromeButton(QString(), u"minus.circle.fill"_s, row);
    remove->setCompact(true);
    remove->setFixedWidth(ui.px(kRemoveW));
    remove->setToolTip(u"Remove task"_s);
    remove->setObjectName(u"remove"_s);
    nameRow(row, task.f.value(u"name"));
    connect(remove, &QAbstractButton::clicked, this, [this, id = task.id] { m_db.remove(id); });

    for (QWidget *w :
         {static_cast<QWidget *>(name), static_cast<QWidget *>(start), static_cast<QWidget *>(days),
          static_cast<QWidget *>(after), static_cast<QWidget *>(progress), static_cast<QWidget *>(remove)})
        box->addWidget(w, 0, Qt::AlignVCenter);
    return row;
}

void GanttView::suggestStart(ThemedDate *start, const Rec &task, const QDate &worked, const QString &after)
{
    // Only a start of its own is shown as set; one that follows from the schedule is marked so.
    if (!task.f.value(u"start").isEmpty() || !worked.isValid()) {
        start->setSuggestion({}, {});
        return;
    }
    start->setSuggestion(worked,
                         after.isEmpty()
                             ? u"Worked out from the project's start. Choose it to fix this date."_s
                             : u"Worked out: starts after "_s + after + u". Choose it to fix this date."_s);
}

QMenu *GanttView::afterMenu(int row)
{
    if (row < 0 || row >= m_rowIDs.size())
        return nullptr;
    auto *menu = findChild<QMenu *>(u"afterMenu"_s, Qt::FindDirectChildrenOnly);
    if (!menu) {
        menu = new QMenu(this);
        menu->setObjectName(u"afterMenu"_s);
    }
    fillAfterMenu(menu, m_rowIDs[row]);
    return menu;
}

void GanttView::fillAfterMenu(QMenu *menu, const QString &taskID)
{
    menu->clear();
    const Rec *task = m_db.find(taskID);
    if (!task)
        return;
    const QStringList preds = predIDs(*task);
    for (const Rec &other : tasksOf(m_db, m_project.id)) {
        if (other.id == taskID)
            continue;
        QAction *a =
            menu->addAction(other.f.value(u"name").isEmpty() ? u"Untitled"_s : other.f.value(u"name"));
        a->setCheckable(true);
        a->setChecked(preds.contains(other.id));
        connect(a, &QAction::triggered, this, [this, taskID, pred = other.id] {
            if (const std::optional<Rec> t = m_db.get(taskID))
                togglePred(m_db, *t, pred);
        });
    }
}

PrintJob GanttView::printJob() const
{
    return PrintJob{u"Schedule "_s + m_project.f.value(u"name"),
                    [db = &m_db, id = m_project.id]() -> std::optional<PrintSource> {
                        const std::optional<Rec> p = db->get(id);
                        if (!p)
                            return std::nullopt;
                        return PrintSource::fromHtml(scheduleHTML(*db, *p));
                    }};
}

void GanttView::savePDF()
{
    const QString name = u"Schedule "_s + m_project.f.value(u"name");
    const QString proposed = QDir::home().filePath(name + u".pdf"_s);
    const QString path = QFileDialog::getSaveFileName(this, u"Save PDF"_s, proposed, u"PDF files (*.pdf)"_s);
    SavedPdf::save(this, path, [&](QPageLayout::Orientation o) {
        return PDFOut::saveHTML(m_db, scheduleHTML(m_db, m_project), path, o);
    });
}
