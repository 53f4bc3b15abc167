#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/types.h>

// What another process of the same user holds: its memory, its descriptors, its folders. Linux. What cannot be
// read any more, since the process has ended, is false or empty.
namespace tavenhall::test {

[[nodiscard]] bool readMemory(pid_t process, std::uint64_t address, void* bytes, std::size_t count);
bool writeMemory(pid_t process, std::uint64_t address, const void* bytes, std::size_t count);

// The text at an address, up to its end.
[[nodiscard]] std::string readText(pid_t process, std::uint64_t address);

// Where an open descriptor leads.
[[nodiscard]] std::string pathOfDescriptor(pid_t process, int descriptor);

// What a path means to the process, seen from the folder that a descriptor is, or from its own for AT_FDCWD. An
// empty path means the descriptor's own.
[[nodiscard]] std::string pathBelow(pid_t process, int folder, const std::string& path);

// The file that the process runs.
[[nodiscard]] std::string programOf(pid_t process);

[[nodiscard]] pid_t processOfThread(pid_t thread);

}  // namespace tavenhall::test
