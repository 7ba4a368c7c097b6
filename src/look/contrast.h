#pragma once
#include <QtGui/QColor>

// Contrast as the accessibility guidelines measure it, and colours adjusted until they reach it.
namespace Contrast {
// The relative luminance of an opaque sRGB colour, 0 (black) to 1 (white).
double luminance(const QColor &c);
// The contrast ratio of two opaque colours, 1 to 21, the same either way round.
double ratio(const QColor &a, const QColor &b);
// `over` painted with its alpha on the opaque `under`.
QColor composite(const QColor &over, const QColor &under);
// `c` moved away from `against` in lightness (darker against a lighter colour, lighter against
// a darker one) by the least step that reaches `minimum`; `c` itself when it already does.
// When that side cannot reach it, the other side's best is returned if it does better.
QColor reaching(const QColor &c, const QColor &against, double minimum);
// `c` moved away from every colour of `against` until it reaches `minimum` with each of them.
QColor reachingAll(const QColor &c, const QList<QColor> &against, double minimum);

// What the guidelines ask: 4.5 for text, 3 for large text and for the parts of a control.
constexpr double kText = 4.5;
constexpr double kNonText = 3.0;
} // namespace Contrast
