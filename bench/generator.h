#pragma once
#include <QtCore/QtGlobal>

class DB;

// The reference company the benchmark measures: years of work of a small
// general contractor, made through the store's own operations.
namespace BenchData {
// Adds one company with `projects` projects spread over the `years` years that
// end today (DateFmt::today(), so TRESTLE_TODAY pins it) to the store and makes
// it current. The same seed and day give the same records apart from ids and
// timestamps. About 4,000 records per project.
void generate(DB &db, int projects = 50, int years = 10, quint32 seed = 1);
} // namespace BenchData
