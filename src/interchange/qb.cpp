#include "qb.h"

#include "calc/budget.h"
#include "calc/datefmt.h"
#include "calc/money.h"
#include "calc/payapp.h"
#include "calc/totals.h"
#include "store/db.h"

#include <QtCore/QDir>

using namespace Qt::StringLiterals;

namespace {

const QString kHeader = u"!TRNS\tTRNSID\tTRNSTYPE\tDATE\tACCNT\tNAME\tAMOUNT\tDOCNUM\tMEMO\n"
                        u"!SPL\tSPLID\tTRNSTYPE\tDATE\tACCNT\tNAME\tAMOUNT\tDOCNUM\tMEMO\n"
                        u"!ENDTRNS\n"_s;

// A value taken from a record must not break the line or the column it sits in.
QString clean(QString text)
{
    return text.replace(u'\t', u' ').replace(u'\n', u' ');
}

struct Txn
{
    QString type;
    QString date;
    QString name;
    QString doc;
    QString out;

    void line(QStringView head, const QString &account, qint64 cents, const QString &memo)
    {
        out += head + u"\t\t"_s + type + u'\t' + date + u'\t' + account + u'\t' + name + u'\t' +
               QB::amount(cents) + u'\t' + doc + u'\t' + memo + u'\n';
    }
    QString end() { return out + u"ENDTRNS\n"_s; }
};

RecFilter scope(const std::optional<QString> &project)
{
    return RecFilter{.project = project};
}

} // namespace

