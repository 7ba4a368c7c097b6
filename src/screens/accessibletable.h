#pragma once
#include <QtWidgets/QAccessibleWidget>

#include <functional>

// What a painted table or chart says to a screen reader: its column titles
// and its rows of text, read afresh at every question.
struct AccessibleRows
{
    QStringList columns;
    QList<QStringList> rows;
};

// A widget that draws a table (or a chart's data) on its own, read as a table
// of text cells with column headers. The cells are made on demand and kept
// until the widget goes; each reads its text from the source when asked, so a
// change never leaves a stale cell behind.
class AccessibleTable : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    using Source = std::function<AccessibleRows()>;
    // `name` is asked each time too: a chart's title or a schedule's project may change.
    AccessibleTable(QWidget *w, std::function<QString()> name, Source source);
    ~AccessibleTable() override;

    AccessibleRows rowsNow() const { return m_source(); }
    // The part of the widget that row `row` (-1 for the headers) covers, on the screen.
    virtual QRect rowRect(int row) const;

    // QAccessibleInterface
    QString text(QAccessible::Text t) const override;
    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    void *interface_cast(QAccessible::InterfaceType t) override;

    // QAccessibleTableInterface
    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    QAccessibleInterface *cellAt(int row, int column) const override;
    QString columnDescription(int column) const override;
    QString rowDescription(int row) const override;
    int columnCount() const override;
    int rowCount() const override;
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

    // The header cell of `column` (row -1) or a body cell.
    QAccessibleInterface *cell(int row, int column) const;

private:
    std::function<QString()> m_name;
    Source m_source;
    mutable QHash<quint64, QAccessible::Id> m_cells;
};

// One text cell of an AccessibleTable; row -1 is the column headers.
class AccessibleTableCell : public QAccessibleInterface, public QAccessibleTableCellInterface
{
public:
    AccessibleTableCell(AccessibleTable *table, int row, int column);

    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QWindow *window() const override;
    QAccessibleInterface *parent() const override { return m_table; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QString text(QAccessible::Text t) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType t) override;

    bool isSelected() const override { return false; }
    QList<QAccessibleInterface *> columnHeaderCells() const override;
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return m_column; }
    int rowIndex() const override { return m_row; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return m_table; }

private:
    AccessibleTable *m_table;
    int m_row;
    int m_column;
};
