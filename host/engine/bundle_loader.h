#pragma once

#include "platform/installer_pane.h"

#include <filesystem>

namespace tavenhall {

// Loads the program of a plug-in bundle for the life of the process and returns its page factory. Throws
// UsageError.
[[nodiscard]] PageFactory loadBundle(const std::filesystem::path& bundle);

}  // namespace tavenhall
