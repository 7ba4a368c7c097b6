#include "wipscheduleview.h"

#include "hubparts.h"
#include "projectchart.h"

#include "calc/fmt.h"
#include "documents/wipschedulehtml.h"
#include "look/buttons.h"
#include "look/fwui.h"
#include "shell/notice.h"
#include "shell/printbutton.h"

#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QBarSet>
#include <QtCharts/QCategoryAxis>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCharts/QLegend>
#include <QtCharts/QStackedBarSeries>
#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString kChartTitle = u"Over / under billing by job"_s;
constexpr int kOverColumn = 12, kUnderColumn = 13;
constexpr qreal kTextPt = 10.5;
// Room on each side of a cell's text: thirteen columns of figures must fit a
// laptop's window without scrolling sideways.
constexpr qreal kCellPad = 4;
// The project's column takes what the figures leave, between these widths.
constexpr qreal kNameMin = 100, kNameMax = 280;

double dollars(qint64 cents)
{
    return double(cents) / 100.0;
}

// A job's name along the chart's axis: its number, which stays short with fifty jobs.
QString jobLabel(const WipLine &l)
{
    return l.number.isEmpty() ? (l.name.isEmpty() ? u"—"_s : l.name) : l.number;
}

} // namespace

// --- WipScheduleTable ---

WipScheduleTable::WipScheduleTable(QWidget *parent)
    : QWidget(parent)
{
    setAccessibleName(PrintReports::kWipScheduleTitle);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(false);
    setCursor(Qt::PointingHandCursor);
    connect(&FWUI::shared(), &FWUI::changed, this, [this] {
        measure();
        update();
    });
}

void WipScheduleTable::setSchedule(const WipSchedule &s)
{
    QList<Row> rows{{Kind::Head, PrintReports::wipScheduleHeads()}};
    const auto total = [](Kind kind, const QString &label, const WipLine &l) {
        QStringList cells = PrintReports::wipScheduleCells(l);
        cells[0].clear();
        cells[1] = label;
        return Row{kind, cells, l.overBilled, l.underBilled};
    };
    for (const WipSection *section : {&s.inProgress, &s.completed}) {
        rows.append({Kind::Title, {section->title}});
        for (const WipLine &l : section->lines)
            rows.append(
                {Kind::Job, PrintReports::wipScheduleCells(l), l.overBilled, l.underBilled, l.project});
        if (section->lines.isEmpty())
            rows.append({Kind::Job, {QString(), u"None"_s}});
        rows.append(total(Kind::Total, u"Total "_s + section->title.toLower(), section->total));
    }
    rows.append(total(Kind::Grand, u"Total all contracts"_s, s.total));
    m_rows = rows;
    measure();
    updateGeometry();
    update();
}

void WipScheduleTable::measure()
{
    const FWUI &ui = FWUI::shared();
    const QFontMetrics plain(ui.font(kTextPt)), bold(ui.font(kTextPt, QFont::DemiBold));
    const QFontMetrics head(ui.font(kTextPt - 1, QFont::DemiBold));
    const int columns = int(PrintReports::wipScheduleHeads().size());
    m_widths = QList<int>(columns, 0);
    m_headHeight = 0;
    for (const Row &r : std::as_const(m_rows)) {
        for (int c = 0; c < r.cells.size() && c < columns; ++c) {
            if (r.kind == Kind::Head) {
                // A head wraps at its blanks: its longest word sets the least width.
                for (const QString &word : r.cells.at(c).split(u' '))
                    m_widths[c] = std::max(m_widths[c], head.horizontalAdvance(word));
                continue;
            }
            if (r.kind == Kind::Title || c == 1)
                continue; // titles and names overflow or are cut, never widen
            const QFontMetrics &fm = r.kind == Kind::Job ? plain : bold;
            m_widths[c] = std::max(m_widths[c], fm.horizontalAdvance(r.cells.at(c)));
        }
    }
    const int pad = ui.px(kCellPad);
    for (int &w : m_widths)
        w += 2 * pad;
    m_widths[1] = nameWidth(width());
    for (int c = 0; c < columns && !m_rows.isEmpty(); ++c) {
        const QRect box = head.boundingRect(QRect(0, 0, m_widths[c] - 2 * pad, 1000), Qt::TextWordWrap,
                                            m_rows.first().cells.value(c));
        m_headHeight = std::max(m_headHeight, box.height());
    }
    m_headHeight += ui.px(10);
    m_rowHeight = plain.height() + ui.px(8);
}

