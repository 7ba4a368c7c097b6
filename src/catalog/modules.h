#pragma once
#include "moduledef.h"

// The fixed catalog of modules that drives every generic screen.
namespace Modules {
// All modules in table order (also the rail order within each group).
const QList<ModuleDef> &all();
// The module with that id, or null.
const ModuleDef *get(QStringView id);
// The module whose records are of `kind` (never a line kind), or null.
const ModuleDef *ofKind(QStringView kind);
// The fields a record of `kind` is edited with: its module's fields, or the
// line fields of the module whose lines are of that kind; null when no module
// has fields for it (a kind of its own screen, or one no one edits).
const QList<FD> *fieldsOf(QStringView kind);
// The rail groups in order of first appearance.
QStringList groups();
// The four waiver kinds in order, with their long labels.
const QList<std::pair<QString, QString>> &waiverKinds();
} // namespace Modules
