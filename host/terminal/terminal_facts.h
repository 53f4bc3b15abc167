#pragma once

#include <string>

namespace tavenhall {

// Can a full screen be shown here? Standard input and output must be terminals, and TERM must name one that
// can place its cursor.
[[nodiscard]] bool terminalIsUsable();

// Whether the terminal's font has the usual symbols. The Linux console has few.
[[nodiscard]] bool terminalHasSigns();

// The escape sequence that leaves full-screen mode. Call it after curses has started.
[[nodiscard]] std::string leaveScreenSequence();

}  // namespace tavenhall
