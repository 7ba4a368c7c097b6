#pragma once
#include "moduledef.h"

#include "store/server/serverschema.h"

// What a company server enforces, read from the module table: the same rule
// that decides which screens a role may open decides which records and fields
// the server gives and takes from that role's logins.
namespace ServerRules {
// The rules for `modules` (the program's own table when not given).
ServerCatalog fromModules(const QList<ModuleDef> &modules);
ServerCatalog fromCatalog();
// The server's group role of a role of the team.
QString groupOf(const QString &role);
} // namespace ServerRules
