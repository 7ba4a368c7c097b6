#include "importmap.h"

#include "catalog/modules.h"
#include "csv.h"

#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace Import {

namespace {

// Names QuickBooks and spreadsheets give columns, by kind and field key
// (compared after normal()). Catalog labels and keys match without being listed.
const QHash<QString, QHash<QString, QStringList>> &aliases()
{
    static const QHash<QString, QHash<QString, QStringList>> table = [] {
        QStringList address;
        for (const QString &stem : {u"addr"_s, u"baddr"_s, u"address"_s, u"billto"_s, u"billfrom"_s,
                                    u"street"_s, u"billingaddressline"_s, u"addressline"_s})
            for (int k = 1; k <= 5; ++k)
                address.append(stem + QString::number(k));
        address += {u"street"_s,  u"city"_s,       u"state"_s,          u"zip"_s,
                    u"zipcode"_s, u"postalcode"_s, u"billingaddress"_s, u"mailingaddress"_s};
        const QStringList phone{u"phone1"_s,        u"mainphone"_s, u"workphone"_s, u"telephone"_s,
                                u"businessphone"_s, u"mobile"_s,    u"cellphone"_s};
        const QStringList email{u"mainemail"_s, u"e-mail"_s, u"emailaddress"_s, u"emailaddr"_s};
        QHash<QString, QHash<QString, QStringList>> t;
        t[ListKind::contact] = {
            {u"name"_s,
             {u"customer"_s, u"vendor"_s, u"fullname"_s, u"displayname"_s, u"customername"_s, u"vendorname"_s,
              u"othername"_s, u"contactname"_s}},
            {u"company"_s, {u"companyname"_s, u"business"_s}},
            {u"phone"_s, phone},
            {u"email"_s, email},
            {u"address"_s, address},
            {u"notes"_s, {u"note"_s, u"memo"_s}},
            {u"vendorType"_s, {u"vtype"_s, u"vendortype"_s}},
            {u"is1099"_s, {u"1099"_s, u"eligiblefor1099"_s, u"1099vendor"_s}},
        };
        t[ListKind::user] = {{u"name"_s, {u"employee"_s, u"fullname"_s, u"employeename"_s}},
                             {u"phone"_s, phone},
                             {u"email"_s, email},
                             {u"rate"_s, {u"hourlyrate"_s, u"payrate"_s, u"costperhour"_s}}};
        t[ListKind::costCode] = {{u"code"_s, {u"costcode"_s, u"number"_s, u"code#"_s}},
                                 {u"name"_s, {u"description"_s, u"desc"_s, u"costcodename"_s}},
                                 {u"codeName"_s, {u"item"_s}}};
        t[ListKind::equipment] = {{u"unitNo"_s, {u"unit"_s, u"unitnumber"_s, u"asset"_s, u"asset#"_s}},
                                  {u"meter"_s, {u"hours"_s, u"meter"_s}},
                                  {u"rate"_s, {u"hourlyrate"_s, u"rate"_s}}};
        t[ListKind::project] = {{u"name"_s, {u"project"_s, u"job"_s, u"jobname"_s}},
                                {u"number"_s, {u"job#"_s, u"jobno"_s, u"projectnumber"_s, u"number"_s}},
                                {u"client"_s, {u"customer"_s, u"owner"_s, u"client"_s}},
                                {u"contract"_s, {u"contractamount"_s, u"contractsum"_s}}};
        t[ListKind::openJob] = {{u"name"_s, {u"project"_s, u"job"_s, u"jobname"_s}},
                                {u"number"_s, {u"job#"_s, u"jobno"_s, u"projectnumber"_s}},
                                {u"client"_s, {u"customer"_s, u"owner"_s, u"clientowner"_s}},
                                {u"contract"_s, {u"contract"_s, u"originalcontract"_s, u"contractsum"_s}},
                                {u"billed"_s, {u"billed"_s, u"billedtodate"_s}},
                                {u"retainage"_s, {u"retainage"_s, u"retainageheldtodate"_s}},
                                {u"scheduled"_s, {u"scheduledvalue"_s, u"scheduled"_s}}};
        return t;
    }();
    return table;
}

// The open job's columns: key and the template's label.
const QList<std::pair<QString, QString>> kOpenJob = {
    {u"number"_s, u"Job number"_s},
    {u"name"_s, u"Project name"_s},
    {u"client"_s, u"Client"_s},
    {u"contract"_s, u"Contract amount"_s},
    {u"billed"_s, u"Billed to date"_s},
    {u"retainage"_s, u"Retainage held"_s},
    {u"retainagePct"_s, u"Retainage %"_s},
    {u"lastApp"_s, u"Last pay app #"_s},
    {u"through"_s, u"Billed through"_s},
    {u"item"_s, u"Item"_s},
    {u"description"_s, u"Description"_s},
    {u"scheduled"_s, u"Scheduled value"_s},
    {u"lineBilled"_s, u"Line billed to date"_s},
};

struct Guess
{
    QString kind;
    QString contactType;
};

// What a file's name says it holds, as US contractors name their lists.
Guess byName(const QString &file)
{
    const QString n = normal(QFileInfo(file).completeBaseName());
    if (n.contains(u"openjob"))
        return {ListKind::openJob, {}};
    if (n.contains(u"costcode") || n.contains(u"item"))
        return {ListKind::costCode, {}};
    if (n.contains(u"equipment") || n.contains(u"fleet"))
        return {ListKind::equipment, {}};
    if (n.contains(u"employee") || n.contains(u"team") || n.contains(u"staff"))
        return {ListKind::user, {}};
    if (n.contains(u"client") || n.contains(u"customer"))
        return {ListKind::contact, u"Client / Owner"_s};
    if (n.contains(u"subcontractor") || n.startsWith(u"subs"))
        return {ListKind::contact, u"Subcontractor"_s};
    if (n.contains(u"vendor") || n.contains(u"supplier"))
        return {ListKind::contact, u"Vendor / Supplier"_s};
    if (n.contains(u"contact"))
        return {ListKind::contact, u"Other"_s};
    if (n.contains(u"project") || n.contains(u"job"))
        return {ListKind::project, {}};
    return {};
}

// What the header says, when the file's name does not.
Guess byHeader(const QStringList &header)
{
    QSet<QString> cols;
    for (const QString &h : header)
        cols.insert(normal(h));
    if (cols.contains(u"billedtodate"_s))
        return {ListKind::openJob, {}};
    if (cols.contains(u"customer"_s))
        return {ListKind::contact, u"Client / Owner"_s};
    if (cols.contains(u"vendor"_s))
        return {ListKind::contact, u"Vendor / Supplier"_s};
    if (cols.contains(u"employee"_s))
        return {ListKind::user, {}};
    if (cols.contains(u"costcode"_s) || cols.contains(u"code"_s))
        return {ListKind::costCode, {}};
    if (cols.contains(u"unit#"_s) || cols.contains(u"hourmeter"_s))
        return {ListKind::equipment, {}};
    if (cols.contains(u"jobnumber"_s) || cols.contains(u"projectname"_s))
        return {ListKind::project, {}};
    if (cols.contains(u"name"_s))
        return {ListKind::contact, u"Other"_s};
    return {};
}

} // namespace

