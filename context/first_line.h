#pragma once

#include "context/bounded_text.h"

namespace tavenhall {

inline constexpr std::size_t kFirstLineSize = 1024;  // bytes, terminator included

// Reads the first line of a file that the package's pre-install step wrote, as a C string: it ends at the
// newline, at a NUL byte or at the limit. Required: its last character is dropped, whatever it is; in a
// correct file it is the newline. Returns false if the file cannot be opened. Any thread.
[[nodiscard]] bool readFirstLine(const char* path, BoundedText<kFirstLineSize>& line) noexcept;

}  // namespace tavenhall