int WipScheduleTable::othersWidth() const
{
    int width = 0;
    for (int c = 0; c < m_widths.size(); ++c)
        width += c == 1 ? 0 : m_widths.at(c);
    return width;
}

int WipScheduleTable::nameWidth(int total) const
{
    const FWUI &ui = FWUI::shared();
    return std::clamp(total - othersWidth(), ui.px(kNameMin), ui.px(kNameMax));
}

void WipScheduleTable::resizeEvent(QResizeEvent *)
{
    if (m_widths.size() > 1)
        m_widths[1] = nameWidth(width());
}

QSize WipScheduleTable::sizeHint() const
{
    const FWUI &ui = FWUI::shared();
    return {othersWidth() + ui.px(kNameMax),
            m_headHeight + int(std::max<qsizetype>(m_rows.size() - 1, 0)) * m_rowHeight};
}

QSize WipScheduleTable::minimumSizeHint() const
{
    return {othersWidth() + FWUI::shared().px(kNameMin), sizeHint().height()};
}

QColor WipScheduleTable::colourOf(int row, int column) const
{
    const FWTheme &t = FWUI::shared().theme();
    if (row < 0 || row >= m_rows.size())
        return t.text;
    const Row &r = m_rows.at(row);
    if (r.kind == Kind::Head)
        return t.dim;
    // Over billing is the program's warning orange, which no finish's accent
    // is mistaken for beside it.
    if (column == kOverColumn && r.over > 0)
        return Notice::orange();
    if (column == kUnderColumn && r.under > 0)
        return t.accent;
    return t.text;
}

