#include "helppage.h"

#include "fwui.h"

#include "documents/pdfwrite.h"

using namespace Qt::StringLiterals;

QString HelpBlock::searchText() const
{
    QStringList parts;
    if (!name.isEmpty())
        parts << name;
    if (!body.isEmpty())
        parts << body;
    parts << items;
    return parts.join(u' ');
}

QString HelpPage::searchText() const
{
    QStringList parts;
    for (const HelpBlock &b : blocks)
        parts << b.searchText();
    return parts.join(u' ');
}

namespace FWCommonHelp {

QList<HelpPage> pages(const QString &app)
{
    using B = HelpBlock;
    QStringList finishes;
    for (const FWTheme &t : FWTheme::all())
        finishes << t.name;
    QStringList steps;
    for (double z : FWUI::steps())
        steps << QString::number(qRound(z * 100)) + u'%';

    HelpPage look{
        u"look"_s,
        u"Themes & Zoom"_s,
        u"paintpalette.fill"_s,
        {
            B::makeText(app + u" comes in "_s + QString::number(finishes.size()) +
                        u" finishes, all dark so that figures stand out on the screen. The finish changes "
                        u"only the screen: printouts and PDFs are always black on white."_s),
            B::makeHeading(u"Choosing a finish"_s),
            B::makeBullets(finishes),
            B::makeText(
                u"Pick one from View ▸ Theme, or from the theme button at the right of the header bar. "
                u"Every screen repaints at once, and the choice is remembered for the next start."_s),
            B::makeHeading(u"Zoom"_s),
            B::makeText(u"The zoom makes the whole interface larger or smaller: text, buttons, lists, "
                        u"charts and the Gantt chart alike. It moves in steps: "_s +
                        steps.join(u", "_s) +
                        u". The View menu shows the zoom in force as \"Interface Zoom\", and the zoom is "
                        u"remembered for the next start."_s),
            B::makeKey(u"Ctrl+="_s, u"Zoom in one step; at 200% it stays."_s),
            B::makeKey(u"Ctrl+−"_s, u"Zoom out one step; at 85% it stays."_s),
            B::makeKey(u"Ctrl+0"_s, u"Back to actual size (100%)."_s),
            B::makeControl(u"Magnifier buttons"_s,
                           u"The two magnifiers in the header bar, either side of the zoom "
                           u"figure, zoom out and in as the keys do."_s),
            B::makeTip(u"On a large monitor across the room, 125% or 140% keeps a pay application readable "
                       u"without reading glasses."_s),
        }};

    HelpPage about{
        u"about"_s,
        u"About Fenwright"_s,
        u"info.circle.fill"_s,
        {
            B::makeText(app +
                        u" is made by Fenwright, a small workshop that writes desktop software for "
                        u"people who run trades businesses. Our programs keep your data on your own "
                        u"computer: no account, no subscription server, no internet connection needed."_s),
            B::makeText(u"It is free software under the GNU General Public License, version 3 or later: "
                        u"you may use it, study it, share it and change it. The About item of the Help menu "
                        u"shows the version "
                        u"and the libraries it is built on."_s),
            B::makeHeading(u"Getting in touch"_s),
            B::makeText(u"News, updates and a place to report problems: "_s +
                        PDFOut::kMakerAddress.toString() +
                        u". When you report a problem, say which version you run (see the About item of the "
                        u"Help menu) and what you "
                        u"did just before it happened."_s),
        }};
    return {look, about};
}

} // namespace FWCommonHelp

namespace FWHelp {

namespace {
QList<HelpPage> &installed()
{
    static QList<HelpPage> list;
    return list;
}

QString esc(const QString &s)
{
    return s.toHtmlEscaped();
}
} // namespace

const QList<HelpPage> &pages()
{
    return installed();
}

void setPages(QList<HelpPage> pages)
{
    installed() = std::move(pages);
}

QString html(const HelpPage &page)
{
    const FWTheme &t = FWUI::shared().theme();
    QString out = u"<h1>"_s + esc(page.title) + u"</h1>"_s;
    for (const HelpBlock &b : page.blocks) {
        switch (b.kind) {
        case HelpBlock::heading: out += u"<h2>"_s + esc(b.body) + u"</h2>"_s; break;
        case HelpBlock::text: out += u"<p>"_s + esc(b.body) + u"</p>"_s; break;
        case HelpBlock::steps:
        case HelpBlock::bullets: {
            const QString tag = b.kind == HelpBlock::steps ? u"ol"_s : u"ul"_s;
            out += u'<' + tag + u'>';
            for (const QString &item : b.items)
                out += u"<li>"_s + esc(item) + u"</li>"_s;
            out += u"</"_s + tag + u'>';
            break;
        }
        case HelpBlock::control:
            out += u"<p><b style=\"color:"_s + t.accent2.name() + u"\">"_s + esc(b.name) + u"</b> — "_s +
                   esc(b.body) + u"</p>"_s;
            break;
        case HelpBlock::key:
            out += u"<p><code style=\"background:"_s + t.well.name() + u"\">&nbsp;"_s + esc(b.name) +
                   u"&nbsp;</code>&nbsp;&nbsp;"_s + esc(b.body) + u"</p>"_s;
            break;
        case HelpBlock::tip:
            out += u"<table width=\"100%\" cellpadding=\"8\" style=\"background:"_s + t.raised.name() +
                   u"\"><tr><td><b style=\"color:"_s + t.accent.name() + u"\">Tip:</b> "_s + esc(b.body) +
                   u"</td></tr></table>"_s;
            break;
        }
    }
    return out;
}

} // namespace FWHelp
