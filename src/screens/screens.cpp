#include "screens.h"

#include "moneygrid.h"
#include "shell/recordscreen.h"

namespace Screens {

void registerAll()
{
    RecordScreen::registerGeneric();
    registerMoneyScreens();
}

} // namespace Screens
