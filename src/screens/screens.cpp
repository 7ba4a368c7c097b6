#include "screens.h"

#include "hubscreens.h"

#include "shell/recordscreen.h"

namespace Screens {

void registerAll()
{
    RecordScreen::registerGeneric();
    registerHubScreens();
}

} // namespace Screens
