#pragma once

#include <filesystem>
#include <string>

// The page believes what lies beside the package: where the data comes from, what it is called, what it says.
namespace tavenhall {

// What lets other users of the computer change an install from this package, in one line without its end; empty
// where nothing does. Looks at the folder that holds the package and all above it, up to the root, and at the
// attributes file: whether others may write there. A folder that everybody can write but nobody can take
// another's file from, as /tmp is, is none of them; nor is a file system that is mounted read-only; nor is what
// a group can write that is its owner's alone. Who owns a folder is taken to be trusted with it.
[[nodiscard]] std::string changeableByOthers(const std::filesystem::path& package);

// The same for a file in /tmp that is taken as it is: whether it is another user's, and not the
// administrator's.
[[nodiscard]] std::string writtenByOthers(const std::filesystem::path& file);

}  // namespace tavenhall
