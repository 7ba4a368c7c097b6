#pragma once
#include "parts.h"

#include <QtCore/QList>
#include <QtCore/QString>

class DB;
struct Rec;

namespace Calc {

// One priced line: a quantity times the price of one unit in cents.
struct Line
{
    double qty = 0;
    qint64 unit = 0;
};

// An estimate's figures: markup on the subtotal, tax on subtotal + markup.
struct EstimateTotals
{
    qint64 subtotal = 0;
    qint64 markup = 0;
    qint64 tax = 0;
    qint64 total = 0;
    bool operator==(const EstimateTotals &) const = default;
};

// An invoice's figures: tax and retainage both on the subtotal.
struct InvoiceTotals
{
    qint64 subtotal = 0;
    qint64 tax = 0;
    qint64 retainage = 0;
    qint64 due = 0;
    bool operator==(const InvoiceTotals &) const = default;
};

// A change order's figures: no tax; a credit has a negative markup.
struct COTotals
{
    qint64 subtotal = 0;
    qint64 markup = 0;
    qint64 total = 0;
    bool operator==(const COTotals &) const = default;
};

// What the contract summary needs of one owner change order.
struct ContractCO
{
    QString status;
    qint64 total = 0; // markup included
    qint64 days = 0;
};

// Invariant: revised = original + approved; projected = revised + pending.
struct ContractSummary
{
    qint64 original = 0;
    qint64 approved = 0;
    qint64 pending = 0;
    qint64 revised = 0;
    qint64 projected = 0;
    qint64 daysAdded = 0; // approved owner change orders only
    bool operator==(const ContractSummary &) const = default;
};

// round(qty × unit), rounded per line, halves away from zero.
qint64 lineAmount(const Line &line);
// Markup on the subtotal; tax on subtotal + markup.
EstimateTotals estimateTotals(const QList<Line> &lines, double markupPct, double taxPct);
// Tax and retainage both on the subtotal; due = subtotal + tax − retainage.
InvoiceTotals invoiceTotals(const QList<Line> &lines, double taxPct, double retPct);
// Approved and pending owner change orders against the original contract.
ContractSummary contractSummary(qint64 original, const QList<ContractCO> &cos);

} // namespace Calc

// Store readers: gather the document's lines and call the pure functions;
// each line goes to `sink` with its rounded amount, the parts of the subtotal.
Calc::EstimateTotals estimateTotals(const DB &db, const Rec &estimate, const Calc::PartSink &sink = {});
Calc::InvoiceTotals invoiceTotals(const DB &db, const Rec &invoice, const Calc::PartSink &sink = {});
Calc::COTotals coTotals(const DB &db, const Rec &co, const Calc::PartSink &sink = {});
qint64 poTotal(const DB &db, const Rec &po, const Calc::PartSink &sink = {});
namespace Calc {
// The `column` of the contract's parts: each owner change order, approved or pending.
enum ContractColumn { ContractApproved, ContractPending };
} // namespace Calc
// The project's contract with its owner change orders, each sent to `sink`.
Calc::ContractSummary contract(const DB &db, const Rec &project, const Calc::PartSink &sink = {});
