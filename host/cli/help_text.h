#pragma once

#include <CLI/App.hpp>
#include <string>

namespace tavenhall {

// The help of the program or of one of its commands, for a screen of 80 columns: what it does, its options,
// and what its exit status means.
[[nodiscard]] std::string helpText(const CLI::App& command);

}  // namespace tavenhall
