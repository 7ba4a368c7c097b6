#pragma once
#include "interchange/sample.h"

#include <QtCore/QString>

class DB;

// The sample company's files that need drawing or rich text: the floor plan
// sheet and the body of its notice to proceed.
namespace SampleDocs {

// Width and height of the sample plan sheet in points (24 by 18 inches).
inline constexpr double kPlanWidth = 24 * 72, kPlanHeight = 18 * 72;

// Draws the one-page floor plan of the clubhouse as a PDF at `path`; false when it could not be written.
bool samplePlan(const QString &path);
// Draws the plan into the current company's files; its stored name, or nothing.
std::optional<QString> planPDF(DB &db);
// Fills the body of the sample's notice from the notice-to-proceed template.
void documentBody(DB &db, const Rec &document);
// Both hooks, for Sample::create.
SampleFiles files();

} // namespace SampleDocs
