#pragma once

#include <filesystem>
#include <string>

// What the rest of an installer does before the page is shown. Call these before any thread is started.
namespace tavenhall {

// The package's full path, as the page reads it. Throws UsageError where there is no such package, or where its
// path is too long for the page or holds a line break.
[[nodiscard]] std::filesystem::path packageLocation(const std::filesystem::path& package);

// Writes kLocationFile and, unless `installType` is empty, kInstallTypeFile, each as a new file, and creates
// Library/Caches and Library/Application Support in the home. The central data folder is not created: it comes
// with the package's own small files. Throws UsageError where something cannot be written, or where another
// user's file cannot be replaced.
void runPreInstallStep(const std::filesystem::path& package, const std::string& installType);

}  // namespace tavenhall
