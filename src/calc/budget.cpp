#include "budget.h"

#include "fmt.h"
#include "money.h"
#include "rules.h"
#include "store/db.h"
#include "totals.h"

using namespace Qt::StringLiterals;

namespace Calc {

BudgetSummary budgetSummary(const QList<std::pair<QString, qint64>> &lines,
                            const QList<BudgetCOLine> &coLines)
{
    BudgetSummary s;
    auto rowOf = [&s](const QString &code) -> BudgetRow & {
        auto it = s.rows.find(code);
        if (it == s.rows.end()) {
            s.order.append(code);
            it = s.rows.insert(code, BudgetRow{});
        }
        return *it;
    };
    for (const auto &[code, amount] : lines) {
        BudgetRow &row = rowOf(code);
        row.original = Money::add(row.original, amount);
    }
    for (const BudgetCOLine &line : coLines) {
        // The row appears even for a rejected or draft change order, so the code shows.
        BudgetRow &row = rowOf(line.code);
        if (line.status == u"approved")
            row.approved = Money::add(row.approved, line.amount);
        else if (line.status == u"pending")
            row.pending = Money::add(row.pending, line.amount);
    }
    for (const QString &code : std::as_const(s.order)) {
        BudgetRow &row = s.rows[code];
        row.revised = Money::add(row.original, row.approved);
        row.projected = Money::add(row.revised, row.pending);
        s.total.original = Money::add(s.total.original, row.original);
        s.total.approved = Money::add(s.total.approved, row.approved);
        s.total.pending = Money::add(s.total.pending, row.pending);
        s.total.revised = Money::add(s.total.revised, row.revised);
        s.total.projected = Money::add(s.total.projected, row.projected);
    }
    return s;
}

qint64 variance(const CostRow &row)
{
    return Money::sub(row.budget, std::max(row.committed, row.actual));
}

} // namespace Calc

Calc::BudgetSummary budget(const DB &db, const QString &projectId, const Calc::PartSink &sink)
{
    QList<std::pair<QString, qint64>> lines;
    for (const Rec &r : db.list(u"budget_line"_s, {.project = projectId})) {
        lines.append({r.f[u"costCode"], r.i(u"original")});
        if (sink) {
            Calc::Part p = Calc::recordPart(db, r, r.i(u"original"), u"original budget of the line"_s);
            p.column = Calc::OriginalColumn;
            sink(std::move(p));
        }
    }
    // Owner and sub change orders alike move the cost budget; markup is revenue and stays out.
    QList<Calc::BudgetCOLine> coLines;
    for (const Rec &co : db.list(u"co"_s, {.project = projectId})) {
        const QString status = co.f[u"status"];
        for (const Rec &line : db.list(u"co_line"_s, {.parent = co.id})) {
            coLines.append({line.f[u"costCode"], line.i(u"amount"), status});
            if (sink && (status == u"approved" || status == u"pending")) {
                Calc::Part p = Calc::recordPart(db, line, line.i(u"amount"),
                                                u"change-order line, "_s + status + u", without markup"_s);
                p.column = status == u"approved" ? Calc::ApprovedColumn : Calc::PendingColumn;
                sink(std::move(p));
            }
        }
    }
    return Calc::budgetSummary(lines, coLines);
}

