#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

// What a process holds at a moment, from /proc: for the installs that run for hours.
namespace tavenhall::test {

struct Figures {
  double seconds = 0;            // since the install began
  std::int64_t resident = 0;     // kB
  std::int64_t ownMemory = 0;    // kB, of the resident: what is not a file's
  std::int64_t peakMemory = 0;   // kB, the most that was ever resident
  std::int64_t descriptors = 0;  // open ones
  std::int64_t threads = 0;
};

// Of the process of that number; all 0 when it has gone. What this call itself opens does not count.
[[nodiscard]] Figures figuresOf(pid_t process);

// As a table with a row for each, at most `rows` of them, evenly chosen; the last is among them.
[[nodiscard]] std::string tableOf(const std::vector<Figures>& figures, std::size_t rows);

// Do the sanitizers keep books in this build? They hold on to freed memory, so its figures say nothing then.
#if defined(TAVINSTALL_SANITIZED)
inline constexpr bool kMemoryTells = false;
#else
inline constexpr bool kMemoryTells = true;
#endif

}  // namespace tavenhall::test
