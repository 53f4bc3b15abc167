#pragma once

#include <string>

namespace CLI {
class App;
}

namespace tavenhall {

enum class Frontend { json, plain, quiet, terminal };

// Adds the option --ui, which sets `name`.
void addFrontendOption(CLI::App& command, std::string& name);

// The frontend of that name. For an empty one: the terminal page where it can be shown, else plain lines.
[[nodiscard]] Frontend frontendFor(const std::string& name);

}  // namespace tavenhall
