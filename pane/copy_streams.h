#pragma once

#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <span>
#include <sys/stat.h>

// The two files of a copy. The bytes go through one buffer of the process's, so that only one source may be
// open at a time; the copy engine never runs twice at once.
namespace tavenhall {

inline constexpr std::size_t kChunkSize = 10240;  // bytes

// A file. The system is given its name in a folder that is open, where there is one: looking up a whole path
// takes it longer than opening the file.
struct FilePlace {
  const char* path;
  int folder = AT_FDCWD;  // a descriptor, not owned
  const char* name = path;
};

// A folder that is open while its files are written, unless too many descriptors are in use.
class OpenFolder {
 public:
  explicit OpenFolder(const char* path) noexcept;
  OpenFolder(const OpenFolder&) = delete;
  OpenFolder& operator=(const OpenFolder&) = delete;
  ~OpenFolder();

  // Its file `name`; by its path alone where the folder could not be opened.
  [[nodiscard]] FilePlace place(const char* path, const char* name) const noexcept {
    return descriptor_ >= 0 ? FilePlace{path, descriptor_, name} : FilePlace{path};
  }

 private:
  int descriptor_;
};

class CopySource {
 public:
  // Opens the file. Not a pipe or a device, which could keep the copy waiting for ever. A folder opens, and
  // gives nothing to read.
  explicit CopySource(const FilePlace& file) noexcept;
  CopySource(const CopySource&) = delete;
  CopySource& operator=(const CopySource&) = delete;
  ~CopySource() { close(); }

  [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }

  // The next whole chunks, as many as the buffer holds; fewer bytes before the end or an error, none there.
  // Valid until the next call.
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
  // Opens the file, created or emptied, for what the source holds; the source need not be open. One that is
  // the source, reached by another way, keeps its bytes. errno says why it is not open.
  CopyDestination(const FilePlace& file, const CopySource& source) noexcept;
  CopyDestination(const CopyDestination&) = delete;
  CopyDestination& operator=(const CopyDestination&) = delete;
  ~CopyDestination() { close(); }

  [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }

  // Returns the number of bytes that were written; fewer than given after an error.
  std::size_t write(std::span<const char> bytes) noexcept;

  void close() noexcept;

 private:
  [[nodiscard]] bool makeReadyFor(const CopySource& source) noexcept;

  int descriptor_;
};

}  // namespace tavenhall
