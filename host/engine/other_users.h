#pragma once

#include <filesystem>
#include <string>

// Whether other users can change what the page installs: it trusts the files beside the package.
namespace tavenhall {

// Returns why other users can change an installation from this package, in one line without a newline, or an
// empty string. Examines every folder through which the package's path leads, also by links, and the attributes
// file. Others can change what they can write by its mode or its POSIX ACL, a folder with the sticky bit too,
// since they can add to it; and an attributes file that belongs to another user than this one and root. Accepts
// read-only file systems, and write permission of the owner's private group. Trusts the owner of each folder.
[[nodiscard]] std::string changeableByOthers(const std::filesystem::path& package);

// The same for a folder beside the package from which the page copies; nothing if there is none. With its
// contents, which takes an lstat(2) for each entry, where a shell reads the names in it.
enum class Depth { folderAlone, withContents };
[[nodiscard]] std::string sourceChangeableByOthers(const std::filesystem::path& folder, Depth depth);

// The same for a file in /tmp that the page reads: whether its owner is another user than this one and root.
[[nodiscard]] std::string writtenByOthers(const std::filesystem::path& file);

}  // namespace tavenhall
