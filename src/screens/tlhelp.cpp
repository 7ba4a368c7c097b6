#include "tlhelp.h"

#include "catalog/modules.h"
#include "look/helpview.h"
#include "shell/tlapp.h"

#include <QtGui/QGuiApplication>

using namespace Qt::StringLiterals;

namespace TLHelp {

namespace {

// How a company-wide kind is named in "Choose from your …".
QString plural(const QString &kind)
{
    if (kind == u"contact")
        return u"contacts"_s;
    if (kind == u"cost_code")
        return u"cost codes"_s;
    if (kind == u"user")
        return u"team"_s;
    if (kind == u"equipment")
        return u"equipment"_s;
    QString words = kind;
    words.replace(u'_', u' ');
    return words + u's';
}

QString whoCanUse(const ModuleDef &m)
{
    if (m.ownerOnly)
        return u"Owner only."_s;
    if (m.money)
        return u"Owner, Project Manager and Accounting"_s +
               (m.subVisible ? u", and subcontractors (their own paperwork)."_s : u"."_s);
    return m.subVisible ? u"Everyone, including subcontractors."_s
                        : u"Owner, Project Manager, Accounting and Field."_s;
}

} // namespace

QString fieldHelp(const FD &fd)
{
    switch (fd.type.kind) {
    case FT::money: return u"Dollars and cents (type 1234.56 or $1,234.56)."_s;
    case FT::percent: return u"Percent, e.g. 10 for 10%."_s;
    case FT::date: return u"Click Set date, then type or use the arrows."_s;
    case FT::time: return u"24-hour time, e.g. 07:00 or 15:30."_s;
    case FT::choice: return u"One of: "_s + fd.type.options.join(u", "_s);
    case FT::refIn: return u"Choose from this project."_s;
    case FT::ref: return u"Choose from your "_s + plural(fd.type.target) + u'.';
    case FT::number: return u"A number, e.g. 12 or 2.5."_s;
    case FT::boolean: return u"A switch: on or off."_s;
    case FT::longText: return u"Any length of text, over as many lines as you need."_s;
    case FT::text: break;
    }
    return u"Free text."_s;
}

HelpPage page(const ModuleDef &m)
{
    HelpPage p{m.id, m.title, m.symbol, {HelpBlock::makeText(m.blurb)}};
    p.blocks << extra().value(m.id);
    if (!m.fields.isEmpty()) {
        p.blocks << HelpBlock::makeHeading(u"Fields"_s);
        for (const FD &fd : m.fields)
            p.blocks << HelpBlock::makeControl(fd.label, fieldHelp(fd));
    }
    if (m.lineKind && !m.lineFields.isEmpty()) {
        p.blocks << HelpBlock::makeHeading(*m.lineKind == u"bid" ? u"Bids"_s : u"Line items"_s);
        for (const FD &fd : m.lineFields)
            p.blocks << HelpBlock::makeControl(fd.label, fieldHelp(fd));
    }
    p.blocks << HelpBlock::makeHeading(u"Who can use it"_s) << HelpBlock::makeText(whoCanUse(m));
    if (m.perProject)
        p.blocks << HelpBlock::makeText(
            u"This list follows the PROJECT menu at the top: choose a project to see only its records."_s);
    return p;
}

QList<HelpPage> pages()
{
    QList<HelpPage> out = guidePages();
    for (const ModuleDef &m : Modules::all())
        out << page(m);
    return out;
}

void install()
{
    TLApp::helpPagesHook() = [] {
        FWHelp::setPages(pages() + FWCommonHelp::pages(QGuiApplication::applicationDisplayName()));
    };
    TLApp::helpWindowHook() = [](QWidget *parent, const QString &pageId) {
        FWHelpView::showWindow(parent, pageId);
    };
}

} // namespace TLHelp
