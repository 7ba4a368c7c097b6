#pragma once
#include <QtWidgets/QStyledItemDelegate>
#include <QtWidgets/QTreeView>

// The record list's table: rows with rounded corners, the selected one
// tinted with the accent; status words as pills and badges as capsules.
class RecordListView : public QTreeView
{
    Q_OBJECT
public:
    explicit RecordListView(QWidget *parent = nullptr);
    // Sizes the columns to what they show: amounts, numbers, dates and pills
    // whole at any zoom, the text columns sharing what is left; when even that
    // does not fit, the list scrolls sideways rather than cut an amount.
    void fitColumns();

    // The widths for columns of `natural` width in `available` pixels: rigid
    // columns get theirs; flexible ones share the rest, a narrow one keeping its
    // own width and the wider ones splitting what remains, none below `least`.
    static QList<int> shareWidths(const QList<int> &natural, const QList<bool> &rigid, int available,
                                  int least);

protected:
    void resizeEvent(QResizeEvent *e) override;
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                 const QModelIndex &index) const override;

private:
    void restyle();
    // Gives the columns their widths from the measured ones, for the width the view has now.
    void placeColumns();
    QList<int> m_natural;
    QList<bool> m_rigid;
};

// Paints one cell of the record list by its RecordListModel::CellKind.
class RecordCellDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    // The font of a cell of that kind at the current zoom.
    static QFont fontOf(int kind);
    // The width a cell needs to show whole, its gaps included.
    static int wholeWidth(const QModelIndex &index);
    // The gaps left and right of a cell's text, in pixels at the current zoom.
    static qreal leftGap();
    static qreal rightGap();
    // A capsule with white heavy text on `fill` at opacity 0.75, as a status pill draws.
    static void paintCapsule(QPainter *p, const QRectF &cell, const QString &text, QColor fill);
};
