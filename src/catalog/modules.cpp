#include "modules.h"

#include "modulerows.h"

using namespace Qt::StringLiterals;

namespace ModuleRows {

ModuleDef make(QString id, QString title, QString symbol, QString group, QString kind, QStringView flags,
               std::optional<QString> screen, std::optional<QString> lineKind, QString blurb)
{
    ModuleDef m;
    m.id = std::move(id);
    m.title = std::move(title);
    m.symbol = std::move(symbol);
    m.group = std::move(group);
    m.kind = std::move(kind);
    m.perProject = flags.contains(u'P');
    m.numbered = flags.contains(u'N');
    m.money = flags.contains(u'M');
    m.ownerOnly = flags.contains(u'O');
    m.subVisible = flags.contains(u'S');
    m.screen = std::move(screen);
    m.lineKind = std::move(lineKind);
    m.blurb = std::move(blurb);
    return m;
}

QStringList waiverKindKeys()
{
    QStringList keys;
    for (const auto &[key, label] : Modules::waiverKinds())
        keys.append(key);
    return keys;
}

} // namespace ModuleRows

namespace Modules {

const QList<ModuleDef> &all()
{
    static const QList<ModuleDef> table = [] {
        QList<ModuleDef> out;
        ModuleRows::addCore(out);
        ModuleRows::addMoney(out);
        ModuleRows::addField(out);
        return out;
    }();
    return table;
}

const ModuleDef *get(QStringView id)
{
    for (const ModuleDef &m : all())
        if (m.id == id)
            return &m;
    return nullptr;
}

const ModuleDef *ofKind(QStringView kind)
{
    if (kind.isEmpty())
        return nullptr;
    for (const ModuleDef &m : all())
        if (m.kind == kind)
            return &m;
    return nullptr;
}

const QList<FD> *fieldsOf(QStringView kind)
{
    if (const ModuleDef *m = ofKind(kind))
        return m->fields.isEmpty() ? nullptr : &m->fields;
    for (const ModuleDef &m : all())
        if (m.lineKind && *m.lineKind == kind)
            return &m.lineFields;
    return nullptr;
}

QStringList groups()
{
    QStringList out;
    for (const ModuleDef &m : all())
        if (!out.contains(m.group))
            out.append(m.group);
    return out;
}

const QList<std::pair<QString, QString>> &waiverKinds()
{
    static const QList<std::pair<QString, QString>> kinds = {
        {u"conditional_progress"_s, u"Conditional Waiver and Release on Progress Payment"_s},
        {u"unconditional_progress"_s, u"Unconditional Waiver and Release on Progress Payment"_s},
        {u"conditional_final"_s, u"Conditional Waiver and Release on Final Payment"_s},
        {u"unconditional_final"_s, u"Unconditional Waiver and Release on Final Payment"_s},
    };
    return kinds;
}

} // namespace Modules
