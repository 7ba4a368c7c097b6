#pragma once
#include "shell/modulearea.h"

#include "store/rec.h"

#include <QtCore/QHash>
#include <QtGui/QColor>
#include <QtWidgets/QLabel>

#include <functional>
#include <optional>

class KPITile;
class PickProject;
class Printable;
struct PrintJob;
class QScrollArea;
class QStackedLayout;
class QVBoxLayout;
class ScreenTitle;

// One column of a figure grid: its title, its width in points before zoom
// (0 takes the free width) and whether its figures sit on the right.
struct GridCol
{
    QString title;
    int width = 0;
    bool right = true;
};
// The header of a figure grid, one entry per column.
using GridHead = QList<GridCol>;

// One figure of a grid: cents in the figures' face, right-aligned; bold for
// totals, and tinted when a sign means something (red over budget).
class MoneyCell : public QLabel
{
    Q_OBJECT
public:
    explicit MoneyCell(QWidget *parent = nullptr);
    void set(qint64 cents, bool bold = false, const QColor &tint = {});
    // The size of the figure in points before zoom (12 unless set).
    void setPoints(qreal points);
    qint64 value() const { return m_value; }
    bool bold() const { return m_bold; }
    QColor tint() const { return m_tint; }

    // The colours of a figure that is short (red) or within budget (green).
    static QColor red();
    static QColor green();

private:
    void restyle();
    qint64 m_value = 0;
    bool m_bold = false;
    QColor m_tint;
    qreal m_points = 12;
    bool m_shown = false;
};

// A figure table: a header row, then body rows kept by key. A refresh keeps
// every row whose key is still there, with its widgets (and so the focus and
// caret of a box being typed in), and only adds and drops the others.
class MoneyGrid : public QWidget
{
    Q_OBJECT
public:
    using Cells = QList<QWidget *>;
    // Makes a new row's cells, one per column, as children of `row`.
    using Maker = std::function<Cells(const QString &key, QWidget *row)>;

    explicit MoneyGrid(const GridHead &head, QWidget *parent = nullptr);
    // Shows exactly the rows of `keys`, in that order.
    void sync(const QStringList &keys, const Maker &make);
    // The cells of the row `key`, or none.
    Cells cells(const QString &key) const { return m_cells.value(key); }
    // The cell of the row `key` in column `col` cast to T, or null.
    template<class T> T *cell(const QString &key, int col) const
    {
        const Cells c = m_cells.value(key);
        return col < c.size() ? qobject_cast<T *>(c.at(col)) : nullptr;
    }
    QStringList keys() const { return m_order; }
    // Names each box typed in after its column and its row's first words, for a
    // screen reader; called again when those words change.
    void nameInputs();
    // What the row `key` is called: the words of its text columns before its figures.
    QString rowName(const QString &key) const;
    const GridHead &head() const { return m_head; }

    // A plain text cell of a row: plain text, elided to its column, bold for totals.
    static QLabel *text(QWidget *row, bool bold = false);

private:
    void restyle();
    void place(QWidget *row, const Cells &cells);
    GridHead m_head;
    QVBoxLayout *m_rows;
    QWidget *m_header;
    QHash<QString, QWidget *> m_rowWidgets;
    QHash<QString, Cells> m_cells;
    QStringList m_order;
};

// A screen of one project: the module's title with the project's name, then
// the project picker while no project is chosen, or the screen's own body in
// a scroll area.
class ProjectScreen : public ShellScreen
{
    Q_OBJECT
public:
    // The picker shown while no project is chosen, or null.
    PickProject *picker() const { return m_picker; }
    // Whether the body (rather than the picker) is showing.
    bool bodyShown() const;

protected:
    ProjectScreen(const ScreenContext &ctx, const QString &tail, QWidget *trailing, QWidget *parent);
    // Shows the picker or the body for Nav's project and titles the screen; the project, if any.
    std::optional<Rec> syncProject();
    // The same, and when the project changed, points the screen's print job (its
    // Printable and the title row's print button) at the new project.
    std::optional<Rec> syncProject(Printable *printable, PrintJob (*make)(DB &, const QString &));
    // A row of tiles, titled and with their symbols, at the top of the body.
    QList<KPITile *> addTiles(const QList<std::pair<QString, QString>> &titlesAndSymbols);
    // The column the screen fills.
    QVBoxLayout *body() const { return m_body; }
    // The controls at the end of the title row, as given.
    QWidget *trailing() const { return m_trailing; }

    DB &m_db;
    Nav &m_nav;
    const ModuleDef &m_m;

private:
    void restyle();
    QString m_tail;
    QWidget *m_trailing;
    ScreenTitle *m_title;
    QLabel *m_subtitle = nullptr;
    QStackedLayout *m_stack;
    QScrollArea *m_scroll;
    QWidget *m_pickHolder;
    PickProject *m_picker = nullptr;
    QString m_pickKey;
    QVBoxLayout *m_body;
    QString m_jobProject; // id and name of the project the print job was made for
};

// Registers the budget, job-cost and pay-application screens with the module area.
void registerMoneyScreens();
