// Breakdowns of a pay application: each summary line and each column of the
// continuation sheet, from the application's own figures.
#include "breakdown.h"

#include "calc/money.h"
#include "calc/payapp.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace Explain {

namespace {

// The summary lines and sheet columns, in the order of the form.
enum class Pay {
    Original,
    Changes,
    ContractSum,
    Scheduled,
    WorkPrevious,
    ThisPeriod,
    Stored,
    Completed,
    ToFinish,
    RetWork,
    RetStored,
    Retainage,
    Earned,
    Previous,
    Due,
    Balance
};

// A row's amount and the rule that made it.
using Amount = std::pair<qint64, QString>;

QString pct(const Rec &app, QStringView key)
{
    return Calc::rulePercent(app.d(key));
}

QString payFigure(const DB &db, Breakdown &b, Pay which)
{
    const Rec &app = *db.find(b.ref.subject);
    const PayAppData data = payAppData(db, app);
    const Calc::G702 &g = data.calc.g702;
    const Calc::PayTotals &t = data.calc.totals;
    b.scope = u"Pay application #"_s + app.f.value(u"number");
    const QString id = app.id;
    // One row per schedule-of-values line, `of` picking the row's amount and rule.
    auto sheet = [&](const QString &rule, qint64 total,
                     const std::function<std::pair<qint64, QString>(const Calc::PayRow &)> &of) {
        b.rule = rule;
        for (qsizetype i = 0; i < data.calc.rows.size(); ++i) {
            const auto [amount, how] = of(data.calc.rows.at(i));
            Calc::Part p = Calc::recordPart(db, data.sov.at(i), amount, how);
            // A schedule line is dated by the application it is billed on.
            if (p.date.isEmpty())
                p.date = app.f.value(u"periodTo"_s);
            b.rows << p;
        }
        b.total = total;
    };
    auto fig = [&](const QString &name, const QString &what, qint64 amount, const QString &rule = {}) {
        b.rows << Calc::figurePart(name, id, what, amount, rule);
    };
    const auto m = Calc::ruleMoney;
    switch (which) {
    case Pay::Original: {
        const Rec *project = db.find(app.project);
        b.rule = u"line 1: the project's original contract sum"_s;
        if (project)
            b.rows << Calc::recordPart(db, *project, g.l1, u"original contract"_s);
        else
            b.rows << Calc::figurePart({}, {}, u"No project"_s, g.l1);
        b.total = g.l1;
        break;
    }
    case Pay::Changes:
        b.rule = u"line 2: approved owner change orders"_s;
        b.rows << Calc::figurePart(u"contract.approved"_s, {}, u"Approved change orders"_s, g.l2);
        b.total = g.l2;
        break;
    case Pay::ContractSum:
        b.rule = u"line 3 = line 1 + line 2"_s;
        fig(u"payapp.original"_s, u"1. Original contract sum"_s, g.l1);
        fig(u"payapp.changes"_s, u"2. Net change by change orders"_s, g.l2);
        b.total = g.l3;
        break;
    case Pay::Scheduled:
        sheet(u"scheduled value of each line"_s, t.scheduled, [](const Calc::PayRow &r) {
            return Amount{r.line.scheduled, u"scheduled value"_s};
        });
        break;
    case Pay::WorkPrevious:
        sheet(u"work billed on earlier applications"_s, t.previous, [](const Calc::PayRow &r) {
            return Amount{r.line.previous, u"billed earlier"_s};
        });
        break;
    case Pay::ThisPeriod:
        sheet(u"work billed on this application"_s, t.thisPeriod, [](const Calc::PayRow &r) {
            return Amount{r.line.thisPeriod, u"this period"_s};
        });
        break;
    case Pay::Stored:
        sheet(u"materials presently stored, this application only"_s, t.stored, [](const Calc::PayRow &r) {
            return Amount{r.line.stored, u"stored materials"_s};
        });
        break;
    case Pay::Completed:
        sheet(u"line 4: previous + this period + stored, per line"_s, t.completed,
              [m](const Calc::PayRow &r) {
                  return Amount{r.completed, m(r.line.previous) + u" + "_s + m(r.line.thisPeriod) + u" + "_s +
                                                 m(r.line.stored)};
              });
        break;
    case Pay::ToFinish:
        sheet(u"scheduled − completed, per line"_s, t.balance, [m](const Calc::PayRow &r) {
            return Amount{r.balance, m(r.line.scheduled) + u" − "_s + m(r.completed)};
        });
        break;
    case Pay::RetWork: {
        const QString p = pct(app, u"retWork");
        sheet(u"line 5a: retainage at "_s + p + u" of work completed, rounded per line"_s, t.retWork,
              [&](const Calc::PayRow &r) {
                  return Amount{r.retWork, p + u" × "_s + m(Money::add(r.line.previous, r.line.thisPeriod))};
              });
        break;
    }
    case Pay::RetStored: {
        const QString p = pct(app, u"retMat");
        sheet(u"line 5b: retainage at "_s + p + u" of stored materials, rounded per line"_s, t.retMat,
              [&](const Calc::PayRow &r) {
                  return Amount{r.retMat, p + u" × "_s + m(r.line.stored)};
              });
        break;
    }
    case Pay::Retainage:
        b.rule = u"line 5 = line 5a + line 5b"_s;
        fig(u"payapp.retainage.work"_s, u"5a. Retainage on completed work"_s, g.l5a);
        fig(u"payapp.retainage.stored"_s, u"5b. Retainage on stored material"_s, g.l5b);
        b.total = g.l5;
        break;
    case Pay::Earned:
        b.rule = u"line 6 = line 4 − line 5"_s;
        fig(u"payapp.completed"_s, u"4. Total completed & stored to date"_s, g.l4);
        fig(u"payapp.retainage"_s, u"5. Total retainage"_s, Money::sub(0, g.l5));
        b.total = g.l6;
        break;
    case Pay::Previous:
        b.rule = u"line 7: line 6 of the previous application"_s;
        if (const Rec *prev = data.previous.isEmpty() ? nullptr : db.find(data.previous)) {
            Calc::Part p = Calc::recordPart(db, *prev, g.l7, u"line 6 of that application"_s);
            p.description = u"Pay application #"_s + prev->f.value(u"number");
            p.figure = u"payapp.earned"_s;
            p.subject = prev->id;
            b.rows << p;
        }
        b.total = g.l7;
        break;
    case Pay::Due:
        b.rule = u"line 8 = line 6 − line 7"_s;
        fig(u"payapp.earned"_s, u"6. Total earned less retainage"_s, g.l6);
        fig(u"payapp.previous"_s, u"7. Less previous certificates for payment"_s, Money::sub(0, g.l7));
        b.total = g.l8;
        break;
    case Pay::Balance:
        b.rule = u"line 9 = line 3 − line 6"_s;
        fig(u"payapp.contractsum"_s, u"3. Contract sum to date"_s, g.l3);
        fig(u"payapp.earned"_s, u"6. Total earned less retainage"_s, Money::sub(0, g.l6));
        b.total = g.l9;
        break;
    }
    return {};
}

template<Pay which> QString make(const DB &db, Breakdown &b)
{
    return payFigure(db, b, which);
}

} // namespace

