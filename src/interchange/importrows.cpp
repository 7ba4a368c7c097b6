#include "importrows.h"

#include "catalog/modules.h"
#include "store/db.h"

#include <QtCore/QRegularExpression>

using namespace Qt::StringLiterals;

namespace Import {

QHash<QString, QString> &Names::of(const QString &kind)
{
    auto it = m_ids.find(kind);
    if (it != m_ids.end())
        return *it;
    it = m_ids.insert(kind, {});
    QHash<QString, QString> &ids = *it;
    m_db.visit(kind, {}, [&](const Rec &r) {
        for (const QString &key : keysOf(kind, r.f))
            if (!ids.contains(key))
                ids.insert(key, r.id);
    });
    return ids;
}

QString Names::find(const QString &kind, const QStringList &keys)
{
    const QHash<QString, QString> &ids = of(kind);
    for (const QString &key : keys)
        if (const auto it = ids.constFind(key); it != ids.cend())
            return *it;
    return QString();
}

void Names::add(const QString &kind, const QStringList &keys, const QString &id)
{
    QHash<QString, QString> &ids = of(kind);
    for (const QString &key : keys)
        if (!ids.contains(key))
            ids.insert(key, id);
}

int Names::claim(const QString &kind, const QStringList &keys, int line)
{
    if (keys.isEmpty())
        return 0;
    QHash<QString, int> &claimed = m_claimed[kind];
    const QString key = keys.first();
    if (const auto it = claimed.constFind(key); it != claimed.cend())
        return *it;
    claimed.insert(key, line);
    return 0;
}

QStringList keysOf(const QString &kind, const Fields &fields)
{
    QStringList keys;
    const QString name = normal(fields.value(u"name"));
    if (kind == ListKind::costCode) {
        const QString code = normal(fields.value(u"code"));
        if (!code.isEmpty())
            keys.append(code);
        return keys;
    }
    const QString number = kind == ListKind::equipment
                               ? normal(fields.value(u"unitNo"))
                               : (kind == ListKind::project ? normal(fields.value(u"number")) : QString());
    if (!number.isEmpty())
        keys.append(u'#' + number);
    if (!name.isEmpty())
        keys.append(name);
    return keys;
}

Fields collect(const Sheet &sheet, const Table::Row &row)
{
    Fields out;
    const qsizetype n = std::min(row.cells.size(), sheet.columns.size());
    for (qsizetype k = 0; k < n; ++k) {
        const QString &key = sheet.columns.at(k);
        const QString cell = row.cells.at(k).trimmed();
        if (key.isEmpty() || cell.isEmpty())
            continue;
        if (out.contains(key))
            out.insert(key, out.value(key) + (key == u"notes" ? u"\n"_s : u", "_s) + cell);
        else
            out.insert(key, cell);
    }
    return out;
}

FieldInput::Typed readCell(const DB &db, Names &names, const FD &fd, const QString &text)
{
    if (fd.type.kind == FT::ref) {
        const QString target = fd.type.target;
        const QString id = names.find(
            target, {target == ListKind::costCode ? normal(text.section(u' ', 0, 0)) : normal(text)});
        if (!id.isEmpty())
            return {id, QString()};
        return {QString(),
                u"No "_s + QString(target).replace(u'_', u' ') + u" named \u201C"_s + text + u"\u201D."_s};
    }
    if (fd.type.kind == FT::text && fd.key == u"phone") {
        // A phone holds at least seven digits; fewer means a shifted column or a typing slip.
        const auto digits = std::count_if(text.cbegin(), text.cend(), [](QChar c) { return c.isDigit(); });
        if (digits < 7)
            return {QString(), u"\u201C"_s + text + u"\u201D is not a phone number."_s};
    }
    if (fd.type.kind == FT::text && fd.key == u"email") {
        static const QRegularExpression mail(u"^[^@\\s]+@[^@\\s]+\\.[^@\\s]+$"_s);
        if (!mail.match(text).hasMatch())
            return {QString(), u"\u201C"_s + text + u"\u201D is not an e-mail address."_s};
    }
    return FieldInput::read(db, fd, text, QString());
}

Rec freshRec(const DB &db, const QString &kind, const ModuleDef *module)
{
    Rec rec;
    rec.id = newID();
    rec.kind = kind;
    rec.company = db.companyID();
    rec.created = nowSeconds();
    rec.updated = rec.created;
    if (module)
        rec.f = module->defaults;
    return rec;
}

} // namespace Import
