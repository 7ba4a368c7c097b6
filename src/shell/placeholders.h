#pragma once
#include "modulearea.h"

// The screens shown until a module's own screen is registered: its title,
// and an honest empty state (or the request for a project).
namespace Placeholders {
ShellScreen *make(const ScreenContext &ctx);
} // namespace Placeholders
