#pragma once

namespace tavenhall {

// Opens a file without a name, for reading and writing, that is gone when it is closed; in memory where the
// system has such files. Commands do not inherit it. -1 when there can be none. Any thread.
[[nodiscard]] int openMemoryFile() noexcept;

}  // namespace tavenhall
