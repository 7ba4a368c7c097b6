#pragma once
#include "store/rec.h"

class DB;

// Fields that follow from an edit, filled in before the edited record is saved.
namespace Hooks {
// Runs after `key` of `record` was changed in an editor; changes `record` in
// place and saves nothing.
void didChange(const DB &db, Rec &record, const QString &key);
} // namespace Hooks