QList<Figure> payFigures()
{
    const QString app = u"pay_app"_s;
    return {
        {u"payapp.original"_s, u"1. Original contract sum"_s, app, false, &make<Pay::Original>},
        {u"payapp.changes"_s, u"2. Net change by change orders"_s, app, false, &make<Pay::Changes>},
        {u"payapp.contractsum"_s, u"3. Contract sum to date"_s, app, false, &make<Pay::ContractSum>},
        {u"payapp.completed"_s, u"4. Total completed & stored to date"_s, app, false, &make<Pay::Completed>},
        {u"payapp.retainage.work"_s, u"5a. Retainage on completed work"_s, app, false, &make<Pay::RetWork>},
        {u"payapp.retainage.stored"_s, u"5b. Retainage on stored material"_s, app, false,
         &make<Pay::RetStored>},
        {u"payapp.retainage"_s, u"5. Total retainage"_s, app, false, &make<Pay::Retainage>},
        {u"payapp.earned"_s, u"6. Total earned less retainage"_s, app, false, &make<Pay::Earned>},
        {u"payapp.previous"_s, u"7. Less previous certificates for payment"_s, app, false,
         &make<Pay::Previous>},
        {u"payapp.due"_s, u"8. Current payment due"_s, app, false, &make<Pay::Due>},
        {u"payapp.balance"_s, u"9. Balance to finish, including retainage"_s, app, false,
         &make<Pay::Balance>},
        {u"payapp.scheduled"_s, u"Scheduled value"_s, app, false, &make<Pay::Scheduled>},
        {u"payapp.workprevious"_s, u"Work completed: from previous applications"_s, app, false,
         &make<Pay::WorkPrevious>},
        {u"payapp.thisperiod"_s, u"Work completed: this period"_s, app, false, &make<Pay::ThisPeriod>},
        {u"payapp.stored"_s, u"Materials presently stored"_s, app, false, &make<Pay::Stored>},
        {u"payapp.tofinish"_s, u"Balance to finish"_s, app, false, &make<Pay::ToFinish>},
    };
}

} // namespace Explain
