#pragma once
// Breakdowns: what a figure of the program is made of, row by row, from the
// same calculation that makes the figure. Used by the window and `trestle explain`.
#include "calc/parts.h"

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <optional>

class DB;

// A figure to explain. `subject` is the record the figure belongs to (a pay
// application, a change order...), or for figures kept by cost code the cost
// code's id, Explain::kUncoded for costs without one, or empty for the project.
struct FigureRef
{
    QString name;
    QString project; // the project's record id
    QString subject;
    bool operator==(const FigureRef &) const = default;
};

// A figure and its rows. Invariant: `total` is the figure as the program shows
// it, and equals the sum of the rows' amounts (their quantities for a quantity).
struct Breakdown
{
    FigureRef ref;
    QString title; // the figure's name in words: "Actual cost"
    QString scope; // what it is of: "Cost code 03-100", "Pay application #3"
    QString rule;  // how the figure is made, in words
    bool quantity = false;
    QString unit; // of a quantity
    QList<Calc::Part> rows;
    qint64 total = 0;
    double qtyTotal = 0;
};

namespace Explain {

// The subject of the costs that carry no cost code.
inline const QString kUncoded = QStringLiteral("uncoded");

// A figure that can be explained.
struct Figure
{
    QString name;  // "jobcost.actual"
    QString title; // "Actual cost"
    // The kind of record the subject is, "cost_code" for a cost code (optional),
    // or empty when the figure needs only the project.
    QString subject;
    // Whether a project is needed (record figures find theirs from the record).
    bool needsProject = true;
    // Works the breakdown out into `out`, whose ref is set; an error in words, or empty.
    QString (*make)(const DB &db, Breakdown &out) = nullptr;
};

// Every figure that can be explained, by name.
const QList<Figure> &figures();
// The figure called `name`, or null.
const Figure *figure(const QString &name);
// The breakdown of `ref`, or nothing with the reason in `error`.
std::optional<Breakdown> explain(const DB &db, const FigureRef &ref, QString *error = nullptr);
// The figure a row opens into, when the row is a figure of its own.
std::optional<FigureRef> subFigure(const Breakdown &b, const Calc::Part &row);
// The rows as text, one tab-separated line each (record id, date, number,
// description, amount), then "Total" and the total.
QStringList lines(const Breakdown &b);
// The rows as a table for a spreadsheet, with a head row.
QList<QStringList> csvRows(const Breakdown &b);
// The amount of a row (or the total) in the program's format.
QString amountText(const Breakdown &b, const Calc::Part &row);
QString totalText(const Breakdown &b);

// The pieces of the catalogue, one per file of producers.
QList<Figure> costFigures();
QList<Figure> documentFigures();
QList<Figure> payFigures();
QList<Figure> wipFigures();

} // namespace Explain
