#pragma once
#include "importread.h"

// What each table read becomes: which list it fills and which field each of
// its columns fills. Columns are matched to the catalog's field labels and
// keys, and to the names QuickBooks and spreadsheets give them, ignoring case
// and spacing; the person importing may change any match.
namespace Import {

// The lists an import fills. `openJob` is a project with its contract and
// what was billed on it before; the others are the record kinds themselves.
namespace ListKind {
inline const QString contact = QStringLiteral("contact");
inline const QString user = QStringLiteral("user");
inline const QString costCode = QStringLiteral("cost_code");
inline const QString equipment = QStringLiteral("equipment");
inline const QString project = QStringLiteral("project");
inline const QString openJob = QStringLiteral("open_job");
} // namespace ListKind

// One table with what it becomes. Invariant: `columns` has one entry per
// header cell; an empty entry is a column left out.
struct Sheet
{
    Table table;
    QString kind;            // a ListKind, or with `storedForm` any record kind; empty: not imported
    QString contactType;     // contacts: the type of a row that names none
    QStringList columns;     // the field key each column fills
    bool storedForm = false; // a file of the CSV export: an id column and values as stored
    QString skipped;         // why the table is left out, for the summary
};

// A header or name with case and all blanks dropped: how names are compared.
QString normal(QStringView text);
// The plural the summary uses for a kind ("contacts", "cost codes").
QString noun(const QString &kind);
// The lists a table can be imported as, in the order offered.
QStringList listKinds();
// The fields a column may fill for `kind`, as (key, label), in the order offered.
QList<std::pair<QString, QString>> targets(const QString &kind);
// The field key `header` names for `kind`; empty when it names none.
QString matchColumn(const QString &kind, const QString &header);
// Matches every column of `sheet` for its kind again.
void matchColumns(Sheet &sheet);
// What each table becomes, by its file name, its IIF section and its header.
QList<Sheet> sheets(const QList<Table> &tables);
// The columns of the open-jobs template, in order.
QStringList openJobsTemplateHeader();
// The template itself: its header and two example rows (one job with a
// schedule of values, one without).
QString openJobsTemplate();

} // namespace Import
