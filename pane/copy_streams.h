#pragma once

#include <cstdint>
#include <span>

// The two files of a copy. They read and write in larger pieces than the copy's chunks, through two buffers of
// the process's, so that only one pair may be open at a time; the copy engine never runs twice at once.
namespace tavenhall {

inline constexpr std::size_t kChunkSize = 10240;  // bytes

class CopySource {
 public:
  // Opens the file. Not a pipe or a device, which could keep the copy waiting for ever. A folder opens, and
  // gives nothing to read.
  explicit CopySource(const char* path) noexcept;
  CopySource(const CopySource&) = delete;
  CopySource& operator=(const CopySource&) = delete;
  ~CopySource() { close(); }

  [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
  [[nodiscard]] std::int64_t size() const noexcept {
    return size_;
  }  // bytes, when it was opened; 0 if it was not

  // The next kChunkSize bytes; fewer before the end or an error, none there. Valid until the next call.
  [[nodiscard]] std::span<const char> next() noexcept;

  void close() noexcept;

 private:
  void fill() noexcept;

  int descriptor_;
  std::int64_t size_ = 0;
  std::span<const char> unread_;
  bool isAtEnd_ = false;
};

class CopyDestination {
 public:
  // Opens the file, created or emptied; `expectedSize` bytes, as a hint. errno says why it is not open.
  CopyDestination(const char* path, std::int64_t expectedSize) noexcept;
  CopyDestination(const CopyDestination&) = delete;
  CopyDestination& operator=(const CopyDestination&) = delete;
  ~CopyDestination() { close(); }

  [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }

  // At most kChunkSize bytes. What cannot be written is missing in the file's size once it is closed.
  void write(std::span<const char> bytes) noexcept;

  void close() noexcept;

 private:
  void flush() noexcept;

  int descriptor_;
  std::size_t held_ = 0;  // bytes in the buffer
};

}  // namespace tavenhall
