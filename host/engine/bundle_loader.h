#pragma once

#include "platform/installer_pane.h"

#include <filesystem>
#include <string>

namespace tavenhall {

// The bundle beside this program, in a build folder or installed: that of `product`, or of the default
// product when it is empty. Throws UsageError, naming where it looked.
[[nodiscard]] std::filesystem::path findBundle(const std::string& product);

// Where the translations of the program's texts are, if there are any.
[[nodiscard]] std::filesystem::path findCatalogs();

// Where the tools lie that stand in for missing ones; empty when they are not there.
[[nodiscard]] std::filesystem::path findStandIns();

// Puts them on the PATH where only a missing tool is looked for. Before any thread.
void addStandInsToPath();

// Loads the bundle's program for good and gives its page factory. Throws UsageError.
[[nodiscard]] PageFactory loadBundle(const std::filesystem::path& bundle);

}  // namespace tavenhall
