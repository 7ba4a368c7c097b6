#include "accessible.h"

#include "accessiblecontrols.h"
#include "accessibletable.h"
#include "gantt.h"
#include "kpitile.h"
#include "markupview.h"
#include "moneygrid.h"

#include "calc/money.h"
#include "documents/pdfmarks.h"
#include "look/segment.h"
#include "look/statuspill.h"
#include "shell/tlapp.h"

#include <QtCharts/QAbstractBarSeries>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QBarSet>
#include <QtCharts/QChart>
#include <QtCharts/QChartView>
#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// The schedule: one row per task, at the height the chart draws it.
class GanttAccess : public AccessibleTable
{
public:
    explicit GanttAccess(GanttCanvas *canvas)
        : AccessibleTable(
              canvas, [] { return u"Schedule chart"_s; },
              [canvas = QPointer(canvas)] {
                  return AccessibleRows{GanttCanvas::columnTitles(),
                                        canvas ? canvas->rowTexts() : QList<QStringList>{}};
              })
        , m_canvas(canvas)
    {}
    QRect rowRect(int row) const override
    {
        const QRect all = rect();
        if (!m_canvas)
            return all;
        const QRectF band = m_canvas->rowBand(row);
        return {all.left(), all.top() + int(band.top()), all.width(), int(std::ceil(band.height()))};
    }

private:
    QPointer<GanttCanvas> m_canvas;
};

// The text a cell of a figure grid shows, whatever widget shows it.
QString cellText(QWidget *w)
{
    if (auto *l = qobject_cast<QLabel *>(w))
        return l->text();
    if (auto *e = w->findChild<QLineEdit *>())
        return e->text();
    if (auto *e = qobject_cast<QLineEdit *>(w))
        return e->text();
    QStringList parts;
    for (QLabel *l : w->findChildren<QLabel *>())
        if (!l->text().isEmpty())
            parts << l->text();
    return parts.join(u' ');
}

// A figure grid is a table whose cells are the widgets it lays out, so a box
// typed in stays the box a reader lands on.
class GridAccess : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit GridAccess(MoneyGrid *grid)
        : QAccessibleWidget(grid, QAccessible::Table)
        , m_grid(grid)
    {}
    QString text(QAccessible::Text t) const override
    {
        if (!m_grid)
            return {};
        if (t == QAccessible::Name && m_grid->accessibleName().isEmpty()) {
            QStringList titles;
            for (const GridCol &c : m_grid->head())
                titles << c.title;
            return titles.join(u", "_s);
        }
        if (t == QAccessible::Description && m_grid->accessibleDescription().isEmpty())
            return QString::number(m_grid->keys().size()) + u" rows"_s;
        return QAccessibleWidget::text(t);
    }
    void *interface_cast(QAccessible::InterfaceType t) override
    {
        if (t == QAccessible::TableInterface)
            return static_cast<QAccessibleTableInterface *>(this);
        return QAccessibleWidget::interface_cast(t);
    }
    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    QAccessibleInterface *cellAt(int row, int column) const override
    {
        const MoneyGrid::Cells cells = rowCells(row);
        return column >= 0 && column < cells.size() ? QAccessible::queryAccessibleInterface(cells.at(column))
                                                    : nullptr;
    }
    QString columnDescription(int column) const override
    {
        return m_grid ? m_grid->head().value(column).title : QString();
    }
    QString rowDescription(int row) const override
    {
        const MoneyGrid::Cells cells = rowCells(row);
        return cells.isEmpty() ? QString() : cellText(cells.first());
    }
    int columnCount() const override { return m_grid ? int(m_grid->head().size()) : 0; }
    int rowCount() const override { return m_grid ? int(m_grid->keys().size()) : 0; }
    int selectedCellCount() const override { return 0; }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    QList<QAccessibleInterface *> selectedCells() const override { return {}; }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *) override {}

private:
    MoneyGrid::Cells rowCells(int row) const
    {
        return m_grid ? m_grid->cells(m_grid->keys().value(row)) : MoneyGrid::Cells{};
    }
    QPointer<MoneyGrid> m_grid;
};