QString normal(QStringView text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text)
        if (!c.isSpace() && c != u'_')
            out += c.toLower();
    return out;
}

QString noun(const QString &kind)
{
    static const QHash<QString, QString> nouns{
        {ListKind::contact, u"contacts"_s},    {ListKind::user, u"team members"_s},
        {ListKind::costCode, u"cost codes"_s}, {ListKind::equipment, u"equipment"_s},
        {ListKind::project, u"projects"_s},    {ListKind::openJob, u"open jobs"_s},
    };
    if (const auto it = nouns.constFind(kind); it != nouns.cend())
        return *it;
    if (const ModuleDef *m = Modules::ofKind(kind))
        return m->title.toLower();
    return QString(kind).replace(u'_', u' ') + u" records"_s;
}

QStringList listKinds()
{
    return {ListKind::contact,   ListKind::user,    ListKind::costCode,
            ListKind::equipment, ListKind::project, ListKind::openJob};
}

QList<std::pair<QString, QString>> targets(const QString &kind)
{
    if (kind == ListKind::openJob)
        return kOpenJob;
    QList<std::pair<QString, QString>> out;
    if (const QList<FD> *fields = Modules::fieldsOf(kind))
        for (const FD &fd : *fields)
            out.append({fd.key, fd.label});
    if (kind == ListKind::contact) {
        out.append({u"vendorType"_s, u"Vendor type"_s});
        out.append({u"is1099"_s, u"1099 vendor"_s});
    }
    if (kind == ListKind::costCode)
        out.append({u"codeName"_s, u"Code and name"_s});
    return out;
}

