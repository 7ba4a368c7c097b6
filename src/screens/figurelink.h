#pragma once
// Makes a figure on a screen open into its breakdown: a click, or Enter when it
// has the focus. The figure's reference is asked for at that moment, so it
// follows the screen's project and rows.
#include "workflows/breakdown.h"

#include <functional>
#include <optional>

class DB;
class Nav;
class QWidget;

namespace FigureLink {

// What a figure widget stands for now, or nothing when it stands for none.
using RefFn = std::function<std::optional<FigureRef>()>;

// Makes `figure` open its breakdown (the hand cursor, focus by Tab, and a tooltip).
void attach(QWidget *figure, DB &db, Nav &nav, RefFn ref);
// A figure of Nav's project (none while no project is chosen), of one cost code
// or record when `subject` is given.
RefFn ofProject(const DB &db, const Nav &nav, const QString &name, const QString &subject = {});
// The subject of a cost-code row keyed as the budget and job-cost grids key them.
QString codeSubject(const QString &key);
// Makes the totals of record editors (estimates, change orders, invoices,
// purchase orders, contracts, unit-price items) open as the screens' figures do.
void installForTotals();
// The reference `figure` opens now, if it has one: for a look in tests.
std::optional<FigureRef> refOf(const QWidget *figure);

} // namespace FigureLink
