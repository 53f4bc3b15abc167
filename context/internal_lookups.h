#pragma once

#include "context/bounded_text.h"

#include <cstddef>
#include <cstdint>

// The lookups for the C layer and the page; they are not exported.
namespace tavenhall {

inline constexpr std::size_t kPackageFolderSize = 1024;

// The result of this thread's latest getFolderContainingPKGfile call, including the calls inside the
// attributes-file lookups; copy it at once. There is one buffer for each thread, since the main thread looks up
// the title while the install thread looks up its own values.
extern constinit thread_local BoundedText<kPackageFolderSize> sOutputPathWithCallersSubfolder;

// Stores the folder that holds the installer package in sOutputPathWithCallersSubfolder, followed by '/'
// and `subfolder` unless that is null. Empty if the package's pre-install step left no path. Its file,
// /tmp/TavInstallLoc, is read once for each process. Aborts on overflow. Any thread.
void getFolderContainingPKGfile(const char* subfolder) noexcept;

// Looks up `key` in the attributes file, ignoring case. Returns 1 if a line has it, otherwise 0.
//
// Required: every line searched that has a value stores it in `value`. After a 0 the buffer therefore holds
// another line's value, or what the caller had there if no line had one. Start with an empty buffer.
//
// `size` is the buffer's size in bytes, kAttributesValueSize for any value; a longer one is truncated at
// a character boundary. Any thread.
[[nodiscard]] int getStringFromAttributesFile(const char* key, char* value, std::size_t size) noexcept;

// Returns the number for `key`, compared exactly; 0 if the file or the key is missing.
//
// Required: if the key's own value is not a number, the result is the number in the last earlier line that has
// one. Any thread.
[[nodiscard]] std::int64_t getLongLongFromAttributesFile(const char* key) noexcept;

}  // namespace tavenhall
