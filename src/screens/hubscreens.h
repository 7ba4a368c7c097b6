#pragma once

namespace Screens {
// Registers the company-wide screens: the Command Hub, Reports and the QuickBooks export.
void registerHubScreens();
} // namespace Screens
