#pragma once

#include <filesystem>
#include <string>

// Whether other users can change what the page installs: it trusts the files beside the package.
namespace tavenhall {

// Returns why other users can change an installation from this package, in one line without a newline, or an
// empty string. Checks the write permissions of the package's folder, of all folders above it and of the
// attributes file. Accepts world-writable folders with the sticky bit, read-only file systems, and write
// permission of the owner's private group. Trusts the owner of each folder.
[[nodiscard]] std::string changeableByOthers(const std::filesystem::path& package);

// The same for a file in /tmp that the page reads: whether its owner is another user than this one and root.
[[nodiscard]] std::string writtenByOthers(const std::filesystem::path& file);

}  // namespace tavenhall
