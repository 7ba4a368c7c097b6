#pragma once
// Internal to the catalog: the builders the module rows are written with.
#include "modules.h"

namespace ModuleRows {
// A module with its header facts; `flags` holds P, N, M, O, S for perProject,
// numbered, money, ownerOnly and subVisible.
ModuleDef make(QString id, QString title, QString symbol, QString group, QString kind, QStringView flags,
               std::optional<QString> screen, std::optional<QString> lineKind, QString blurb);
QStringList waiverKindKeys();

void addCore(QList<ModuleDef> &out);
void addMoney(QList<ModuleDef> &out);
void addField(QList<ModuleDef> &out);
} // namespace ModuleRows
