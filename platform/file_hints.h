#pragma once

// What a system can be told about a file that is about to be copied. Hints only: every failure is ignored,
// and no byte of any file depends on them. Any thread.
namespace tavenhall {

// The file will be read once, from its start to its end.
void hintSequentialRead(int descriptor) noexcept;

}  // namespace tavenhall
