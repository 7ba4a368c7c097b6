#include "screens.h"

#include "about.h"
#include "accessible.h"
#include "documentpanel.h"
#include "hubscreens.h"
#include "moneygrid.h"
#include "plansscreen.h"
#include "schedulescreen.h"
#include "tlhelp.h"

#include "figurelink.h"

#include "shell/menus.h"
#include "shell/recordscreen.h"

namespace Screens {

namespace {
// The guide, the About window and the document editor, which the shell reaches through its hooks.
void registerHelpAndDocuments()
{
    TLHelp::install();
    FigureLink::installForTotals();
    Menus::aboutHook() = [](QWidget *parent) { AboutWindow::showOver(parent); };
    DocumentPanel::registerExtras();
}
} // namespace

void registerAll()
{
    ScreenAccess::install();
    RecordScreen::registerGeneric();
    registerMoneyScreens();
    registerHelpAndDocuments();
    registerHubScreens();
    ScheduleScreen::registerScreen();
    PlansScreen::registerScreen();
}

} // namespace Screens
