#include "roles.h"

using namespace Qt::StringLiterals;

namespace Roles {

const QStringList &all()
{
    static const QStringList roles = {u"Owner"_s, u"Project Manager"_s, u"Accounting"_s, u"Field"_s,
                                      u"Subcontractor"_s};
    return roles;
}

bool mayOpen(const QString &role, const ModuleDef &m)
{
    if (m.ownerOnly)
        return role == u"Owner";
    if (role == u"Field")
        return !m.money;
    if (role == u"Subcontractor")
        return m.subVisible;
    return true;
}

QString refusal(const QString &role, const ModuleDef &m)
{
    return m.title + u" is not available to the "_s + role +
           u" role. Ask the owner to change your role in Team & Roles."_s;
}

} // namespace Roles
