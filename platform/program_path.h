#pragma once

#include <filesystem>

namespace tavenhall {

// The file that this process runs, absolute and without links; empty where the system does not say.
[[nodiscard]] std::filesystem::path programPath();

}  // namespace tavenhall