QString matchColumn(const QString &kind, const QString &header)
{
    const QString h = normal(header);
    if (h.isEmpty())
        return QString();
    const QList<std::pair<QString, QString>> fields = targets(kind);
    for (const auto &[key, label] : fields)
        if (normal(label) == h || normal(key) == h)
            return key;
    const auto perKind = aliases().value(kind);
    for (auto it = perKind.cbegin(); it != perKind.cend(); ++it)
        if (it.value().contains(h))
            return it.key();
    return QString();
}

void matchColumns(Sheet &sheet)
{
    sheet.columns.clear();
    for (const QString &h : std::as_const(sheet.table.header)) {
        if (sheet.table.section == u"INVITEM" && h == u"NAME")
            sheet.columns.append(u"codeName"_s); // an item's name may start with a cost code
        else
            sheet.columns.append(sheet.storedForm ? h : matchColumn(sheet.kind, h));
    }
}

QList<Sheet> sheets(const QList<Table> &tables)
{
    static const QHash<QString, Guess> sections{
        {u"CUST"_s, {ListKind::contact, u"Client / Owner"_s}},
        {u"VEND"_s, {ListKind::contact, u"Vendor / Supplier"_s}},
        {u"EMP"_s, {ListKind::user, {}}},
        {u"OTHERNAME"_s, {ListKind::contact, u"Other"_s}},
        {u"INVITEM"_s, {ListKind::costCode, {}}},
    };
    QList<Sheet> out;
    for (const Table &table : tables) {
        Sheet sheet;
        sheet.table = table;
        Guess guess;
        const QString base = QFileInfo(table.file).completeBaseName();
        if (!table.section.isEmpty()) {
            guess = sections.value(table.section);
            if (guess.kind.isEmpty())
                sheet.skipped =
                    table.section + u": "_s + QString::number(table.rows.size()) + u" rows not imported"_s;
        } else if (table.header.size() >= 3 && table.header.at(0) == u"id" &&
                   table.header.at(1) == u"project" && table.header.at(2) == u"parent") {
            // A file of the CSV export, named after its record kind.
            sheet.storedForm = true;
            guess.kind = base;
            if (base == u"company" || base.contains(u' '))
                sheet.skipped = table.file + u": not imported (the company's own record)"_s;
        } else {
            guess = byName(table.file);
            if (guess.kind.isEmpty())
                guess = byHeader(table.header);
            if (guess.kind.isEmpty())
                sheet.skipped = table.file + u": no column names a list Trestle keeps; not imported"_s;
        }
        if (sheet.skipped.isEmpty()) {
            sheet.kind = guess.kind;
            sheet.contactType = guess.contactType;
        }
        matchColumns(sheet);
        out.append(std::move(sheet));
    }
    return out;
}

QStringList openJobsTemplateHeader()
{
    QStringList header;
    for (const auto &[key, label] : kOpenJob)
        header.append(label);
    return header;
}

QString openJobsTemplate()
{
    QList<QStringList> rows{openJobsTemplateHeader()};
    rows.append({u"1021"_s,
                 u"Harbor Street Offices"_s,
                 u"Harbor Street LLC"_s,
                 u"$250,000.00"_s,
                 u"$100,000.00"_s,
                 u"$10,000.00"_s,
                 u"10"_s,
                 u"3"_s,
                 u"10/31/2026"_s,
                 {},
                 {},
                 {},
                 {}});
    rows.append({u"1021"_s,
                 {},
                 {},
                 {},
                 {},
                 {},
                 {},
                 {},
                 {},
                 u"1"_s,
                 u"Sitework"_s,
                 u"$100,000.00"_s,
                 u"$60,000.00"_s});
    rows.append(
        {u"1021"_s, {}, {}, {}, {}, {}, {}, {}, {}, u"2"_s, u"Framing"_s, u"$150,000.00"_s, u"$40,000.00"_s});
    rows.append({u"1022"_s,
                 u"Maple Court Remodel"_s,
                 u"Ruth Alvarez"_s,
                 u"$48,500.00"_s,
                 u"$12,125.00"_s,
                 u"$606.25"_s,
                 u"5"_s,
                 u"1"_s,
                 u"10/31/2026"_s,
                 {},
                 {},
                 {},
                 {}});
    return CSV::text(rows);
}

} // namespace Import
