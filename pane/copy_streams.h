#pragma once

#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <span>
#include <sys/stat.h>

// The two files of a copy. The bytes go through one buffer of the process, so only one source may be open at a
// time; only one copy engine runs at a time.
namespace tavenhall {

inline constexpr std::size_t kChunkSize = 10240;  // bytes

// A file, as its name in an open folder where there is one: the system needs longer to look up a whole path
// than to open the file.
struct FilePlace {
  const char* path;
  int folder = AT_FDCWD;  // a descriptor, not owned
  const char* name = path;
};

// A folder that stays open while its files are written, unless too many descriptors are in use.
class OpenFolder {
 public:
  explicit OpenFolder(const char* path) noexcept;
  OpenFolder(const OpenFolder&) = delete;
  OpenFolder& operator=(const OpenFolder&) = delete;
  ~OpenFolder();

  // Returns the file `name` in it; by its path alone if the folder could not be opened.
  [[nodiscard]] FilePlace place(const char* path, const char* name) const noexcept {
    return descriptor_ >= 0 ? FilePlace{path, descriptor_, name} : FilePlace{path};
  }

 private:
  int descriptor_;
};

class CopySource {
 public:
  // Opens the file. Refuses a pipe or a device, which could block the copy. A folder opens and reads as empty.
  explicit CopySource(const FilePlace& file) noexcept;
  CopySource(const CopySource&) = delete;
  CopySource& operator=(const CopySource&) = delete;
  ~CopySource() { close(); }

  [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }

  // Returns the next whole chunks, as many as the buffer holds; fewer bytes before the end or an error, and
  // none after it. Valid until the next call.
  [[nodiscard]] std::span<const char> next() noexcept;

  void close() noexcept;

 private:
  friend class CopyDestination;

  int descriptor_;
  struct stat found_ {};  // when it was opened
  std::int64_t bytesRead_ = 0;
  bool isAtEnd_ = false;
};

class CopyDestination {
 public:
  // Creates or empties the file; the source need not be open. If the file is the source itself, reached by
  // another path, it keeps its bytes. If the file is not open afterwards, errno has the reason.
  CopyDestination(const FilePlace& file, const CopySource& source) noexcept;
  CopyDestination(const CopyDestination&) = delete;
  CopyDestination& operator=(const CopyDestination&) = delete;
  ~CopyDestination() { close(); }

  [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }

  // Returns the number of bytes written; fewer than given after an error.
  std::size_t write(std::span<const char> bytes) noexcept;

  void close() noexcept;

 private:
  [[nodiscard]] bool makeReadyFor(const CopySource& source) noexcept;

  int descriptor_;
};

}  // namespace tavenhall