// A row of a figure grid, named by what its cells say; the first row is the column titles.
class GridRowAccess : public QAccessibleWidget
{
public:
    GridRowAccess(QWidget *row, MoneyGrid *grid)
        : QAccessibleWidget(row, QAccessible::Row)
        , m_grid(grid)
    {}
    QString text(QAccessible::Text t) const override
    {
        if (!m_grid || t != QAccessible::Name || !widget()->accessibleName().isEmpty())
            return QAccessibleWidget::text(t);
        const QString key = m_grid->keys().value(rowIndex());
        if (key.isEmpty())
            return u"Column titles"_s;
        const QString name = m_grid->rowName(key);
        return name.isEmpty() ? u"Row "_s + QString::number(rowIndex() + 1) : name;
    }

private:
    // The row's place among the body rows; -1 for the header.
    int rowIndex() const
    {
        if (!m_grid)
            return -1;
        const QStringList keys = m_grid->keys();
        for (int i = 0; i < keys.size(); ++i) {
            const MoneyGrid::Cells cells = m_grid->cells(keys.at(i));
            if (!cells.isEmpty() && cells.first()->parentWidget() == widget())
                return i;
        }
        return -1;
    }
    QPointer<MoneyGrid> m_grid;
};

// A chart's bars as a table: the categories down, one column per bar set.
AccessibleRows chartRows(const QChart *chart)
{
    AccessibleRows out;
    for (QAbstractSeries *s : chart->series()) {
        auto *bars = qobject_cast<QAbstractBarSeries *>(s);
        if (!bars)
            continue;
        QStringList categories;
        for (QAbstractAxis *axis : bars->attachedAxes())
            if (auto *c = qobject_cast<QBarCategoryAxis *>(axis))
                categories = c->categories();
        out.columns = {u"Category"_s};
        for (QBarSet *set : bars->barSets())
            out.columns << set->label();
        for (int i = 0; i < categories.size(); ++i) {
            // A repeated name carries invisible marks to keep the axis apart; a reader needs none.
            QStringList row{QString(categories.at(i)).remove(u'\u200B')};
            for (QBarSet *set : bars->barSets())
                row << (i < set->count() ? Money::fmt(std::llround(set->at(i) * 100)) : QString());
            out.rows << row;
        }
        break;
    }
    return out;
}

// A headline tile reads as its title and figure, with its note after.
class TileAccess : public QAccessibleWidget
{
public:
    explicit TileAccess(KPITile *tile)
        : QAccessibleWidget(tile, QAccessible::StaticText)
        , m_tile(tile)
    {}
    QString text(QAccessible::Text t) const override
    {
        if (!isValid())
            return {};
        if (t == QAccessible::Name)
            return m_tile->title() + u": "_s + m_tile->value();
        if (t == QAccessible::Description)
            return m_tile->warn() && !m_tile->note().isEmpty() ? u"Warning: "_s + m_tile->note()
                                                               : m_tile->note();
        return QAccessibleWidget::text(t);
    }

private:
    QPointer<KPITile> m_tile;
};

// A bar of a share spent: a progress bar reading its percentage, over 100 when over budget.
class BarAccess : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit BarAccess(GlowBar *bar)
        : QAccessibleWidget(bar, QAccessible::ProgressBar)
        , m_bar(bar)
    {}
    QString text(QAccessible::Text t) const override
    {
        if (!isValid())
            return {};
        if (t == QAccessible::Value)
            return QString::number(std::lround(m_bar->fraction() * 100)) + u'%';
        if (t == QAccessible::Name && m_bar->accessibleName().isEmpty())
            return u"Share spent"_s;
        return QAccessibleWidget::text(t);
    }
    void *interface_cast(QAccessible::InterfaceType t) override
    {
        if (t == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(t);
    }
    QVariant currentValue() const override { return m_bar ? m_bar->fraction() * 100 : 0.0; }
    void setCurrentValue(const QVariant &) override {}
    QVariant maximumValue() const override { return std::max(100.0, m_bar ? m_bar->fraction() * 100 : 0.0); }
    QVariant minimumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return 1.0; }

private:
    QPointer<GlowBar> m_bar;
};

