#pragma once

#include <string>

namespace tavenhall {

// Can a full screen be shown here? Standard input and output must be terminals, and TERM must name one that
// can place its cursor.
[[nodiscard]] bool terminalIsUsable();

// Are the signs of a normal terminal's font to be had? The console of a machine without windows has few.
[[nodiscard]] bool terminalHasSigns();

// What takes the terminal out of full-screen mode. After curses has started.
[[nodiscard]] std::string leaveScreenSequence();

}  // namespace tavenhall
