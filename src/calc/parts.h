#pragma once
// What a figure is made of: the calculations hand each record's contribution
// to a sink while they add it in, so a breakdown is the figure's own arithmetic.
#include <QtCore/QString>

#include <functional>

class DB;
struct Rec;

namespace Calc {

// One record's contribution to a figure, or a figure of its own (`figure` set)
// that the breakdown opens in turn. Invariant: the figure is the sum of its parts.
struct Part
{
    QString record;      // the record the amount comes from; empty for a rule row
    QString kind;        // that record's kind
    QString date;        // yyyy-MM-dd, or empty
    QString number;      // the document's number or reference
    QString description; // what the record is
    QString rule;        // how the amount was worked out, in words
    qint64 amount = 0;   // signed cents
    double qty = 0;      // signed quantity, for quantity figures
    int column = 0;      // which of the producer's figures the part belongs to
    QString code;        // the cost code id, for figures kept by cost code
    QString figure;      // a figure of its own: its name
    QString subject;     // and its subject (a record id or a cost code id)
};

// Receives parts while a figure is worked out; an empty sink builds nothing.
using PartSink = std::function<void(Part &&)>;

// A part for `rec` with its date, number and description, a line taking those
// of its parent document where it has none of its own.
Part recordPart(const DB &db, const Rec &rec, qint64 amount, const QString &rule);
// The part of a figure of its own.
Part figurePart(const QString &figure, const QString &subject, const QString &description, qint64 amount,
                const QString &rule = {});
// Money in the rule text of a part: "$1,234.56".
QString ruleMoney(qint64 cents);
// A percentage in a rule text: "10%", "2.5%".
QString rulePercent(double pct);

} // namespace Calc
