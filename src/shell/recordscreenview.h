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
    // Sizes the columns: "#" 44 points, STATUS 110, the rest share the width.
    void fitColumns();

protected:
    void drawRow(QPainter *painter, const QStyleOptionViewItem &option,
                 const QModelIndex &index) const override;

private:
    void restyle();
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
    // A capsule with white heavy text on `fill` at opacity 0.75, as a status pill draws.
    static void paintCapsule(QPainter *p, const QRectF &cell, const QString &text, QColor fill);
};
