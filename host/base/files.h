#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

// Questions about files and disks. Any thread.
namespace tavenhall {

// Throws UsageError if `path` is a pipe, a socket or a device, since opening one may block. A folder, and
// nothing at all, are left to the caller.
void requireNoSpecialFile(const std::filesystem::path& path);

// Throws UsageError unless a file can be written at `path`: its folder exists, `path` is not a folder, and
// permissions allow it. Creates nothing; the disk may still be full later.
void requireWritable(const std::filesystem::path& path);

// The bytes that this user can still write on the disk that holds `path`, or would hold it: that of the nearest
// existing folder above it. None if unknown.
[[nodiscard]] std::optional<std::int64_t> freeBytesAt(const std::string& path);

}  // namespace tavenhall
