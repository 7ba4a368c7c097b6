#pragma once

// What the painted parts of the screens say to a screen reader: the schedule
// chart and the figure grids as tables, the charts' data as a table under
// their title, the tiles, pills and bars by their words and figures, and a
// plan sheet by its name, pages and marks.
namespace ScreenAccess {
// Puts the interfaces in place; once, before the first window shows.
void install();
} // namespace ScreenAccess
