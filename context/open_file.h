#pragma once

#include <cstdio>

namespace tavenhall {

// Opens a file for reading without waiting: at a pipe that somebody has put in its place, an ordinary open
// would wait for ever for somebody to write. Such a pipe opens, and gives nothing to read. Null, with errno
// set, when it cannot be opened. The caller closes it. Any thread.
[[nodiscard]] std::FILE* openToRead(const char* path) noexcept;

}  // namespace tavenhall
