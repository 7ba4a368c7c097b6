#pragma once
#include "catalog/moduledef.h"
#include "store/rec.h"

#include <QtCore/QAbstractTableModel>

#include <optional>

class DB;

// The rows of a record list: the records of one module's kind in the store's
// order, narrowed by project and search, with one column per entry of colDefs
// (and the compliance STATUS badge at the end of the compliance list).
class RecordListModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    // How a cell is drawn.
    enum CellKind { Plain, Number, Project, Money, Pill, Badge };
    // Roles beyond the display text.
    enum Role {
        IdRole = Qt::UserRole, // the record id of the row
        KindRole,              // a CellKind
        ColourRole,            // a badge's colour
    };

    RecordListModel(const DB &db, const ModuleDef &m, QObject *parent = nullptr);

    // The columns: "#" for number, the first field of each other key, and a
    // leading "Project" when the module is per project and none is chosen.
    static QList<FD> colDefs(const ModuleDef &m, bool projectChosen);
    // Whether any stored field value holds `needle` (already lower case), as stored.
    static bool matches(const Rec &rec, QStringView needle);
    // The badge of a compliance record: its text and colour.
    static std::pair<QString, QColor> complianceBadge(const Rec &rec);

    // Reads the rows again (a model reset) for the project scope and search.
    void reload(const std::optional<QString> &scopedProject, const QString &search);
    const QList<Rec> &rows() const { return m_rows; }
    const QList<FD> &columns() const { return m_cols; }
    // The row of record `id`, or -1.
    int rowOf(const QString &id) const;
    // Whether the last column is the compliance badge.
    bool hasBadge() const { return m_badge; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const DB &m_db;
    const ModuleDef &m_m;
    QList<FD> m_cols;
    bool m_badge;
    QList<Rec> m_rows;
};
