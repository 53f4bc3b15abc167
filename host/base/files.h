#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <string>

// Questions about files and disks, which any thread may ask, and lines from a descriptor.
namespace tavenhall {

// Throws UsageError if `path` is a pipe, a socket or a device, since opening one may block. A folder, and
// nothing at all, are left to the caller.
void requireNoSpecialFile(const std::filesystem::path& path);

// Throws UsageError unless a file can be written at `path`: its folder exists, `path` is not a folder, and
// permissions allow it. Creates nothing; the disk may still be full later.
void requireWritable(const std::filesystem::path& path);

// The bytes that this user can still write on the disk that holds `path`, or would hold it: that of the nearest
// existing folder above it. None if unknown.
[[nodiscard]] std::optional<std::int64_t> freeBytesAt(const std::string& path);

// Whether two files have the same bytes. False if one cannot be read or is not a regular file. Takes as long as
// reading both; calls `goOn` regularly, which may throw.
[[nodiscard]] bool haveSameContents(
    const std::filesystem::path& left, const std::filesystem::path& right,
    const std::function<void()>& goOn = [] {});

// Reads lines from a descriptor, which the caller owns. One thread.
class LineReader {
 public:
  // A line that is longer than `longest` bytes is truncated to one byte more.
  explicit LineReader(int descriptor, std::size_t longest = kLongestLine)
      : descriptor_(descriptor), longest_(longest) {}

  // False after the end of the input or an error.
  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

  // The descriptor to poll; -1 once it is closed.
  [[nodiscard]] int descriptor() const { return descriptor_; }

  // Reads once and passes each complete line, without its newline, to `take`; at the end of the input also an
  // unterminated last line.
  void read(const std::function<void(const std::string& line)>& take);

  static constexpr std::size_t kLongestLine = 1048576;  // bytes
  static constexpr std::size_t kAnyLength =
      std::numeric_limits<std::size_t>::max() - 1;  // from a trusted writer

 private:
  int descriptor_;
  std::size_t longest_;
  std::string partialLine_;
};

// Where the files are that belong to this program, in a build folder or installed: relative to the program
// itself, so that an installed tree can be moved. Any thread.

// The bundle of `product`, or of the default product when it is empty. Throws UsageError, naming where it
// looked.
[[nodiscard]] std::filesystem::path findBundle(const std::string& product);

// The folder of the translations, whether or not it exists.
[[nodiscard]] std::filesystem::path findCatalogs();

// The document of that name, "diagnostics.md"; empty when it is not there.
[[nodiscard]] std::filesystem::path findDocument(const std::string& name);

// The folder of the tools that stand in for missing ones; empty when it does not exist.
[[nodiscard]] std::filesystem::path findStandIns();

}  // namespace tavenhall
