#include "importplan.h"

#include "calc/fieldinput.h"
#include "catalog/modules.h"
#include "csv.h"
#include "importrows.h"
#include "store/db.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

using namespace Qt::StringLiterals;

namespace Import {

namespace {

// The contact type a vendor's QuickBooks type or 1099 flag stands for; empty when neither says.
QString vendorTypeOf(const QString &vendorType, const QString &is1099)
{
    const QString t = normal(vendorType);
    if (t.contains(u"sub"))
        return u"Subcontractor"_s;
    if (t.contains(u"supplier") || t.contains(u"vendor") || t.contains(u"material"))
        return u"Vendor / Supplier"_s;
    const FieldInput::Typed flag = FieldInput::boolean(is1099 == u"Y" || is1099 == u"y" ? u"1"_s : is1099);
    if (flag.ok() && flag.stored == u"1")
        return u"Subcontractor"_s;
    return QString();
}

// Splits an item's name such as "01-100 Demolition" into its code and name; nothing when it names no code.
std::optional<std::pair<QString, QString>> codeAndName(const QString &text)
{
    static const QRegularExpression re(u"^\\s*(\\d[\\d.\\- ]*\\d|\\d)(?:\\s+(.*))?$"_s);
    const QString last = text.section(u':', -1); // a sub-item names its parents first
    const QRegularExpressionMatch m = re.match(last);
    if (!m.hasMatch())
        return std::nullopt;
    return std::pair{m.captured(1).trimmed(), m.captured(2).trimmed()};
}

} // namespace

void planList(const DB &db, Names &names, qsizetype index, const Sheet &sheet, QList<PlanRow> &out)
{
    const ModuleDef *module = Modules::ofKind(sheet.kind);
    for (const Table::Row &row : sheet.table.rows) {
        Fields raw = collect(sheet, row);
        if (raw.isEmpty())
            continue;
        PlanRow plan;
        plan.sheet = index;
        plan.line = row.line;
        plan.kind = sheet.kind;
        QStringList problems;
        QString kind = sheet.kind;

        if (kind == ListKind::costCode && raw.contains(u"codeName")) {
            const QString codeName = raw.value(u"codeName");
            raw.remove(u"codeName");
            const auto split = codeAndName(codeName);
            if (!split) {
                // Items that are not cost codes (parts, service items) are counted, not refused.
                plan.state = RowState::Unchanged;
                plan.title = codeName;
                plan.kind = u"items that are not cost codes"_s;
                out.append(plan);
                continue;
            }
            if (!raw.contains(u"code"))
                raw.insert(u"code"_s, split->first);
            if (!raw.contains(u"name"))
                raw.insert(u"name"_s, split->second.isEmpty() ? codeName : split->second);
        }
        QString clientOfJob;
        if (kind == ListKind::contact) {
            const QString type = vendorTypeOf(raw.value(u"vendorType"), raw.value(u"is1099"));
            raw.remove(u"vendorType");
            raw.remove(u"is1099");
            if (!type.isEmpty() && !raw.contains(u"type"))
                raw.insert(u"type"_s, type);
            // "Customer:Job" names a job of that customer.
            const QString name = raw.value(u"name");
            if (sheet.contactType == u"Client / Owner" && name.contains(u':')) {
                clientOfJob = name.section(u':', 0, 0).trimmed();
                Fields job;
                job.insert(u"name"_s, name.section(u':', -1).trimmed());
                if (raw.contains(u"address"))
                    job.insert(u"address"_s, raw.value(u"address"));
                if (raw.contains(u"notes"))
                    job.insert(u"notes"_s, raw.value(u"notes"));
                raw = job;
                kind = ListKind::project;
                plan.kind = kind;
            }
        }

        const ModuleDef *def = kind == sheet.kind ? module : Modules::ofKind(kind);
        Fields typed;
        for (const Fields::Entry &e : raw) {
            const FD *fd = def ? def->field(e.key) : nullptr;
            if (!fd)
                continue;
            const FieldInput::Typed t = readCell(db, names, *fd, e.value);
            if (!t.ok())
                problems.append(fd->label + u": "_s + t.error);
            else
                typed.insert(fd->key, t.stored);
        }
        std::optional<Rec> client;
        if (!clientOfJob.isEmpty()) {
            const QString id = names.find(ListKind::contact, {normal(clientOfJob)});
            if (id.isEmpty())
                problems.append(u"Name: no client named \u201C"_s + clientOfJob + u"\u201D for this job."_s);
            else
                typed.insert(u"client"_s, id);
        }
        const QStringList keys = keysOf(kind, typed);
        if (problems.isEmpty() && keys.isEmpty()) {
            const QString what = kind == ListKind::costCode ? u"Code"_s : u"Name"_s;
            problems.append(what + u": empty; every row needs one."_s);
        }
        plan.title = typed.value(kind == ListKind::costCode ? u"code" : u"name");
        if (kind == ListKind::costCode)
            plan.title += u' ' + typed.value(u"name");
        if (!problems.isEmpty()) {
            plan.state = RowState::Bad;
            plan.error =
                sheet.table.file + u':' + QString::number(row.line) + u": "_s + problems.join(u"; "_s);
            out.append(plan);
            continue;
        }
        if (const int earlier = names.claim(kind, keys, row.line); earlier != 0) {
            plan.state = RowState::Bad;
            plan.error = sheet.table.file + u':' + QString::number(row.line) + u": \u201C"_s +
                         plan.title.trimmed() + u"\u201D is on line "_s + QString::number(earlier) +
                         u" already."_s;
            out.append(plan);
            continue;
        }
        const QString existing = names.find(kind, keys);
        if (const Rec *stored = existing.isEmpty() ? nullptr : db.find(existing)) {
            Rec updated = *stored;
            for (const Fields::Entry &e : typed) {
                // A name matched whatever its case and spacing stays as it was typed in Trestle.
                const bool key =
                    e.key == u"name" || e.key == u"code" || e.key == u"number" || e.key == u"unitNo";
                if (!key || normal(stored->f.value(e.key)) != normal(e.value))
                    updated.f.insert(e.key, e.value);
            }
            plan.state = updated.f == stored->f ? RowState::Unchanged : RowState::Updated;
            if (plan.state == RowState::Updated) {
                plan.saves.append(updated);
                plan.replaced.append(*stored);
            }
            names.add(kind, keys, stored->id);
        } else {
            Rec rec = freshRec(db, kind, def);
            if (kind == ListKind::contact && !typed.contains(u"type") && !sheet.contactType.isEmpty())
                rec.f.insert(u"type"_s, sheet.contactType);
            for (const Fields::Entry &e : typed)
                rec.f.insert(e.key, e.value);
            plan.state = RowState::New;
            plan.saves.append(rec);
            names.add(kind, keys, rec.id);
        }
        out.append(plan);
    }
}

Plan plan(const DB &db, QList<Sheet> sheets)
{
    Plan result;
    result.company = db.companyID();
    // Lists first, so projects and jobs find the clients of the same import;
    // among files of the export, projects before what hangs from them.
    const auto rank = [](const Sheet &s) {
        if (s.kind.isEmpty())
            return 9;
        if (s.storedForm)
            return s.kind == ListKind::project ? 6 : 7;
        const int k = int(listKinds().indexOf(s.kind));
        return k < 0 ? 8 : k;
    };
    std::stable_sort(sheets.begin(), sheets.end(),
                     [&](const Sheet &a, const Sheet &b) { return rank(a) < rank(b); });
    result.sheets = sheets;
    Names names(db);
    for (const Sheet &sheet : std::as_const(sheets))
        if (sheet.storedForm && !sheet.kind.isEmpty())
            for (const Table::Row &row : sheet.table.rows)
                if (!row.cells.isEmpty() && !row.cells.first().trimmed().isEmpty())
                    names.importIds.insert(row.cells.first().trimmed());
    for (qsizetype k = 0; k < sheets.size(); ++k) {
        const Sheet &sheet = sheets.at(k);
        if (sheet.kind.isEmpty()) {
            if (!sheet.skipped.isEmpty() && !sheet.table.rows.isEmpty())
                result.notImported.append(sheet.skipped);
            continue;
        }
        if (sheet.storedForm)
            planStored(db, names, k, sheet, result.rows);
        else if (sheet.kind == ListKind::openJob)
            planOpenJobs(db, names, k, sheet, result.rows);
        else
            planList(db, names, k, sheet, result.rows);
    }
    return result;
}

QList<std::pair<QString, Count>> Plan::counts() const
{
    QList<std::pair<QString, Count>> out;
    for (const PlanRow &row : rows) {
        auto it = std::find_if(out.begin(), out.end(), [&](const auto &p) { return p.first == row.kind; });
        if (it == out.end()) {
            out.append({row.kind, Count()});
            it = out.end() - 1;
        }
        Count &c = it->second;
        switch (row.state) {
        case RowState::New: ++c.fresh; break;
        case RowState::Updated: ++c.updated; break;
        case RowState::Unchanged: ++c.unchanged; break;
        case RowState::Bad: ++c.bad; break;
        }
    }
    // The lists in their usual order, whatever order the files came in.
    const auto rank = [](const QString &kind) {
        const QStringList order{
            ListKind::contact,   ListKind::user,    ListKind::costCode, u"items that are not cost codes"_s,
            ListKind::equipment, ListKind::project, ListKind::openJob};
        const qsizetype k = order.indexOf(kind);
        return k < 0 ? order.size() : k;
    };
    std::stable_sort(out.begin(), out.end(),
                     [&](const auto &a, const auto &b) { return rank(a.first) < rank(b.first); });
    return out;
}

QStringList Plan::summary() const
{
    QStringList lines;
    for (const auto &[kind, c] : counts()) {
        if (kind == u"items that are not cost codes") {
            lines.append(u"items that are not cost codes: "_s + QString::number(c.unchanged) +
                         u" not imported"_s);
            continue;
        }
        QString line = noun(kind) + u": "_s + QString::number(c.fresh) + u" new, "_s +
                       QString::number(c.updated) + u" updated, "_s + QString::number(c.unchanged) +
                       u" unchanged"_s;
        if (c.bad > 0)
            line += u", "_s + QString::number(c.bad) + u" bad"_s;
        lines.append(line);
    }
    return lines + notImported;
}

QStringList Plan::errors() const
{
    QStringList out;
    for (const PlanRow &row : rows)
        if (row.state == RowState::Bad)
            out.append(row.error);
    return out;
}

bool Plan::anyBad() const
{
    return std::any_of(rows.cbegin(), rows.cend(), [](const PlanRow &r) { return r.state == RowState::Bad; });
}

QList<std::pair<QString, QString>> Plan::badRowFiles() const
{
    QList<std::pair<QString, QString>> out;
    for (qsizetype k = 0; k < sheets.size(); ++k) {
        const Sheet &sheet = sheets.at(k);
        QHash<int, QString> bad;
        for (const PlanRow &row : rows)
            if (row.sheet == k && row.state == RowState::Bad)
                bad.insert(row.line, row.error.section(u": "_s, 1));
        if (bad.isEmpty())
            continue;
        QList<QStringList> table{sheet.table.header + QStringList{u"Problem"_s}};
        for (const Table::Row &row : sheet.table.rows)
            if (bad.contains(row.line)) {
                QStringList cells = row.cells;
                while (cells.size() < sheet.table.header.size())
                    cells.append(QString());
                table.append(cells + QStringList{bad.value(row.line)});
            }
        // A section of an IIF file comes back named for its list, so it imports into the same one.
        static const QHash<QString, QString> lists{{u"CUST"_s, u"customers"_s},
                                                   {u"VEND"_s, u"vendors"_s},
                                                   {u"EMP"_s, u"employees"_s},
                                                   {u"OTHERNAME"_s, u"other contacts"_s},
                                                   {u"INVITEM"_s, u"items"_s}};
        QString base = QFileInfo(sheet.table.file).completeBaseName();
        if (!sheet.table.section.isEmpty())
            base += u' ' + lists.value(sheet.table.section, sheet.table.section);
        out.append({base + u" - rows to fix.csv"_s, CSV::text(table)});
    }
    return out;
}

} // namespace Import