void WipScheduleTable::paintEvent(QPaintEvent *)
{
    if (m_widths.isEmpty())
        return;
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    QPainter p(this);
    const int half = ui.px(kCellPad);
    QColor rule = t.dim;
    rule.setAlphaF(0.25);
    int y = 0;
    for (int i = 0; i < m_rows.size(); ++i) {
        const Row &r = m_rows.at(i);
        const int height = r.kind == Kind::Head ? m_headHeight : m_rowHeight;
        if (r.kind == Kind::Title || r.kind == Kind::Grand) {
            QColor band = t.raised;
            band.setAlphaF(0.6);
            p.fillRect(QRect(0, y, width(), height), band);
        }
        if (r.kind == Kind::Total || r.kind == Kind::Grand) {
            p.setPen(QPen(t.dim, 1));
            p.drawLine(0, y, width(), y);
        }
        p.setFont(r.kind == Kind::Head  ? ui.font(kTextPt - 1, QFont::DemiBold)
                  : r.kind == Kind::Job ? ui.font(kTextPt)
                                        : ui.font(kTextPt, QFont::DemiBold));
        int x = 0;
        for (int c = 0; c < m_widths.size(); ++c) {
            const int w = m_widths.at(c);
            const QString text = r.cells.value(c);
            if (!text.isEmpty()) {
                const QRect box(x + half, y, w - 2 * half, height);
                p.setPen(colourOf(i, c));
                if (r.kind == Kind::Head) {
                    p.drawText(box,
                               int(c >= 2 ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignBottom |
                                   Qt::TextWordWrap,
                               text);
                } else if (r.kind == Kind::Title) {
                    p.drawText(QRect(box.left(), y, width() - box.left(), height),
                               Qt::AlignLeft | Qt::AlignVCenter, text);
                } else {
                    const QString shown = c == 1 && r.kind == Kind::Job
                                              ? p.fontMetrics().elidedText(text, Qt::ElideRight, box.width())
                                              : text;
                    const int align = c >= 2 ? Qt::AlignRight : Qt::AlignLeft;
                    // A total's label reads across the number and name columns.
                    const QRect at =
                        c == 1 && r.kind != Kind::Job ? QRect(half, y, x + w - 2 * half, height) : box;
                    p.drawText(at, align | Qt::AlignVCenter, shown);
                }
            }
            x += w;
        }
        if (hasFocus() && m_current.first == i && m_current.second >= 0 &&
            m_current.second < m_widths.size()) {
            int left = 0;
            for (int c = 0; c < m_current.second; ++c)
                left += m_widths.at(c);
            p.setPen(QPen(t.accent, 1.5));
            p.drawRect(QRect(left + 1, y + 1, m_widths.at(m_current.second) - 3, height - 3));
        }
        y += height;
        if (r.kind == Kind::Head || r.kind == Kind::Job) {
            p.setPen(QPen(r.kind == Kind::Head ? t.dim : rule, 1));
            p.drawLine(0, y - 1, width(), y - 1);
        }
    }
}

// --- WipBillingChart ---

WipBillingChart::WipBillingChart(QWidget *parent)
    : ChartPanel(kChartTitle, parent)
{}

void WipBillingChart::setSchedule(const WipSchedule &s)
{
    const QList<WipLine> lines = s.inProgress.lines + s.completed.lines;
    if (m_built && lines == m_lines)
        return;
    m_lines = lines;
    rebuild();
}

void WipBillingChart::rebuild()
{
    m_built = true;
    clear();
    const FWUI &ui = FWUI::shared();
    const FWTheme &t = ui.theme();
    auto *over = new QBarSet(u"Over billings"_s);
    auto *under = new QBarSet(u"Under billings"_s);
    over->setColor(Notice::orange());
    over->setBorderColor(Notice::orange().darker(130));
    under->setColor(t.accent);
    under->setBorderColor(t.accent.darker(130));
    QStringList names;
    double top = 0, bottom = 0;
    for (const WipLine &l : std::as_const(m_lines)) {
        // The category axis merges equal names, so a repeated one takes a mark.
        QString name = jobLabel(l);
        while (names.contains(name))
            name += u'\u200B';
        names << name;
        over->append(dollars(l.overBilled));
        under->append(-dollars(l.underBilled));
        top = std::max(top, dollars(l.overBilled));
        bottom = std::max(bottom, dollars(l.underBilled));
    }
    // One job is either over or under billed, so stacking leaves one bar each.
    auto *series = new QStackedBarSeries;
    series->append(over);
    series->append(under);
    series->setBarWidth(0.7);
    m_chart->addSeries(series);

    auto *jobs = new QBarCategoryAxis;
    jobs->append(names);
    jobs->setGridLineVisible(false);
    m_chart->addAxis(jobs, Qt::AlignBottom);
    series->attachAxis(jobs);

    // One step for both directions, so that the zero line sits on a label.
    const auto [span, step] = ProjectChart::niceScale(std::max(top, bottom));
    const double up = top > 0 ? std::ceil(top / step) * step : 0;
    const double down = bottom > 0 ? std::ceil(bottom / step) * step : 0;
    auto *amounts = new QCategoryAxis;
    amounts->setRange(-down, std::max(up, down > 0 ? 0.0 : span));
    amounts->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
    amounts->setStartValue(-down);
    for (double v = -down; v <= std::max(up, down > 0 ? 0.0 : span) + step / 2; v += step) {
        const double at = std::abs(v) < step / 2 ? 0.0 : v;
        const QString label = at < 0 ? u"−"_s + Fmt::shortMoney(-at) : Fmt::shortMoney(at);
        amounts->append(label, at);
    }
    m_chart->addAxis(amounts, Qt::AlignLeft);
    series->attachAxis(amounts);

    for (QAbstractAxis *axis : m_chart->axes()) {
        axis->setLabelsFont(ui.font(names.size() > 30 ? 8.5 : 10));
        axis->setLabelsColor(t.dim);
        QColor grid = t.dim;
        grid.setAlphaF(0.25);
        axis->setGridLineColor(grid);
        axis->setLinePenColor(grid);
    }
    if (names.size() > 24)
        jobs->setLabelsAngle(-90);
}

QStringList WipBillingChart::categories() const
{
    for (QAbstractAxis *axis : m_chart->axes())
        if (auto *b = qobject_cast<QBarCategoryAxis *>(axis))
            return b->categories();
    return {};
}

namespace {
QList<double> values(const QChart *chart, int set)
{
    QList<double> out;
    for (QAbstractSeries *s : chart->series())
        if (auto *bars = qobject_cast<QStackedBarSeries *>(s))
            if (QBarSet *b = bars->barSets().value(set))
                for (int i = 0; i < b->count(); ++i)
                    out.append(b->at(i));
    return out;
}
} // namespace

QList<double> WipBillingChart::overBars() const
{
    return values(m_chart, 0);
}

QList<double> WipBillingChart::underBars() const
{
    return values(m_chart, 1);
}

// --- WipScheduleView ---

PrintJob WipScheduleView::job(const DB &db)
{
    return PrintJob{PrintReports::kWipScheduleTitle, [db = &db]() -> std::optional<PrintSource> {
                        return PrintReports::wipScheduleSource(*db);
                    }};
}

WipScheduleView::WipScheduleView(const DB &db, QWidget *parent)
    : QWidget(parent)
    , m_db(db)
{
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    m_content = new QWidget;
    auto *body = new QVBoxLayout(m_content);

    // The buttons stand in the screen's top row, beside the view switch.
    m_buttons = new QWidget(this);
    auto *row = new QHBoxLayout(m_buttons);
    row->setContentsMargins(0, 0, 0, 0);
    m_pdf = new FWChromeButton(u"PDF"_s, u"doc.richtext.fill"_s, m_buttons);
    m_csv = new FWChromeButton(u"CSV"_s, u"doc.plaintext.fill"_s, m_buttons);
    connect(m_pdf, &QAbstractButton::clicked, this, &WipScheduleView::pdfRequested);
    connect(m_csv, &QAbstractButton::clicked, this, &WipScheduleView::csvRequested);
    row->addWidget(m_pdf);
    row->addWidget(m_csv);
    row->addWidget(new PrintButton(job(m_db), false, false, m_buttons));

    m_chart = new WipBillingChart(m_content);
    body->addWidget(m_chart);

    m_tablePanel = new FWPanel(m_content);
    auto *tableBox = new QVBoxLayout(m_tablePanel);
    tableBox->addWidget(HubParts::heading(u"chart.bar.doc.horizontal.fill"_s,
                                          new LookLabel(PrintReports::kWipScheduleTitle, 14, QFont::Bold),
                                          m_tablePanel));
    m_note = new LookLabel(WipSchedule::methodNote(), 11, QFont::Normal, true, m_tablePanel);
    m_note->setWordWrap(true);
    tableBox->addWidget(m_note);
    m_table = new WipScheduleTable;
    // The table is as wide as its figures: on a narrow window it alone scrolls sideways.
    m_tableArea = new QScrollArea(m_tablePanel);
    m_tableArea->setWidgetResizable(true);
    m_tableArea->setFrameShape(QFrame::NoFrame);
    m_tableArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_tableArea->viewport()->setAutoFillBackground(false);
    m_tableArea->setWidget(m_table);
    tableBox->addWidget(m_tableArea);
    m_marks = new LookLabel(QString(), 11, QFont::Normal, true, m_tablePanel);
    m_marks->setWordWrap(true);
    tableBox->addWidget(m_marks);
    body->addWidget(m_tablePanel);
    body->addStretch(1);

    outer->addWidget(HubParts::scroller(m_content, this));
    margins();
    connect(&FWUI::shared(), &FWUI::changed, this, &WipScheduleView::margins);
}

void WipScheduleView::margins()
{
    const FWUI &ui = FWUI::shared();
    m_content->layout()->setSpacing(ui.px(14));
    m_content->layout()->setContentsMargins(0, 0, ui.px(6), ui.px(12));
    m_tablePanel->layout()->setContentsMargins(ui.px(14), ui.px(12), ui.px(14), ui.px(14));
    m_tablePanel->layout()->setSpacing(ui.px(10));
    fitTable();
}

void WipScheduleView::fitTable()
{
    // Tall enough for every row and the sideways scroll bar: the page scrolls up and down, not the table.
    m_tableArea->setFixedHeight(m_table->sizeHint().height() +
                                m_tableArea->horizontalScrollBar()->sizeHint().height());
}

void WipScheduleView::setSchedule(const WipSchedule &schedule)
{
    m_schedule = schedule;
    m_table->setSchedule(schedule);
    const QStringList marks = schedule.markNotes();
    m_marks->setText(marks.join(u'\n'));
    m_marks->setVisible(!marks.isEmpty());
    fitTable();
    m_chart->setSchedule(schedule);
}
