#include "serverrules.h"

#include "modules.h"
#include "roles.h"

#include <QtCore/QSet>

using namespace Qt::StringLiterals;

namespace ServerRules {

namespace {
// Kinds a workflow numbers (the next pay application of a project), not New.
const QStringList kWorkflowNumbered = {u"pay_app"_s};
// Keys the store itself keeps on records of any kind (list order), never money.
const QStringList kStructural = {u"sort"_s};
// The company record has no module; its fields are the ones a company is made with.
const QList<FD> kCompanyFields = {{u"name"_s, u"Name"_s, FT::of(FT::text)},
                                  {u"state"_s, u"State"_s, FT::of(FT::text)}};

void addUnique(QStringList &list, const QString &item)
{
    if (!item.isEmpty() && !list.contains(item))
        list.append(item);
}
} // namespace

QString groupOf(const QString &role)
{
    return u"trestle_role_"_s + role.toLower().replace(u' ', u'_');
}

ServerCatalog fromModules(const QList<ModuleDef> &modules)
{
    ServerCatalog out;
    out.numberedKinds = kWorkflowNumbered;
    // The fields each kind carries, from the module that keeps it or whose lines it is.
    QHash<QString, QList<FD>> fieldsOf;
    fieldsOf.insert(u"company"_s, kCompanyFields);
    for (const ModuleDef &m : modules) {
        // A number the program gives (on New, or by a workflow such as the next pay
        // application) rather than one the user types must stay unique across seats.
        const bool given = m.numbered || (m.columns.contains(u"number"_s) && !m.field(u"number"));
        if (given && !m.kind.isEmpty())
            addUnique(out.numberedKinds, m.kind);
        if (!m.kind.isEmpty())
            fieldsOf[m.kind] += m.fields;
        if (m.lineKind)
            fieldsOf[*m.lineKind] += m.lineFields;
    }
    for (const QString &name : Roles::all()) {
        ServerCatalog::Role role;
        role.name = name;
        role.group = groupOf(name);
        role.restricted = name == u"Field" || name == u"Subcontractor";
        role.hideMoney = name == u"Field";
        role.ownFirmOnly = name == u"Subcontractor";
        QStringList open;
        for (const ModuleDef &m : modules) {
            if (!Roles::mayOpen(name, m)) {
                // A kind only a screen this role may not open keeps is not this role's to change.
                if (!role.restricted && !m.kind.isEmpty())
                    addUnique(role.deniedKinds, m.kind);
                continue;
            }
            addUnique(open, m.kind);
            if (m.lineKind)
                addUnique(open, *m.lineKind);
        }
        if (!role.restricted) {
            // The company record is made by an owner.
            if (name != u"Owner")
                addUnique(role.deniedKinds, u"company"_s);
            out.roles.append(role);
            continue;
        }
        role.writeKinds = open;
        role.readKinds = open;
        addUnique(role.readKinds, u"company"_s);
        addUnique(role.readKinds, u"project"_s);
        // What the open screens name by reference (people, contacts, codes, machines) is read too.
        for (const QString &kind : std::as_const(open))
            for (const FD &fd : fieldsOf.value(kind))
                if (fd.type.kind == FT::ref || fd.type.kind == FT::refIn)
                    addUnique(role.readKinds, fd.type.target);
        if (role.hideMoney)
            for (const QString &kind : std::as_const(role.readKinds)) {
                QStringList keys = kStructural;
                // Every percentage of the table is a term of money (retainage, markup, tax).
                for (const FD &fd : fieldsOf.value(kind))
                    if (fd.type.kind != FT::money && fd.type.kind != FT::percent)
                        addUnique(keys, fd.key);
                role.fields.insert(kind, keys);
            }
        out.roles.append(role);
    }
    return out;
}

ServerCatalog fromCatalog()
{
    return fromModules(Modules::all());
}

} // namespace ServerRules
