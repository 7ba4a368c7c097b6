#pragma once

// The screens layer: the special screens of the module table and the
// panels that the shell's record editor borrows from it.
namespace Screens {
// Registers every screen with the module area (the generic record screen
// included) and fills the shell's hooks. Called once before the window opens.
void registerAll();
} // namespace Screens