// A status pill reads as the word it shows.
class PillAccess : public QAccessibleWidget
{
public:
    explicit PillAccess(StatusPill *pill)
        : QAccessibleWidget(pill, QAccessible::StaticText)
        , m_pill(pill)
    {}
    QString text(QAccessible::Text t) const override
    {
        if (!isValid())
            return {};
        if (t == QAccessible::Name)
            return m_pill->text().isEmpty() ? QString() : u"Status: "_s + StatusPill::shown(m_pill->text());
        return QAccessibleWidget::text(t);
    }

private:
    QPointer<StatusPill> m_pill;
};

QString kindName(PdfMarkup::Kind k)
{
    switch (k) {
    case PdfMarkup::Kind::Ink: return u"Pen"_s;
    case PdfMarkup::Kind::Box: return u"Box"_s;
    case PdfMarkup::Kind::Highlight: return u"Highlight"_s;
    case PdfMarkup::Kind::Note: return u"Note"_s;
    case PdfMarkup::Kind::Other: break;
    }
    return u"Other mark"_s;
}

QAccessibleInterface *factory(const QString &className, QObject *object)
{
    if (!object || !object->isWidgetType())
        return nullptr;
    auto *w = static_cast<QWidget *>(object);
    if (className == u"GanttCanvas")
        return new GanttAccess(static_cast<GanttCanvas *>(w));
    if (className == u"MoneyGrid")
        return new GridAccess(static_cast<MoneyGrid *>(w));
    if (className == u"KPITile")
        return new TileAccess(static_cast<KPITile *>(w));
    if (className == u"GlowBar")
        return new BarAccess(static_cast<GlowBar *>(w));
    if (className == u"FWSegment")
        return ControlAccess::segment(static_cast<FWSegment *>(w));
    if (className == u"StatusPill")
        return new PillAccess(static_cast<StatusPill *>(w));
    if (className == u"MarkupView") {
        // The sheet goes when another is opened; a question asked in between gets no answer.
        QPointer<MarkupView> view = static_cast<MarkupView *>(w);
        return new AccessibleTable(
            view,
            [view]() -> QString {
                if (!view)
                    return {};
                const int pages = view->pageCount();
                const QString sheet = view->sheetName().trimmed().isEmpty()
                                          ? QFileInfo(view->pdf().path()).completeBaseName()
                                          : view->sheetName().trimmed();
                return u"Plan sheet "_s + sheet + u", "_s + QString::number(pages) +
                       (pages == 1 ? u" page"_s : u" pages"_s);
            },
            [view] {
                AccessibleRows out{{u"Page"_s, u"Mark"_s, u"Text"_s}, {}};
                for (int page = 0; view && page < view->pageCount(); ++page)
                    for (const PdfMarkup::Mark &m : view->pdf().marks(page))
                        out.rows.append({QString::number(page + 1), kindName(m.kind), m.text});
                return out;
            });
    }
    if (auto *chartView = qobject_cast<QChartView *>(object)) {
        QPointer<QChartView> view = chartView;
        return new AccessibleTable(
            chartView, [view] { return view ? view->chart()->title() : QString(); },
            [view] { return view ? chartRows(view->chart()) : AccessibleRows{}; });
    }
    if (className == u"QComboBox")
        return ControlAccess::choice(static_cast<QComboBox *>(w));
    if (className == u"QLabel")
        return ControlAccess::decoration(static_cast<QLabel *>(w));
    // A grid's rows are plain widgets, known by their place in it.
    if (className == u"QWidget")
        if (auto *grid = qobject_cast<MoneyGrid *>(w->parentWidget()))
            return new GridRowAccess(w, grid);
    return nullptr;
}

} // namespace

namespace ScreenAccess {

void install()
{
    // The last factory put in place is asked first, and the toolkit puts its
    // own in when the application starts: ours goes after, or its plain
    // labels and widgets would be answered before ours are.
    const auto put = [] {
        QAccessible::removeFactory(factory);
        QAccessible::installFactory(factory);
    };
    if (QCoreApplication::instance())
        put();
    else
        TLApp::appReadyHooks().append(put);
}

} // namespace ScreenAccess
