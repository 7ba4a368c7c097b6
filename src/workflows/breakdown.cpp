#include "breakdown.h"

#include "calc/fmt.h"
#include "calc/money.h"
#include "store/db.h"
#include "wipschedule.h"

using namespace Qt::StringLiterals;

namespace Explain {

const QList<Figure> &figures()
{
    static const QList<Figure> all = [] {
        QList<Figure> out = costFigures();
        out += documentFigures();
        out += payFigures();
        out += wipFigures();
        return out;
    }();
    return all;
}

const Figure *figure(const QString &name)
{
    for (const Figure &f : figures())
        if (f.name == name)
            return &f;
    return nullptr;
}

std::optional<Breakdown> explain(const DB &db, const FigureRef &ref, QString *error)
{
    auto fail = [error](const QString &why) -> std::optional<Breakdown> {
        if (error)
            *error = why;
        return std::nullopt;
    };
    const Figure *f = figure(ref.name);
    if (!f)
        return fail(u"no figure is called "_s + ref.name);
    Breakdown b;
    b.ref = ref;
    b.title = f->title;
    if (f->subject == u"cost_code") {
        if (!ref.subject.isEmpty() && ref.subject != kUncoded) {
            const Rec *code = db.find(ref.subject);
            if (!code || code->kind != u"cost_code")
                return fail(u"no cost code "_s + ref.subject);
        }
    } else if (!f->subject.isEmpty()) {
        if (ref.subject.isEmpty())
            return fail(ref.name + u" needs the id of a record of kind "_s + f->subject);
        const Rec *rec = db.find(ref.subject);
        if (!rec || rec->kind != f->subject)
            return fail(u"no record of kind "_s + f->subject + u" has the id "_s + ref.subject);
        if (!ref.project.isEmpty() && ref.project != rec->project)
            return fail(u"record "_s + ref.subject + u" is not of that project"_s);
        b.ref.project = rec->project;
    } else if (!ref.subject.isEmpty()) {
        return fail(ref.name + u" takes no record"_s);
    }
    if (f->needsProject) {
        const Rec *project = db.find(b.ref.project);
        if (!project || project->kind != u"project")
            return fail(ref.name + u" needs a project"_s);
    }
    const QString why = f->make(db, b);
    if (!why.isEmpty())
        return fail(why);
    return b;
}

std::optional<FigureRef> subFigure(const Breakdown &b, const Calc::Part &row)
{
    if (row.figure.isEmpty())
        return std::nullopt;
    // A row of a project (on the hub) opens that project's figure.
    return FigureRef{row.figure, row.kind == u"project" ? row.record : b.ref.project, row.subject};
}

namespace {
// Text of one field of a line: tabs and line breaks would split it.
QString flat(QString text)
{
    text.replace(u'\t', u' ');
    text.replace(u'\n', u' ');
    text.replace(u'\r', u' ');
    return text;
}
QString describe(const Calc::Part &row)
{
    return row.rule.isEmpty()          ? row.description
           : row.description.isEmpty() ? row.rule
                                       : row.description + u" — "_s + row.rule;
}
} // namespace

QString amountText(const Breakdown &b, const Calc::Part &row)
{
    return b.quantity ? Fmt::qty(row.qty) : Money::fmt(row.amount, true);
}

QString totalText(const Breakdown &b)
{
    return b.quantity ? Fmt::qty(b.qtyTotal) : Money::fmt(b.total, true);
}

QStringList lines(const Breakdown &b)
{
    QStringList out;
    out.reserve(b.rows.size() + 1);
    for (const Calc::Part &row : b.rows)
        out << flat(row.record.isEmpty() ? row.figure : row.record) + u'\t' + row.date + u'\t' +
                   flat(row.number) + u'\t' + flat(describe(row)) + u'\t' + amountText(b, row);
    out << u"Total\t"_s + totalText(b);
    return out;
}

QList<QStringList> csvRows(const Breakdown &b)
{
    QList<QStringList> out{{u"Record"_s, u"Kind"_s, u"Date"_s, u"Number"_s, u"Description"_s, u"Rule"_s,
                            b.quantity ? u"Quantity"_s : u"Amount"_s}};
    const auto plain = [&b](const Calc::Part &row) -> QString {
        return b.quantity ? Fmt::num(row.qty) : WipSchedule::plainMoney(row.amount);
    };
    for (const Calc::Part &row : b.rows)
        out.append({row.record.isEmpty() ? row.figure : row.record, row.kind, row.date, row.number,
                    row.description, row.rule, plain(row)});
    out.append({u"Total"_s, QString(), QString(), QString(), b.title, b.rule,
                b.quantity ? Fmt::num(b.qtyTotal) : WipSchedule::plainMoney(b.total)});
    return out;
}

} // namespace Explain