Calc::JobCost jobCost(const DB &db, const QString &projectId, const Calc::PartSink &sink)
{
    Calc::JobCost jc;
    auto rowOf = [&jc](const QString &code) -> Calc::CostRow & {
        auto it = jc.rows.find(code);
        if (it == jc.rows.end()) {
            jc.order.append(code);
            it = jc.rows.insert(code, Calc::CostRow{});
        }
        return *it;
    };

    // Costs are measured against the revised budget; pending exposure is not budget yet.
    const Calc::BudgetSummary b = budget(db, projectId);
    for (const QString &code : b.order)
        rowOf(code).budget = b.rows.value(code).revised;

    // A purchase order commits its whole value once issued, whatever has been billed against it.
    static const QStringList committing = {u"Issued"_s, u"Received"_s, u"Closed"_s};
    for (const Rec &po : db.list(u"po"_s, {.project = projectId})) {
        if (!committing.contains(po.f[u"status"]))
            continue;
        const QString poCode = po.f[u"costCode"];
        for (const Rec &line : db.list(u"po_line"_s, {.parent = po.id})) {
            QString code = line.f[u"costCode"];
            if (code.isEmpty())
                code = poCode;
            Calc::CostRow &row = rowOf(code);
            const qint64 amount = Calc::lineAmount({line.d(u"qty"), line.i(u"unitCost")});
            row.committed = Money::add(row.committed, amount);
            if (sink) {
                Calc::Part p = Calc::recordPart(db, line, amount,
                                                Fmt::qty(line.d(u"qty")) + u" × "_s +
                                                    Calc::ruleMoney(line.i(u"unitCost")) + u", PO "_s +
                                                    po.f[u"status"].toLower());
                p.column = Calc::CommittedColumn;
                p.code = code;
                sink(std::move(p));
            }
        }
    }

    // Cost records come in their thousands: they are summed unordered, and a
    // code new to the table is placed by its first record in list order.
    struct First
    {
        DB::ListKey key;
        QString code;
    };
    // `amount` gives a record's cost, and its rule in words when asked for one.
    auto addUnordered = [&](const QString &kind,
                            const std::function<qint64(const Rec &, QString *)> &amount) {
        QHash<QString, DB::ListKey> firsts;
        db.visitUnordered(kind, {.project = projectId}, [&](const Rec &r, const DB::ListKey &key) {
            const QString code = r.f[u"costCode"];
            auto first = firsts.find(code);
            if (first != firsts.end()) {
                if (key.before(*first))
                    *first = key;
            } else if (!jc.rows.contains(code)) {
                firsts.insert(code, key);
            }
            Calc::CostRow &row = jc.rows[code];
            if (!sink) {
                row.actual = Money::add(row.actual, amount(r, nullptr));
                return;
            }
            QString rule;
            const qint64 cents = amount(r, &rule);
            row.actual = Money::add(row.actual, cents);
            Calc::Part p = Calc::recordPart(db, r, cents, rule);
            p.column = Calc::ActualColumn;
            sink(std::move(p));
        });
        QList<First> fresh;
        for (auto it = firsts.cbegin(); it != firsts.cend(); ++it)
            fresh.append({it.value(), it.key()});
        std::sort(fresh.begin(), fresh.end(),
                  [](const First &a, const First &b) { return a.key.before(b.key); });
        for (const First &f : fresh)
            jc.order.append(f.code);
    };

    addUnordered(u"expense"_s, [](const Rec &bill, QString *rule) {
        if (rule)
            *rule = u"bill amount"_s;
        return bill.i(u"amount");
    });

    // Labour at the timecard's own rate: the worker's rate when the card was filled.
    addUnordered(u"timecard"_s, [](const Rec &card, QString *rule) {
        const double hours = Calc::shiftHours(card.f[u"in"], card.f[u"out"], card.i(u"break"));
        if (rule)
            *rule = Fmt::qty(hours) + u" h × "_s + Calc::ruleMoney(card.i(u"rate")) + u" an hour"_s;
        return Money::fromDouble(hours * double(card.i(u"rate")));
    });

    // A log without a known machine still shows its code, at no cost.
    addUnordered(u"equip_log"_s, [&db](const Rec &log, QString *rule) {
        const Rec *machine = db.find(log.f[u"equipment"]);
        const qint64 rate = machine ? machine->i(u"rate") : 0;
        if (rule)
            *rule = Fmt::qty(log.d(u"hours")) + u" h × "_s +
                    (machine ? Calc::ruleMoney(rate) + u" an hour"_s : u"no rate (machine not found)"_s);
        return Money::fromDouble(log.d(u"hours") * double(rate));
    });

    for (const QString &code : std::as_const(jc.order)) {
        const Calc::CostRow &row = jc.rows[code];
        jc.total.budget = Money::add(jc.total.budget, row.budget);
        jc.total.committed = Money::add(jc.total.committed, row.committed);
        jc.total.actual = Money::add(jc.total.actual, row.actual);
    }
    return jc;
}
