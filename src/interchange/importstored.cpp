// Files of the CSV export brought back after an edit in a spreadsheet: values
// as the store holds them (amounts in whole cents, references by id), records
// with an id updated in place, rows without one added.
#include "catalog/modules.h"
#include "importrows.h"
#include "store/db.h"

#include <QtCore/QRegularExpression>

#include <cmath>

using namespace Qt::StringLiterals;

namespace Import {

namespace {

// A stored value checked against its field; the value to store, or why not.
FieldInput::Typed storedValue(const DB &db, const Names &names, const FD &fd, const QString &text)
{
    switch (fd.type.kind) {
    case FT::money:
        if (!RecText::parseInt(text))
            return {QString(),
                    u"\u201C"_s + text + u"\u201D is not whole cents, as the export writes amounts."_s};
        return {text, QString()};
    case FT::number:
    case FT::percent:
        if (const std::optional<double> n = RecText::parseDouble(text); !n || !std::isfinite(*n))
            return {QString(), u"Not a number."_s};
        return {text, QString()};
    case FT::date: return FieldInput::date(text);
    case FT::boolean: return FieldInput::boolean(text);
    case FT::choice: return FieldInput::pick(FieldInput::options(db, fd, QString()), text);
    case FT::ref:
    case FT::refIn:
        if (db.find(text) || names.importIds.contains(text))
            return {text, QString()};
        return {QString(), u"No record has the id "_s + text + u'.'};
    default: return {text, QString()};
    }
}

QString titleOf(const Fields &f)
{
    for (const auto key : {u"name", u"title", u"number", u"code", u"description", u"item"})
        if (!f.value(QStringView(key)).isEmpty())
            return f.value(QStringView(key));
    return QString();
}

} // namespace

void planStored(const DB &db, Names &names, qsizetype index, const Sheet &sheet, QList<PlanRow> &out)
{
    const QList<FD> *fields = Modules::fieldsOf(sheet.kind);
    const QStringList &header = sheet.table.header;
    for (const Table::Row &row : sheet.table.rows) {
        if (row.cells.isEmpty())
            continue;
        PlanRow plan;
        plan.sheet = index;
        plan.line = row.line;
        plan.kind = sheet.kind;
        QStringList problems;
        const auto cell = [&](qsizetype k) {
            return k < row.cells.size() ? row.cells.at(k).trimmed() : QString();
        };
        const QString id = cell(0);
        const QString projectText = cell(1);
        const QString parent = cell(2);

        QString project;
        if (!projectText.isEmpty()) {
            const Rec *byId = db.find(projectText);
            project = byId && byId->kind == u"project" ? byId->id
                                                       : names.find(ListKind::project, {normal(projectText)});
            if (project.isEmpty())
                problems.append(u"project: no project named \u201C"_s + projectText + u"\u201D."_s);
        }
        if (!parent.isEmpty() && !db.find(parent) && !names.importIds.contains(parent))
            problems.append(u"parent: no record has the id "_s + parent + u'.');

        const Rec *stored = id.isEmpty() ? nullptr : db.find(id);
        if (stored && (stored->kind != sheet.kind || stored->company != db.companyID())) {
            problems.append(u"id: "_s + id + u" is a record of another kind or company."_s);
            stored = nullptr;
        }
        Rec rec = stored ? *stored : freshRec(db, sheet.kind, nullptr);
        if (!stored && !id.isEmpty())
            rec.id = id; // kept, so the other files' references to it hold
        rec.project = project;
        rec.parent = parent;
        for (qsizetype k = 3; k < header.size(); ++k) {
            const QString key = header.at(k);
            const QString value = cell(k);
            if (key.isEmpty())
                continue;
            if (value.isEmpty()) {
                rec.f.remove(key);
                continue;
            }
            const FD *fd = nullptr;
            if (fields)
                for (const FD &f : *fields)
                    if (f.key == key)
                        fd = &f;
            if (!fd) {
                // Whole numbers the program reads (order, amounts of lines) must fit, or reading them stops
                // it.
                static const QRegularExpression whole(u"^-?[0-9]+$"_s);
                if ((key == u"sort" || whole.match(value).hasMatch()) && !RecText::parseInt(value))
                    problems.append(key + u": \u201C"_s + value +
                                    u"\u201D is not a whole number that fits."_s);
                else
                    rec.f.insert(key, value);
                continue;
            }
            const FieldInput::Typed t = storedValue(db, names, *fd, value);
            if (t.ok())
                rec.f.insert(key, t.stored);
            else
                problems.append(fd->label + u": "_s + t.error);
        }
        plan.title = titleOf(rec.f);
        if (!problems.isEmpty()) {
            plan.state = RowState::Bad;
            plan.error =
                sheet.table.file + u':' + QString::number(row.line) + u": "_s + problems.join(u"; "_s);
            out.append(plan);
            continue;
        }
        if (sheet.kind == ListKind::project)
            names.add(ListKind::project, keysOf(ListKind::project, rec.f), rec.id);
        if (!stored) {
            plan.state = RowState::New;
            plan.saves.append(rec);
        } else if (rec.f == stored->f && rec.project == stored->project && rec.parent == stored->parent) {
            plan.state = RowState::Unchanged;
        } else {
            plan.state = RowState::Updated;
            plan.saves.append(rec);
            plan.replaced.append(*stored);
        }
        out.append(plan);
    }
}

} // namespace Import
