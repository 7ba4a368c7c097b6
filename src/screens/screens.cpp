#include "screens.h"

#include "shell/recordscreen.h"

namespace Screens {

void registerAll()
{
    RecordScreen::registerGeneric();
}

} // namespace Screens
