#include "screens.h"

#include "plansscreen.h"
#include "schedulescreen.h"

#include "shell/recordscreen.h"

namespace Screens {

void registerAll()
{
    RecordScreen::registerGeneric();
    ScheduleScreen::registerScreen();
    PlansScreen::registerScreen();
}

} // namespace Screens
