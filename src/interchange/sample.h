#pragma once
#include "store/rec.h"

#include <functional>
#include <optional>

class DB;

// What the sample company needs from the graphical layers, which this layer
// does not link. An empty hook leaves the record without its file.
struct SampleFiles
{
    // Draws the sample floor plan and stores it; the stored file name, or nothing.
    std::function<std::optional<QString>(DB &)> planPDF;
    // Fills the body of a document record from its template.
    std::function<void(DB &, const Rec &document)> documentBody;
};

// A complete demonstration company, made through the store's own operations
// and the workflows so that every figure agrees with the records.
namespace Sample {
// Cents text of a dollar amount.
QString c(double dollars);
// "yyyy-MM-dd" of today plus `days` (negative for the past).
QString d(int days);
// Makes "Grand Valley Builders (Sample)" beside any existing company and selects it.
Rec create(DB &db, const SampleFiles &files = {});
} // namespace Sample
