#pragma once
#include "moduledef.h"

// The fixed catalog of modules that drives every generic screen.
namespace Modules {
// All modules in table order (also the rail order within each group).
const QList<ModuleDef> &all();
// The module with that id, or null.
const ModuleDef *get(QStringView id);
// The rail groups in order of first appearance.
QStringList groups();
// The four waiver kinds in order, with their long labels.
const QList<std::pair<QString, QString>> &waiverKinds();
} // namespace Modules
