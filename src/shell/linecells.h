#pragma once
// The lines grid's model and cells: one row per line record, one column per
// line field, then the amount (when the fields carry a quantity) and the
// remove button. Cells are painted; an editor exists only for the cell being
// edited, and it writes through recBinding as the user types.
#include "catalog/moduledef.h"
#include "store/rec.h"

#include <QtCore/QAbstractTableModel>
#include <QtCore/QHash>
#include <QtWidgets/QStyledItemDelegate>

class DB;

// The amount of a line: its quantity (per unit) times its unit price or cost, in cents.
qint64 lineAmountOf(const Rec &line, const QList<FD> &fields);

// The lines of one owner. A refresh inserts, removes, moves and updates rows
// in place and never resets, so the cell being typed in keeps its editor.
class LinesModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Role {
        IdRole = Qt::UserRole, // the line's record id
        ErrorRole,             // a money cell's refused entry, empty when none
        PlaceholderRole,       // what an empty cell shows in the dim colour
    };

    LinesModel(DB &db, const QString &kind, const QString &parentId, const QList<FD> &fields,
               QObject *parent = nullptr);

    // Takes the lines now stored; `project` is the owner's, which limits refIn choices.
    void refresh(const QString &project);

    DB &db() const { return m_db; }
    const QList<FD> &fields() const { return m_fields; }
    // The field of a column; null for the amount and remove columns.
    const FD *fieldAt(int column) const;
    // The amount column, or -1 when the fields carry no quantity.
    int amountColumn() const { return m_amount ? int(m_fields.size()) : -1; }
    int removeColumn() const { return int(m_fields.size()) + (m_amount ? 1 : 0); }
    QStringList lineIds() const;
    int rowOf(const QString &id) const;
    // The options of a choice column, as the record editor offers them.
    const QList<std::pair<QString, QString>> &options(int column) const;

    // The stored text of a cell's field.
    QString stored(const QModelIndex &index) const;
    // Stores `value` in a cell's field through recBinding.
    void write(const QModelIndex &index, const QString &value);
    // What a cell shows when no one is typing in it: cents as 1,234.56, a
    // choice by its label ("Choose…" for a value not among the options).
    QString display(const QModelIndex &index) const;
    // The refused entry of a money cell; it stays until the cell reads again.
    QString error(const QModelIndex &index) const;
    void setError(const QModelIndex &index, const QString &error);
    // The errors of a row, one "Label: message" per line; empty when none.
    QString rowErrors(int row) const;
    // Removes the line of `row` at once, without asking.
    void removeLine(int row);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

Q_SIGNALS:
    // A row's errors changed; its height follows.
    void errorsChanged(int row);

private:
    DB &m_db;
    QString m_kind;
    QString m_parent;
    QList<FD> m_fields;
    bool m_amount;
    QString m_project;
    bool m_loaded = false;
    QList<Rec> m_lines;
    // Per choice column: the options and their labels by value.
    QHash<int, QList<std::pair<QString, QString>>> m_options;
    QHash<int, QHash<QString, QString>> m_labels;
    QHash<QString, QHash<QString, QString>> m_errors; // line id -> field key -> error
};

// Paints the cells as the themed boxes they edit in, makes the one editor of
// the cell being edited, and handles the switch and remove clicks.
class LinesDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit LinesDelegate(LinesModel *model, QObject *parent = nullptr);

    // The height of one cell's box at the current zoom and finish.
    static int boxHeight();
    // The room between cells, across and down.
    static int gap();
    // Removes the line of a remove cell, or flips a switch cell.
    void act(const QModelIndex &index);
    // Whether the next editor made for a choice opens its list at once (a click did it).
    void setOpenChoices(bool open) { m_openChoices = open; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

protected:
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

private:
    LinesModel *m_model;
    bool m_openChoices = false;
};
