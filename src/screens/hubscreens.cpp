#include "hubscreens.h"

#include "hubscreen.h"
#include "qbexportscreen.h"
#include "reportsscreen.h"

using namespace Qt::StringLiterals;

namespace Screens {

void registerHubScreens()
{
    ModuleArea::registerScreen(u"hub"_s, [](const ScreenContext &ctx) { return new HubScreen(ctx); });
    ModuleArea::registerScreen(u"reports"_s, [](const ScreenContext &ctx) { return new ReportsScreen(ctx); });
    ModuleArea::registerScreen(u"qb"_s, [](const ScreenContext &ctx) { return new QBExportScreen(ctx); });
}

} // namespace Screens
