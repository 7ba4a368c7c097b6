#include "tones.h"

#include "contrast.h"

using namespace Qt::StringLiterals;

namespace {

QColor mid(const QColor &a, const QColor &b)
{
    return QColor::fromRgbF((a.redF() + b.redF()) / 2, (a.greenF() + b.greenF()) / 2,
                            (a.blueF() + b.blueF()) / 2);
}

// Every background that text sits on directly: the screen, panels from top to bottom, fields.
QList<QColor> grounds(const FWTheme &t)
{
    return {t.base, t.deep, t.panel, t.raised, t.well};
}

} // namespace

FWTones FWTones::of(const FWTheme &t)
{
    using namespace Contrast;
    FWTones o;
    const QList<QColor> under = grounds(t);
    o.error = reachingAll(QColor(0xFF, 0x3B, 0x30), under, kText);
    o.warning = reachingAll(QColor(0xFF, 0x95, 0x00), under, kText);
    o.good = reachingAll(QColor(0x34, 0xC7, 0x59), under, kText);
    o.bad = o.error;
    o.focus = reachingAll(t.accent, under, kNonText);
    o.edge = reachingAll(t.metalMid, under, kNonText);

    QColor strip = t.deep;
    strip.setAlphaF(0.55);
    o.railStrip = composite(strip, t.base);
    o.railText = reachingAll(t.text, {o.railStrip, composite(strip, t.deep)}, kText);

    // The chrome carries the finish's text: each stop is moved off the text until it does.
    const QColor hi = reaching(t.metalMid.lighter(118), t.text, kText);
    const QColor lo = reaching(t.metalLo, t.text, kText);
    o.metalStops[0] = hi;
    o.metalStops[2] = lo;
    o.metalStops[1] = reaching(mid(hi, lo), t.text, kText);
    o.metalIcon = reachingAll(t.accent2, {hi, o.metalStops[1], lo}, kNonText);

    // Dark ink on a bright accent, white on a dark one; the gradient then gives way to the ink.
    o.onAccent = luminance(t.accent) > 0.2 ? t.deep : QColor(Qt::white);
    o.prominentStops[0] = reaching(t.accent2, o.onAccent, kText);
    o.prominentStops[1] = reaching(t.accent.darker(105), o.onAccent, kText);
    o.selection = reaching(t.accent, o.onAccent, kText);

    const QColor hues[4] = {QColor(0x34, 0xC7, 0x59), QColor(0xFF, 0x3B, 0x30), QColor(0xFF, 0x95, 0x00),
                            t.dim};
    for (int i = 0; i < 4; ++i) {
        o.pillText[i] = Qt::white;
        o.pillFill[i] = reaching(hues[i], Qt::white, kText);
    }
    return o;
}

const FWTones &FWTones::current()
{
    static QString id;
    static FWTones tones;
    const FWTheme &t = FWUI::shared().theme();
    if (id != t.id) {
        tones = of(t);
        id = t.id;
    }
    return tones;
}

QList<FWTones::Pair> FWTones::pairs(const FWTheme &t) const
{
    using Contrast::kNonText;
    using Contrast::kText;
    QList<Pair> out;
    const std::pair<const char *, QColor> under[] = {{"screen", t.base},
                                                     {"screen edge", t.deep},
                                                     {"panel", t.panel},
                                                     {"raised panel", t.raised},
                                                     {"field", t.well}};
    for (const auto &[where, back] : under) {
        const QString on = u" on "_s + QLatin1StringView(where);
        out.append({u"body text"_s + on, t.text, back, kText});
        out.append({u"secondary text and labels"_s + on, t.dim, back, kText});
        out.append({u"error"_s + on, error, back, kText});
        out.append({u"warning"_s + on, warning, back, kText});
        out.append({u"variance under budget"_s + on, good, back, kText});
        out.append({u"variance over budget"_s + on, bad, back, kText});
        out.append({u"focus ring"_s + on, focus, back, kNonText});
        out.append({u"control edge"_s + on, edge, back, kNonText});
    }
    out.append({u"placeholder in a field"_s, t.dim, t.well, kText});
    out.append({u"rail item"_s, railText, railStrip, kText});
    out.append({u"focus ring on the rail"_s, focus, railStrip, kNonText});
    const char *stops[] = {"top", "middle", "bottom"};
    for (int i = 0; i < 3; ++i) {
        const QString at = u" at the gradient's "_s + QLatin1StringView(stops[i]);
        out.append({u"selected rail item and button text"_s + at, t.text, metalStops[i], kText});
        out.append({u"selected rail item symbol"_s + at, metalIcon, metalStops[i], kNonText});
    }
    out.append({u"prominent button at the top"_s, onAccent, prominentStops[0], kText});
    out.append({u"prominent button at the bottom"_s, onAccent, prominentStops[1], kText});
    out.append({u"selected row"_s, onAccent, selection, kText});
    const char *pills[] = {"green", "red", "orange", "neutral"};
    for (int i = 0; i < 4; ++i)
        out.append({u"status pill "_s + QLatin1StringView(pills[i]), pillText[i], pillFill[i], kText});
    return out;
}
