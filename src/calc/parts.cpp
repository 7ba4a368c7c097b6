#include "parts.h"

#include "fmt.h"
#include "money.h"
#include "store/db.h"

using namespace Qt::StringLiterals;

namespace Calc {

namespace {

// The first of `keys` that `rec` holds as a non-empty text.
QString firstOf(const DB &db, const Rec &rec, std::initializer_list<QStringView> keys)
{
    for (QStringView key : keys) {
        const QString v = rec.f.value(key);
        if (v.isEmpty())
            continue;
        // References read as their labels (a vendor, a worker, a machine).
        if (key == u"vendor" || key == u"worker" || key == u"equipment" || key == u"party" ||
            key == u"client") {
            const QString label = db.label(v);
            if (!label.isEmpty())
                return label;
        }
        return v;
    }
    return {};
}

} // namespace

Part recordPart(const DB &db, const Rec &rec, qint64 amount, const QString &rule)
{
    Part p;
    p.record = rec.id;
    p.kind = rec.kind;
    p.amount = amount;
    p.rule = rule;
    p.code = rec.f.value(u"costCode"_s);
    const Rec *parent = rec.parent.isEmpty() ? nullptr : db.find(rec.parent);
    // A pay application is dated by the end of its period.
    p.date = firstOf(db, rec, {u"date", u"periodTo"});
    if (p.date.isEmpty() && parent)
        p.date = firstOf(db, *parent, {u"date", u"periodTo"});
    p.number = firstOf(db, rec, {u"number", u"ref", u"item"});
    if (p.number.isEmpty() && parent)
        p.number = firstOf(db, *parent, {u"number", u"ref"});
    p.description = firstOf(db, rec,
                            {u"description", u"title", u"name", u"worker", u"equipment", u"vendor", u"party",
                             u"client", u"memo", u"type"});
    // An application has no title of its own: its number names it.
    if (rec.kind == u"pay_app")
        p.description = u"Pay application #"_s + rec.f.value(u"number"_s);
    if (parent) {
        const QString whose = firstOf(db, *parent, {u"vendor", u"title", u"client", u"name"});
        if (!whose.isEmpty() && whose != p.description)
            p.description = p.description.isEmpty() ? whose : whose + u" · "_s + p.description;
    }
    return p;
}

Part figurePart(const QString &figure, const QString &subject, const QString &description, qint64 amount,
                const QString &rule)
{
    Part p;
    p.figure = figure;
    p.subject = subject;
    p.description = description;
    p.amount = amount;
    p.rule = rule;
    return p;
}

QString ruleMoney(qint64 cents)
{
    return Money::fmt(cents, true);
}

QString rulePercent(double pct)
{
    return Fmt::num(pct) + u'%';
}

} // namespace Calc
