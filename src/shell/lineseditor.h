#pragma once
#include "catalog/moduledef.h"
#include "refreshable.h"
#include "store/rec.h"

#include <QtWidgets/QWidget>

class DB;
class FWChromeButton;
class LinesGrid;
class LinesModel;
class QLabel;
class QTableView;

// The child records of a record (estimate lines, bids...) as a small grid:
// one compact editor per line field, the line's amount when it has a
// quantity, and a remove button that asks nothing. The cells are painted and
// only the cell being edited has an editor, so a long estimate opens at once.
class LinesEditor : public QWidget, public Refreshable
{
    Q_OBJECT
public:
    LinesEditor(DB &db, const QString &parentId, const QString &kind, const QList<FD> &fields,
                QWidget *parent = nullptr);
    // Adds, removes and updates rows for the lines now stored, in place.
    void refresh() override;
    // Adds a line with its starting values to the owner; nothing when the owner is gone.
    void add();
    // The ids of the lines shown, in order.
    QStringList lineIds() const;
    // The grid and its rows, for tests.
    QTableView *grid() const;
    LinesModel *model() const { return m_model; }

    // A column's width in points before zoom; 0 for a column that takes the free width.
    static int columnWidth(const FD &fd);
    // The amount of a line: its quantity (per unit) times its unit price or cost, in cents.
    static qint64 amountOf(const Rec &line, const QList<FD> &fields);
    // Whether the fields carry a quantity, so the grid shows an amount.
    static bool hasAmount(const QList<FD> &fields);

private:
    void restyle();

    DB &m_db;
    QString m_parent;
    QString m_kind;
    QList<FD> m_fields;
    FWChromeButton *m_add;
    QLabel *m_empty;
    LinesModel *m_model;
    LinesGrid *m_grid;
    QString m_focusLine; // a line just added, whose first cell takes the focus when shown
};
