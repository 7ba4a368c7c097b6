#pragma once
#include "catalog/moduledef.h"
#include "store/rec.h"

#include <QtCore/QAbstractTableModel>

#include <optional>
#include <vector>

class DB;

// The rows of a record list: the records of one module's kind in the store's
// order, narrowed by project and search, with one column per entry of colDefs
// (and the compliance STATUS badge at the end of the compliance list).
// Each record read keeps its values in lower case until its next save, so a
// keystroke in the search box neither copies records nor lower-cases them again.
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
    // Whether the lower-cased text of any stored field value holds `needle` (already lower case).
    static bool matches(const Rec &rec, QStringView needle);
    // The badge of a compliance record: its text and colour.
    static std::pair<QString, QColor> complianceBadge(const Rec &rec);

    // Reads the records again for the project scope and shows those matching
    // `search`; the model resets only when the rows shown differ.
    void reload(const std::optional<QString> &scopedProject, const QString &search);
    // Shows the records already read that match `search`; a longer text only
    // narrows the rows shown before. Resets only when the rows differ.
    void setSearch(const QString &search);
    // The records shown, in order.
    QList<Rec> rows() const;
    // The record of row `row` (0 <= row < rowCount()).
    const Rec &rowRecord(int row) const { return m_all[m_shown[row]].rec; }
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
    // A record read from the store and its values in lower case, joined by kSeparator.
    struct Entry
    {
        Rec rec;
        QString haystack;
    };
    static Entry entryOf(const Rec &rec);
    bool entryMatches(const Entry &e, QStringView needle) const;
    // Swaps in `shown` (indices into m_all), resetting the views when the rows differ.
    void show(QList<int> shown, QList<FD> cols, bool recordsChanged);

    const DB &m_db;
    const ModuleDef &m_m;
    QList<FD> m_cols;
    bool m_badge;
    std::vector<Entry> m_all; // the records of the scope, in store order
    QList<int> m_shown;       // the rows: indices into m_all
    QString m_needle;         // the search in lower case that m_shown answers
};
