#pragma once

#include <exception>
#include <filesystem>
#include <stdexcept>

namespace tavenhall {

// An argument, or a file that it names, cannot be used. what() names it, states the problem and the remedy; the
// program shows it and exits with ExitStatus::badUsage.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Prints an error on standard error, as one line even where a path in it holds line breaks. Any thread.
void showError(const std::exception& error);

// Throws UsageError if `path` is a pipe, a socket or a device, since opening one may block. A folder, and
// nothing at all, are left to the caller.
void requireNoSpecialFile(const std::filesystem::path& path);

// Throws UsageError unless a file can be written at `path`: its folder exists, `path` is not a folder, and
// permissions allow it. Creates nothing; the disk may still be full later.
void requireWritable(const std::filesystem::path& path);

}  // namespace tavenhall
