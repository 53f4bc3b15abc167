#pragma once

#include <cstdint>

// What a system can be told about a file that is about to be copied. Hints only: every failure is ignored,
// and no byte of any file depends on them. Any thread.
namespace tavenhall {

// The file, of that many bytes, will be read once, from its start to its end.
void hintSequentialRead(int descriptor, std::int64_t size) noexcept;

// About that many bytes will be written to the file, which is empty.
void hintSequentialWrite(int descriptor, std::int64_t size) noexcept;

}  // namespace tavenhall
