#include "contrast.h"

#include <QtCore/QList>

#include <cmath>

namespace Contrast {

namespace {

double channel(double v)
{
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

// `c` mixed with `toward` by `t` (0 keeps `c`).
QColor mix(const QColor &c, const QColor &toward, double t)
{
    return QColor::fromRgbF(float(c.redF() + (toward.redF() - c.redF()) * t),
                            float(c.greenF() + (toward.greenF() - c.greenF()) * t),
                            float(c.blueF() + (toward.blueF() - c.blueF()) * t));
}

double worst(const QColor &c, const QList<QColor> &against)
{
    double w = 21;
    for (const QColor &a : against)
        w = std::min(w, ratio(c, a));
    return w;
}

// The least mix of `c` toward `end` that reaches `minimum` with every colour, or `end` itself.
QColor walk(const QColor &c, const QColor &end, const QList<QColor> &against, double minimum)
{
    for (int step = 0; step <= 100; ++step) {
        const QColor m = mix(c, end, step / 100.0);
        if (worst(m, against) >= minimum)
            return m;
    }
    return end;
}

} // namespace

double luminance(const QColor &c)
{
    const QColor rgb = c.toRgb();
    return 0.2126 * channel(rgb.redF()) + 0.7152 * channel(rgb.greenF()) + 0.0722 * channel(rgb.blueF());
}

double ratio(const QColor &a, const QColor &b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QColor composite(const QColor &over, const QColor &under)
{
    const double a = over.alphaF();
    return QColor::fromRgbF(float(over.redF() * a + under.redF() * (1 - a)),
                            float(over.greenF() * a + under.greenF() * (1 - a)),
                            float(over.blueF() * a + under.blueF() * (1 - a)));
}

QColor reaching(const QColor &c, const QColor &against, double minimum)
{
    return reachingAll(c, {against}, minimum);
}

QColor reachingAll(const QColor &c, const QList<QColor> &against, double minimum)
{
    const QColor opaque = c.toRgb();
    if (against.isEmpty() || worst(opaque, against) >= minimum)
        return opaque;
    double mean = 0;
    for (const QColor &a : against)
        mean += luminance(a);
    mean /= double(against.size());
    // Away from the backgrounds first: darker on light ones, lighter on dark ones.
    const bool darker = mean > luminance(opaque);
    const QColor first = walk(opaque, darker ? Qt::black : Qt::white, against, minimum);
    if (worst(first, against) >= minimum)
        return first;
    const QColor second = walk(opaque, darker ? Qt::white : Qt::black, against, minimum);
    return worst(second, against) > worst(first, against) ? second : first;
}

} // namespace Contrast