namespace QB {

QString d(const QString &text)
{
    if (text.isEmpty())
        return QString();
    const std::optional<QDate> date = DateFmt::parseIso(QStringView(text).left(10));
    return date ? date->toString(u"MM/dd/yyyy"_s) : QString();
}

QString amount(qint64 cents)
{
    // Integer arithmetic: a double would print some sums a cent off.
    const quint64 mag = cents < 0 ? 0 - quint64(cents) : quint64(cents);
    return (cents < 0 ? u"-"_s : QString()) + QString::number(mag / 100) + u'.' +
           QString::number(mag % 100).rightJustified(2, u'0');
}

QString invoicesIIF(const DB &db, const std::optional<QString> &project)
{
    QString out = kHeader;
    for (const Rec &inv : db.list(u"invoice"_s, scope(project))) {
        const QString status = inv.f.value(u"status");
        if (status == u"Draft" || status == u"Void")
            continue;
        const Calc::InvoiceTotals t = invoiceTotals(db, inv);
        const QString memo = clean(db.label(inv.project));
        Txn x{u"INVOICE"_s,
              d(inv.f.value(u"date")),
              clean(db.label(inv.f.value(u"client"))),
              inv.f.value(u"number"),
              {}};
        x.line(u"TRNS", u"Accounts Receivable"_s, t.due, memo);
        x.line(u"SPL", u"Construction Income"_s, -t.subtotal, memo);
        if (t.tax != 0)
            x.line(u"SPL", u"Sales Tax Payable"_s, -t.tax, u"Sales tax"_s);
        if (t.retainage != 0)
            x.line(u"SPL", u"Retainage Receivable"_s, t.retainage, u"Retainage withheld"_s);
        out += x.end();
    }
    // Each project's applications are worked out together, its chain walked once.
    QHash<QString, QHash<QString, PayAppData>> figures;
    const auto figuresOf = [&](const Rec &app) -> const QHash<QString, PayAppData> & {
        auto it = figures.find(app.project);
        if (it == figures.end())
            it = figures.insert(app.project, payAppDataOfProject(db, app.project));
        return *it;
    };
    for (const Rec &app : db.list(u"pay_app"_s, scope(project))) {
        const QString status = app.f.value(u"status");
        if (status != u"submitted" && status != u"approved" && status != u"paid")
            continue;
        // An opening balance brought in with an open job was invoiced in the books already.
        if (app.f.value(u"opening") == u"1")
            continue;
        const Calc::G702 cur = figuresOf(app).value(app.id).calc.g702;
        // Only the application numbered one less counts: a gap means nothing held before.
        qint64 prevRet = 0;
        const qint64 number = app.i(u"number");
        for (const Rec &other : db.list(u"pay_app"_s, {.project = app.project, .company = app.company}))
            if (other.i(u"number") == number - 1) {
                prevRet = figuresOf(app).value(other.id).calc.g702.l5;
                break;
            }
        const qint64 retThis = Money::sub(cur.l5, prevRet);
        const qint64 due = cur.l8;
        const Rec proj = db.get(app.project).value_or(Rec());
        Txn x{u"INVOICE"_s,
              d(app.f.value(u"periodTo")),
              clean(db.label(proj.f.value(u"client"))),
              u"PA"_s + proj.f.value(u"number") + u'-' + app.f.value(u"number"),
              {}};
        x.line(u"TRNS", u"Accounts Receivable"_s, due,
               clean(proj.f.value(u"name")) + u" pay app "_s + app.f.value(u"number"));
        x.line(u"SPL", u"Construction Income"_s, -Money::add(due, retThis), u"Work completed this period"_s);
        if (retThis != 0)
            x.line(u"SPL", u"Retainage Receivable"_s, retThis, u"Retainage this period"_s);
        out += x.end();
    }
    return out;
}

QString billsIIF(const DB &db, const std::optional<QString> &project)
{
    QString out = kHeader;
    db.visit(u"expense"_s, scope(project), [&](const Rec &e) {
        const QString code = clean(db.label(e.f.value(u"costCode")));
        const qint64 cents = e.i(u"amount");
        Txn x{u"BILL"_s,
              d(e.f.value(u"date")),
              clean(db.label(e.f.value(u"vendor"))),
              clean(e.f.value(u"ref")),
              {}};
        x.line(u"TRNS", u"Accounts Payable"_s, -cents, clean(db.label(e.project)));
        x.line(u"SPL", u"Job Expenses:"_s + (code.isEmpty() ? u"Uncoded"_s : code), cents,
               clean(e.f.value(u"memo")));
        out += x.end();
    });
    return out;
}

QString contactsCSV(const DB &db, const QStringList &types)
{
    QList<QStringList> rows{{u"Name"_s, u"Company"_s, u"Email"_s, u"Phone"_s, u"Address"_s, u"Type"_s}};
    db.visit(u"contact"_s, {}, [&](const Rec &c) {
        if (types.contains(c.f.value(u"type")))
            rows.append({c.f.value(u"name"), c.f.value(u"company"), c.f.value(u"email"), c.f.value(u"phone"),
                         c.f.value(u"address"), c.f.value(u"type")});
    });
    return CSV::text(rows);
}

QString paymentsCSV(const DB &db, const std::optional<QString> &project)
{
    QList<QStringList> rows{
        {u"Date"_s, u"Direction"_s, u"From/To"_s, u"Amount"_s, u"Method"_s, u"Ref"_s, u"Project"_s}};
    db.visit(u"payment"_s, scope(project), [&](const Rec &p) {
        rows.append({d(p.f.value(u"date")), p.f.value(u"direction"), db.label(p.f.value(u"party")),
                     amount(p.i(u"amount")), p.f.value(u"method"), p.f.value(u"ref"), db.label(p.project)});
    });
    return CSV::text(rows);
}

QString jobCostCSV(const DB &db, const std::optional<QString> &project)
{
    QList<QStringList> rows{{u"Project"_s, u"Cost code"_s, u"Budget"_s, u"Committed"_s, u"Actual"_s}};
    QStringList projects;
    if (project)
        projects.append(*project);
    else
        db.visit(u"project"_s, {}, [&](const Rec &p) { projects.append(p.id); });
    for (const QString &id : projects) {
        const Calc::JobCost cost = jobCost(db, id);
        const QString name = db.label(id);
        for (const QString &code : cost.order) {
            const Calc::CostRow &row = cost.rows[code];
            rows.append(
                {name, db.label(code), amount(row.budget), amount(row.committed), amount(row.actual)});
        }
    }
    return CSV::text(rows);
}

ExportResult exportAll(const DB &db, const QString &parentDir, const std::optional<QString> &project)
{
    ExportResult result;
    result.folder =
        ExportFile::makeFolder(parentDir, u"QuickBooks export "_s + DateFmt::iso(DateFmt::today()));
    if (result.folder.isEmpty()) {
        result.error = u"Could not create a folder in "_s + QDir::toNativeSeparators(parentDir);
        return result;
    }
    const QDir dir(result.folder);
    const std::pair<QString, std::function<QString()>> files[] = {
        {u"invoices-and-pay-apps.iif"_s, [&] { return invoicesIIF(db, project); }},
        {u"bills.iif"_s, [&] { return billsIIF(db, project); }},
        {u"customers.csv"_s, [&] { return contactsCSV(db, {u"Client / Owner"_s}); }},
        {u"vendors.csv"_s,
         [&] {
             return contactsCSV(db, {u"Subcontractor"_s, u"Vendor / Supplier"_s});
         }},
        {u"payments.csv"_s, [&] { return paymentsCSV(db, project); }},
        {u"job-cost.csv"_s, [&] { return jobCostCSV(db, project); }},
    };
    for (const auto &[name, make] : files) {
        result.error = ExportFile::write(dir.filePath(name), make());
        if (!result.error.isEmpty())
            return result;
    }
    result.ok = true;
    return result;
}

} // namespace QB
