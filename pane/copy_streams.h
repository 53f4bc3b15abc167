#pragma once

#include <cstdint>
#include <cstdio>

// The two streams of a file copy. They read and write in larger pieces than the copy's chunks, through two
// buffers of the process's, so that only one pair may be open at a time; the copy engine never runs twice
// at once. The caller closes them.
namespace tavenhall {

// Opens a file for reading, and stores its size in bytes. Null, with errno set and the size untouched, when it
// cannot be opened, and for a pipe or a device, which could keep the copy waiting for ever. A folder opens,
// and gives nothing to read.
[[nodiscard]] std::FILE* openCopySource(const char* path, std::int64_t& size) noexcept;

// Opens a file for writing, created or emptied; `size` bytes are expected, as a hint. Null, with errno set,
// when it cannot be opened.
[[nodiscard]] std::FILE* openCopyDestination(const char* path, std::int64_t size) noexcept;

}  // namespace tavenhall
