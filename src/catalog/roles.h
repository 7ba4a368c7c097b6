#pragma once
#include "moduledef.h"

// Who may open what: driven by the module's ownerOnly, money and subVisible flags.
namespace Roles {
// The five roles in the order the team module offers them.
const QStringList &all();
// Whether a user of `role` may open `module`.
bool mayOpen(const QString &role, const ModuleDef &module);
// The refusal text the module area shows for a module the role may not open.
QString refusal(const QString &role, const ModuleDef &module);
} // namespace Roles
