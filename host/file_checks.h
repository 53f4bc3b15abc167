#pragma once

#include <filesystem>

// Looks at what was given before anything is begun with it. Both throw UsageError.
namespace tavenhall {

// Nobody waits for a pipe, a socket or a device where a file is to be read. A folder, and nothing at all, are
// the caller's to deal with.
void requireNoSpecialFile(const std::filesystem::path& path);

// A file can be written there: the folder is there, no folder lies in the file's place, and permissions let
// us. Makes nothing; a disk may still be full when the time comes.
void requireWritable(const std::filesystem::path& path);

}  // namespace tavenhall
