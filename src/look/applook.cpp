#include "applook.h"

#include "focusring.h"
#include "fwui.h"
#include "tones.h"

#include <QtWidgets/QApplication>

namespace AppLook {

QPalette palette(const FWTheme &t)
{
    const FWTones tones = FWTones::of(t);
    QPalette p;
    for (QPalette::ColorGroup g : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        p.setColor(g, QPalette::Window, t.base);
        p.setColor(g, QPalette::WindowText, t.text);
        p.setColor(g, QPalette::Base, t.well);
        p.setColor(g, QPalette::AlternateBase, t.panel);
        p.setColor(g, QPalette::Text, t.text);
        p.setColor(g, QPalette::PlaceholderText, t.dim);
        p.setColor(g, QPalette::Button, t.raised);
        p.setColor(g, QPalette::ButtonText, t.text);
        p.setColor(g, QPalette::BrightText, tones.error);
        p.setColor(g, QPalette::Highlight, tones.selection);
        p.setColor(g, QPalette::HighlightedText, tones.onAccent);
        p.setColor(g, QPalette::ToolTipBase, t.raised);
        p.setColor(g, QPalette::ToolTipText, t.text);
        p.setColor(g, QPalette::Link, tones.focus);
        p.setColor(g, QPalette::LinkVisited, tones.focus);
        // The frame shades of menus, boxes and buttons.
        p.setColor(g, QPalette::Light, t.raised.lighter(130));
        p.setColor(g, QPalette::Midlight, t.raised);
        p.setColor(g, QPalette::Mid, tones.edge);
        p.setColor(g, QPalette::Dark, t.deep);
        p.setColor(g, QPalette::Shadow, t.deep.darker(150));
    }
    p.setColor(QPalette::Disabled, QPalette::Text, t.dim);
    p.setColor(QPalette::Disabled, QPalette::WindowText, t.dim);
    p.setColor(QPalette::Disabled, QPalette::ButtonText, t.dim);
    return p;
}

namespace {

void apply()
{
    const FWUI &ui = FWUI::shared();
    QApplication::setPalette(palette(ui.theme()));
    QApplication::setFont(ui.font(13));
}

} // namespace

void follow()
{
    static bool following = false;
    apply();
    if (following)
        return;
    following = true;
    QObject::connect(&FWUI::shared(), &FWUI::changed, qApp, &apply);
    FocusRing::install();
}

} // namespace AppLook
