#include "fwui.h"

#include "contrast.h"
#include "desktopscheme.h"

#include <QtCore/QSettings>
#include <QtGui/QGuiApplication>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString themeKey = u"fenwright.ui.theme"_s;
const QString zoomKey = u"fenwright.ui.zoom"_s;
const QString lightId = u"brushed-aluminum"_s;

QSettings settings()
{
    return QSettings(u"Fenwright"_s, u"Trestle"_s);
}

FWTheme finish(const QString &id, const QString &name, std::initializer_list<const char *> hex)
{
    QList<QColor> c;
    for (const char *h : hex)
        c.append(QColor::fromString(QLatin1StringView(h)));
    FWTheme t{id, name, c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8], c[9], c[10], c[11]};
    // Secondary text and labels sit on every background of the finish: keep them readable on all.
    t.dim = Contrast::reachingAll(t.dim, {t.deep, t.base, t.panel, t.raised, t.well}, Contrast::kText);
    return t;
}

} // namespace

const QList<FWTheme> &FWTheme::all()
{
    static const QList<FWTheme> list = {
        finish(u"gunmetal-blue"_s, u"Gunmetal Blue"_s,
               {"#090D13", "#161D28", "#1B242F", "#263240", "#DBE8F7", "#66809E", "#212E40", "#4CBDFF",
                "#8CE6FF", "#EBF2FC", "#94A8C2", "#05080D"}),
        finish(u"anodized-red"_s, u"Anodized Red"_s,
               {"#120406", "#2B090E", "#370D12", "#4C131A", "#FFCCCC", "#B23840", "#470D14", "#FF5447",
                "#FF9E59", "#FFF0ED", "#CC9999", "#0A0203"}),
        finish(u"rose-gold"_s, u"Rose Gold"_s,
               {"#1F1212", "#3C2625", "#49302E", "#60423E", "#FFE6DB", "#DB998A", "#734740", "#FFA89E",
                "#FFD19E", "#FFF2ED", "#D9B2A8", "#120A0A"}),
        finish(u"lavender-violet"_s, u"Lavender Violet"_s,
               {"#0F091A", "#221637", "#2D1D45", "#3E2B5C", "#F2E6FF", "#9E80D9", "#402966", "#C799FF",
                "#FFADEB", "#F7F2FF", "#B8A6D9", "#09050F"}),
        finish(u"black-chrome"_s, u"Black Chrome"_s,
               {"#030303", "#0E0E10", "#131315", "#1F1F22", "#FFFFFF", "#8C8F99", "#1A1A1F", "#CCEBFF",
                "#66FFD9", "#F5F5FA", "#999CA8", "#000000"}),
        finish(u"graphite-gray"_s, u"Graphite Gray"_s,
               {"#1C1D1F", "#333437", "#3E4043", "#525357", "#F7F7FA", "#9EA1A8", "#474A4F", "#FFB238",
                "#FFD973", "#F7F7FA", "#B2B5BD", "#111112"}),
        // The light finish, for a bright site trailer and for desktops set to a light look.
        finish(lightId, u"Brushed Aluminum"_s,
               {"#C3CBD5", "#E3E8EE", "#F1F4F7", "#FFFFFF", "#FFFFFF", "#C9D2DD", "#AEB9C7", "#0A5BB0",
                "#1E6FC4", "#111820", "#4B5768", "#FFFFFF"}),
    };
    return list;
}

const FWTheme &FWTheme::byId(QStringView id)
{
    for (const FWTheme &t : all())
        if (t.id == id)
            return t;
    return all().first();
}

FWUI::FWUI(QObject *parent)
    : QObject(parent)
    , m_theme(&FWTheme::byId(settings().value(themeKey).toString()))
    , m_followsDesktop(!settings().contains(themeKey))
{
    const double stored = settings().value(zoomKey).toDouble();
    m_zoom =
        (stored == 0 || !std::isfinite(stored)) ? 1.0 : std::clamp(stored, steps().first(), steps().last());
}

FWUI &FWUI::shared()
{
    static FWUI *ui = [] {
        auto *made = new FWUI(qApp);
        DesktopScheme::watch(made, [made](bool light) { made->setDesktopPrefersLight(light); });
        return made;
    }();
    return *ui;
}

const QList<double> &FWUI::steps()
{
    static const QList<double> list = {0.85, 0.9, 1.0, 1.1, 1.25, 1.4, 1.5, 1.75, 2.0};
    return list;
}

double FWUI::previousZoom(double before)
{
    double found = steps().first();
    for (double step : steps())
        if (step < before - 0.001)
            found = step;
    return found;
}

double FWUI::nextZoom(double after)
{
    for (double step : steps())
        if (step > after + 0.001)
            return step;
    return steps().last();
}

void FWUI::setTheme(const QString &id)
{
    const FWTheme *next = &FWTheme::byId(id);
    QSettings s = settings();
    s.setValue(themeKey, next->id);
    m_followsDesktop = false;
    choose(next);
}

void FWUI::setDesktopPrefersLight(bool light)
{
    if (m_followsDesktop)
        choose(light ? &FWTheme::byId(lightId) : &FWTheme::all().first());
}

void FWUI::choose(const FWTheme *next)
{
    if (next == m_theme)
        return;
    m_theme = next;
    Q_EMIT changed();
}

void FWUI::setZoom(double zoom)
{
    if (!std::isfinite(zoom))
        return;
    zoom = std::clamp(zoom, steps().first(), steps().last());
    QSettings s = settings();
    s.setValue(zoomKey, zoom);
    if (qFuzzyCompare(zoom, m_zoom))
        return;
    m_zoom = zoom;
    Q_EMIT changed();
}

int FWUI::px(qreal points) const
{
    return std::max(1, int(std::lround(points * m_zoom)));
}

QFont FWUI::font(qreal points, QFont::Weight weight) const
{
    QFont f = QGuiApplication::font();
    f.setFamilies({u"Inter"_s, u"Cantarell"_s, u"DejaVu Sans"_s, u"sans-serif"_s});
    f.setPixelSize(px(points));
    f.setWeight(weight);
    return f;
}

QString FWUI::percent() const
{
    return QString::number(std::lround(m_zoom * 100)) + u'%';
}
