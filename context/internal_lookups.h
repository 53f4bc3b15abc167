#pragma once

#include "context/bounded_text.h"

#include <cstddef>
#include <cstdint>

// The lookups that the C layer keeps to itself and to the page: they are not exported.
namespace tavenhall {

inline constexpr std::size_t kPackageFolderSize = 1024;

// The result of this thread's latest getFolderContainingPKGfile call, also of the calls inside the
// attributes-file lookups; copy it at once. One buffer a thread, since the title is looked up on the main
// thread while the install thread looks up its own values.
extern constinit thread_local BoundedText<kPackageFolderSize> sOutputPathWithCallersSubfolder;

// Puts the folder that holds the installer package into sOutputPathWithCallersSubfolder, followed by '/'
// and `subfolder` unless that is null. Empty when the package's pre-install step left no path. The file it
// left, /tmp/TavInstallLoc, is read once a process. A result that does not fit ends the process. Any thread.
void getFolderContainingPKGfile(const char* subfolder) noexcept;

// Looks `key` up in the attributes file, ignoring case. Returns 1 if a line has it, else 0.
//
// Required: every line searched that has a value leaves it in `value`, so after a 0 the buffer holds some
// other line's value, or what the caller had there when no line had one. Start with an empty buffer.
//
// `size` is the buffer's size in bytes, kAttributesValueSize for any value; a longer one is cut at a
// character's edge. Any thread.
[[nodiscard]] int getStringFromAttributesFile(const char* key, char* value, std::size_t size) noexcept;

// The number for `key`, compared exactly; 0 when the file or the key is missing.
//
// Required: where the key's own value is not a number, the result is the number of the last earlier line
// that had one. Any thread.
[[nodiscard]] std::int64_t getLongLongFromAttributesFile(const char* key) noexcept;

}  // namespace tavenhall
