#pragma once

#include "host/engine/run_options.h"

#include <string>

namespace CLI {
class App;
}

namespace tavenhall {

// Gives a command the option --ui, which sets `name`.
void addFaceOption(CLI::App& command, std::string& name);

// The face of that name; where there is none, the terminal page where there is a terminal for it, else plain
// lines.
[[nodiscard]] Face faceFor(const std::string& name);

}  // namespace tavenhall
