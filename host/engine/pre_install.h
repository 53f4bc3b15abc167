#pragma once

#include "host/engine/run_options.h"

#include <filesystem>

// What the rest of an installer does before the page is shown.
namespace tavenhall {

// The package's full path, as the page is to read it. Throws UsageError where there is no such package, or
// its path cannot be told to the page.
[[nodiscard]] std::filesystem::path packageLocation(const std::filesystem::path& package);

// Writes the package-location file and, when asked, the choice file, each as a new file in the place of what
// was there, and makes sure that the home has Library/Caches and Library/Application Support. The central data
// folder is not made here: it comes with the package's own small files. Throws UsageError where something
// cannot be written, or another user's file cannot be replaced. Before any thread.
void runPreInstallStep(const RunOptions& options);

}  // namespace tavenhall
