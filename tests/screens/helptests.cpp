// The guide: generated module pages, field help, the page list, the search
// and the help window, and the About window's facts.
#include "testmain.h"

#include "catalog/modules.h"
#include "look/helpview.h"
#include "screens/about.h"
#include "screens/screens.h"
#include "screens/tlhelp.h"
#include "shell/nav.h"
#include "shell/tlapp.h"
#include "shell/tlwindow.h"
#include "store/db.h"

#include <QtCore/QPointer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenuBar>

#include <QtWidgets/QLabel>

using namespace Qt::StringLiterals;

namespace {

QStringList ids(const QList<HelpPage> &pages)
{
    QStringList out;
    for (const HelpPage &p : pages)
        out << p.id;
    return out;
}

// The text of the block that follows the heading "Who can use it".
QString whoCanUse(const HelpPage &page)
{
    for (qsizetype i = 0; i + 1 < page.blocks.size(); ++i)
        if (page.blocks.at(i).kind == HelpBlock::heading && page.blocks.at(i).body == u"Who can use it")
            return page.blocks.at(i + 1).body;
    return {};
}

} // namespace

class HelpTests : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The role sentence follows the flags in their order of precedence.
    void whoCanUseFollowsTheFlags_data()
    {
        QTest::addColumn<bool>("ownerOnly");
        QTest::addColumn<bool>("money");
        QTest::addColumn<bool>("subVisible");
        QTest::addColumn<QString>("text");
        QTest::newRow("owner only beats all") << true << true << true << u"Owner only."_s;
        QTest::newRow("owner only alone") << true << false << false << u"Owner only."_s;
        QTest::newRow("money with subs")
            << false << true << true
            << u"Owner, Project Manager and Accounting, and subcontractors (their own paperwork)."_s;
        QTest::newRow("money") << false << true << false << u"Owner, Project Manager and Accounting."_s;
        QTest::newRow("subs") << false << false << true << u"Everyone, including subcontractors."_s;
        QTest::newRow("none") << false << false << false
                              << u"Owner, Project Manager, Accounting and Field."_s;
    }
    void whoCanUseFollowsTheFlags()
    {
        QFETCH(bool, ownerOnly);
        QFETCH(bool, money);
        QFETCH(bool, subVisible);
        QFETCH(QString, text);
        ModuleDef m;
        m.id = u"x"_s;
        m.ownerOnly = ownerOnly;
        m.money = money;
        m.subVisible = subVisible;
        QCOMPARE(whoCanUse(TLHelp::page(m)), text);
    }

    // The module table's owner-only module says so on its page.
    void ownerOnlyModuleOfTheTable()
    {
        int owners = 0;
        for (const ModuleDef &m : Modules::all())
            if (m.ownerOnly) {
                ++owners;
                QCOMPARE(whoCanUse(TLHelp::page(m)), u"Owner only."_s);
            }
        QVERIFY(owners > 0);
    }

    void fieldHelpByType_data()
    {
        QTest::addColumn<FD>("fd");
        QTest::addColumn<QString>("text");
        QTest::newRow("money") << FD{u"a"_s, u"A"_s, FT::of(FT::money)}
                               << u"Dollars and cents (type 1234.56 or $1,234.56)."_s;
        QTest::newRow("percent") << FD{u"a"_s, u"A"_s, FT::of(FT::percent)} << u"Percent, e.g. 10 for 10%."_s;
        QTest::newRow("date") << FD{u"a"_s, u"A"_s, FT::of(FT::date)}
                              << u"Click Set date, then type or use the arrows."_s;
        QTest::newRow("time") << FD{u"a"_s, u"A"_s, FT::of(FT::time)}
                              << u"24-hour time, e.g. 07:00 or 15:30."_s;
        QTest::newRow("choice") << FD{u"a"_s, u"A"_s, FT::makeChoice({u"Open"_s, u"Closed"_s})}
                                << u"One of: Open, Closed"_s;
        QTest::newRow("in project") << FD{u"a"_s, u"A"_s, FT::makeRefIn(u"pay_app"_s)}
                                    << u"Choose from this project."_s;
        QTest::newRow("contacts") << FD{u"a"_s, u"A"_s, FT::makeRef(u"contact"_s)}
                                  << u"Choose from your contacts."_s;
        QTest::newRow("cost codes") << FD{u"a"_s, u"A"_s, FT::makeRef(u"cost_code"_s)}
                                    << u"Choose from your cost codes."_s;
        QTest::newRow("team") << FD{u"a"_s, u"A"_s, FT::makeRef(u"user"_s)} << u"Choose from your team."_s;
    }
    void fieldHelpByType()
    {
        QFETCH(FD, fd);
        QFETCH(QString, text);
        QCOMPARE(TLHelp::fieldHelp(fd), text);
    }

    // A generated page: blurb, extras, fields, lines, roles and the project note, in that order.
    void generatedPageOrder_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("linesHeading");
        for (const ModuleDef &m : Modules::all())
            if (m.lineKind && !m.lineFields.isEmpty())
                QTest::newRow(qPrintable(m.id))
                    << m.id << (*m.lineKind == u"bid" ? u"Bids"_s : u"Line items"_s);
        QTest::newRow("documents") << u"documents"_s << QString();
    }
    void generatedPageOrder()
    {
        QFETCH(QString, module);
        QFETCH(QString, linesHeading);
        const ModuleDef &m = *Modules::get(module);
        const HelpPage p = TLHelp::page(m);
        QCOMPARE(p.id, m.id);
        QCOMPARE(p.title, m.title);
        QCOMPARE(p.blocks.first(), HelpBlock::makeText(m.blurb));
        const QList<HelpBlock> extra = TLHelp::extra().value(m.id);
        QCOMPARE(p.blocks.mid(1, extra.size()), extra);
        qsizetype at = 1 + extra.size();
        QCOMPARE(p.blocks.at(at++), HelpBlock::makeHeading(u"Fields"_s));
        for (const FD &fd : m.fields)
            QCOMPARE(p.blocks.at(at++), HelpBlock::makeControl(fd.label, TLHelp::fieldHelp(fd)));
        if (!linesHeading.isEmpty()) {
            QCOMPARE(p.blocks.at(at++), HelpBlock::makeHeading(linesHeading));
            for (const FD &fd : m.lineFields)
                QCOMPARE(p.blocks.at(at++), HelpBlock::makeControl(fd.label, TLHelp::fieldHelp(fd)));
        }
        QCOMPARE(p.blocks.at(at++), HelpBlock::makeHeading(u"Who can use it"_s));
        ++at;
        QCOMPARE(p.blocks.size(), at + (m.perProject ? 1 : 0));
        if (m.perProject)
            QVERIFY(p.blocks.last().body.startsWith(u"This list follows the PROJECT menu"_s));
    }

    // The seven written pages, then every module in table order; extras for exactly the seventeen.
    void pageList()
    {
        const QList<HelpPage> pages = TLHelp::pages();
        QStringList expected{u"quickstart"_s, u"keys"_s,      u"companies"_s, u"printing"_s,
                             u"backup"_s,     u"importing"_s, u"safety"_s};
        for (const ModuleDef &m : Modules::all())
            expected << m.id;
        QCOMPARE(ids(pages), expected);
        QCOMPARE(pages.at(1).title, u"Keyboard Shortcuts"_s);
        QCOMPARE(pages.at(4).symbol, u"externaldrive.fill"_s);
        QStringList extras = TLHelp::extra().keys();
        extras.sort();
        QStringList seventeen{u"hub"_s,       u"documents"_s, u"estimates"_s,  u"budget"_s,    u"cos"_s,
                              u"payapps"_s,   u"waivers"_s,   u"jobcost"_s,    u"qb"_s,        u"schedule"_s,
                              u"plans"_s,     u"bids"_s,      u"compliance"_s, u"unititems"_s, u"dailylogs"_s,
                              u"timecards"_s, u"reports"_s};
        seventeen.sort();
        QCOMPARE(extras, seventeen);
        for (const QString &id : seventeen)
            QVERIFY2(Modules::get(id), qPrintable(id));
        const QList<HelpPage> common = FWCommonHelp::pages(u"Fenwright Trestle"_s);
        QCOMPARE(ids(common), (QStringList{u"look"_s, u"about"_s}));
        QCOMPARE(common.at(0).title, u"Themes & Zoom"_s);
        QCOMPARE(common.at(1).title, u"About Fenwright"_s);
    }

    // The explanations the screens quote stand on their modules' pages word for word.
    void explanationsWordForWord_data()
    {
        QTest::addColumn<QString>("module");
        QTest::addColumn<QString>("text");
        QTest::newRow("estimate totals")
            << u"estimates"_s
            << u"Lines are quantity × unit cost. Markup applies to the subtotal; tax applies to subtotal + markup."_s;
        QTest::newRow("pay application retainage") << u"payapps"_s
                                                   << u"Retainage on work is a percentage of previous + this "
                                                      u"period; retainage on stored materials has "
                                                      u"its own percentage. Line 7 is line 6 of the previous "
                                                      u"application. Setting retainage to 0% on the "
                                                      u"final application releases it."_s;
        QTest::newRow("waiver pay app")
            << u"waivers"_s
            << u"Choosing a pay app fills the amount (current payment due), the date "
               u"and the customer."_s;
    }
    void explanationsWordForWord()
    {
        QFETCH(QString, module);
        QFETCH(QString, text);
        const HelpPage page = TLHelp::page(*Modules::get(module));
        QVERIFY(page.blocks.contains(HelpBlock::makeText(text)));
    }

    // "Unconditional (after paid)" tells what it makes on an application not fully billed.
    void unconditionalWaiverHelp()
    {
        const QList<HelpBlock> blocks = TLHelp::extra().value(u"payapps"_s);
        const auto it = std::find_if(blocks.begin(), blocks.end(), [](const HelpBlock &b) {
            return b.name == u"Unconditional (after paid)"_s;
        });
        QVERIFY(it != blocks.end());
        QVERIFY(it->body.contains(u"unconditional final waiver when the whole contract is billed"_s));
        QVERIFY(it->body.contains(u"otherwise a conditional progress waiver"_s));
    }

    // The shortcuts page lists exactly the first nine modules under Ctrl+1 to Ctrl+9.
    void shortcutsFollowTheTable()
    {
        const HelpPage keys = TLHelp::guidePages().at(1);
        for (int i = 0; i < 9; ++i)
            QVERIFY(keys.blocks.contains(
                HelpBlock::makeKey(u"Ctrl+"_s + QString::number(i + 1), Modules::all().at(i).title)));
    }

    void search_data()
    {
        QTest::addColumn<QString>("search");
        QTest::addColumn<QString>("mustFind");
        QTest::addColumn<QString>("mustMiss");
        QTest::newRow("field label word") << u"claimant"_s << u"waivers"_s << u"quickstart"_s;
        QTest::newRow("field label, any case") << u"  CLAIMANT (gives"_s << u"waivers"_s << u"hub"_s;
        QTest::newRow("title") << u"keyboard shortcuts"_s << u"keys"_s << u"waivers"_s;
        QTest::newRow("written words") << u"grand valley builders"_s << u"quickstart"_s << u"keys"_s;
        QTest::newRow("common page") << u"actual size"_s << u"look"_s << u"waivers"_s;
    }
    void search()
    {
        QFETCH(QString, search);
        QFETCH(QString, mustFind);
        QFETCH(QString, mustMiss);
        const QList<HelpPage> all = TLHelp::pages() + FWCommonHelp::pages(u"Fenwright Trestle"_s);
        const QStringList found = ids(FWHelpView::filtered(all, search));
        QVERIFY2(found.contains(mustFind), qPrintable(found.join(u',')));
        QVERIFY(!found.contains(mustMiss));
        // Kept pages stay in their order.
        QStringList inOrder = ids(all);
        inOrder.removeIf([&](const QString &id) { return !found.contains(id); });
        QCOMPARE(found, inOrder);
    }

    void blankSearchListsAll_data()
    {
        QTest::addColumn<QString>("search");
        QTest::newRow("empty") << QString();
        QTest::newRow("blanks") << u"   "_s;
        QTest::newRow("tabs and newline") << u"\t \n"_s;
    }
    void blankSearchListsAll()
    {
        QFETCH(QString, search);
        const QList<HelpPage> all = TLHelp::pages();
        QCOMPARE(ids(FWHelpView::filtered(all, search)), ids(all));
    }

    // The window: typing in the search box narrows the list, and a page shows its blocks.
    void helpWindow()
    {
        TLHelp::install();
        TLApp::helpPagesHook()();
        QCOMPARE(FWHelp::pages().size(), TLHelp::pages().size() + 2);
        FWHelpView view(FWHelp::pages());
        QCOMPARE(view.listedIds().size(), FWHelp::pages().size());
        QCOMPARE(view.shownId(), u"quickstart"_s);
        view.setSearch(u"Claimant"_s);
        QVERIFY(view.listedIds().contains(u"waivers"_s));
        QVERIFY(view.openPage(u"waivers"_s));
        QVERIFY(view.shownText().contains(u"Claimant (gives the waiver)"_s));
        QVERIFY(view.shownText().contains(u"statutory"_s) || view.shownText().contains(u"state form"_s));
        view.setSearch(u"no page says zzqx"_s);
        QVERIFY(view.listedIds().isEmpty());
        QVERIFY(view.shownId().isEmpty());
        view.setSearch(u"  "_s);
        QCOMPARE(view.listedIds().size(), FWHelp::pages().size());
    }

    // Registering the screens puts the guide behind the Help menu and adds About Trestle to it.
    void helpMenuOpensGuideAndAbout()
    {
        Screens::registerAll();
        TLApp::helpPagesHook()();
        DB db;
        Nav nav;
        TLWindow window(db, nav);
        QAction *help = nullptr;
        QAction *about = nullptr;
        for (QAction *menu : window.menuBar()->actions())
            if (menu->menu())
                for (QAction *a : menu->menu()->actions()) {
                    if (a->text() == u"Fenwright Trestle Help")
                        help = a;
                    if (a->text() == u"About Trestle")
                        about = a;
                }
        QVERIFY(help && about);
        help->trigger();
        FWHelpView *view = window.findChild<FWHelpView *>();
        QVERIFY(view && view->isVisible());
        QVERIFY(view->listedIds().contains(u"look"_s));
        view->close();
    }

    void helpKeys_data()
    {
        QTest::addColumn<QKeySequence>("keys");
        QTest::newRow("Esc") << QKeySequence(Qt::Key_Escape);
        QTest::newRow("Ctrl+W") << QKeySequence(QKeySequence::Close);
    }
    void helpKeys()
    {
        QFETCH(QKeySequence, keys);
        TLHelp::install();
        TLApp::helpPagesHook()();
        QPointer<FWHelpView> help = FWHelpView::showWindow(nullptr, u"contacts"_s);
        QVERIFY(QTest::qWaitForWindowActive(help));
        QCOMPARE(help->shownId(), u"contacts"_s);
        QTest::keySequence(help, keys);
        QCoreApplication::processEvents();
        QVERIFY(!help || !help->isVisible());
        QTRY_VERIFY(!help);
    }

    void helpOpensAtTheScreenInFront()
    {
        Screens::registerAll();
        TLApp::helpPagesHook()();
        DB db;
        Nav nav;
        db.createCompany(u"Acme"_s, u"Olive Owner"_s, u"CO"_s);
        nav.setModule(u"payapps"_s);
        TLWindow w(db, nav);
        w.resize(1400, 900);
        w.show();
        QApplication::setActiveWindow(&w);
        QVERIFY(QTest::qWaitForWindowActive(&w));
        QTest::keyClick(&w, Qt::Key_F1);
        QCoreApplication::processEvents();
        auto *help = qobject_cast<FWHelpView *>(QApplication::activeWindow());
        QVERIFY(help);
        QCOMPARE(help->shownId(), u"payapps"_s);
        help->close();
    }

    // The About window names the licence, the version and every library.
    void aboutWindow()
    {
        AboutWindow about;
        QString all;
        for (QLabel *l : about.findChildren<QLabel *>())
            all += l->text() + u' ';
        QVERIFY(all.contains(u"GPL-3.0-or-later"_s));
        QVERIFY(all.contains(QStringLiteral(TRESTLE_VERSION)));
        for (const char *lib : {"Qt", "SQLite", "libzip", "poppler-qt6", "@mdi/svg"})
            QVERIFY2(all.contains(QString::fromLatin1(lib)), lib);
    }
};

TRESTLE_TEST(HelpTests);
#include "helptests.moc"
