#pragma once

#include <cstdio>

namespace tavenhall {

// Opens a file for reading with O_NONBLOCK: if somebody has put a pipe in its place, an ordinary open would
// block until somebody writes to it. Such a pipe reads as empty. Returns null, with errno set, if the file
// cannot be opened. The caller closes it. Any thread.
[[nodiscard]] std::FILE* openToRead(const char* path) noexcept;

}  // namespace tavenhall
