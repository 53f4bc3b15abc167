#include "pane/copy_streams.h"

#include "platform/file_hints.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tavenhall {

namespace {

constexpr std::size_t kBufferSize = 12 * kChunkSize;  // whole chunks: no chunk is cut short by a buffer's end
constexpr mode_t kFileMode = 0666;                    // before the umask

std::array<char, kBufferSize> sourceBuffer;
std::array<char, kBufferSize> destinationBuffer;

// As read and write, whatever signals arrive.
template <typename Call>
ssize_t uninterrupted(Call call) {
  ssize_t result = 0;
  do {
    result = call();
  } while (result < 0 && errno == EINTR);
  return result;
}

}  // namespace

// Without waiting: opening a pipe would otherwise wait for somebody to write to it.
CopySource::CopySource(const char* path) noexcept : descriptor_(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
  struct stat found {};
  if (descriptor_ < 0) {
    return;
  }
  if (fstat(descriptor_, &found) != 0 || !(S_ISREG(found.st_mode) || S_ISDIR(found.st_mode))) {
    close();
    return;
  }
  size_ = found.st_size;
  hintSequentialRead(descriptor_, size_);
}

std::span<const char> CopySource::next() noexcept {
  if (unread_.empty() && !isAtEnd_) {
    fill();
  }
  const auto chunk = unread_.first(std::min(unread_.size(), kChunkSize));
  unread_ = unread_.subspan(chunk.size());
  return chunk;
}

void CopySource::fill() noexcept {
  std::size_t filled = 0;
  while (filled < sourceBuffer.size()) {
    const ssize_t count = uninterrupted(
        [&] { return read(descriptor_, sourceBuffer.data() + filled, sourceBuffer.size() - filled); });
    isAtEnd_ = count == 0;
    if (count <= 0) {
      break;
    }
    filled += static_cast<std::size_t>(count);
  }
  unread_ = std::span(sourceBuffer).first(filled);
}

void CopySource::close() noexcept {
  if (isOpen()) {
    ::close(std::exchange(descriptor_, -1));
  }
}

CopyDestination::CopyDestination(const char* path, std::int64_t expectedSize) noexcept
    : descriptor_(open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, kFileMode)) {
  if (isOpen()) {
    hintSequentialWrite(descriptor_, expectedSize);
  }
}

void CopyDestination::write(std::span<const char> bytes) noexcept {
  if (held_ + bytes.size() > destinationBuffer.size()) {
    flush();
  }
  std::memcpy(destinationBuffer.data() + held_, bytes.data(), bytes.size());
  held_ += bytes.size();
}

void CopyDestination::flush() noexcept {
  std::span<const char> unwritten = std::span(destinationBuffer).first(std::exchange(held_, 0));
  while (!unwritten.empty()) {
    const ssize_t count =
        uninterrupted([&] { return ::write(descriptor_, unwritten.data(), unwritten.size()); });
    if (count <= 0) {
      return;
    }
    unwritten = unwritten.subspan(static_cast<std::size_t>(count));
  }
}

void CopyDestination::close() noexcept {
  if (isOpen()) {
    flush();
    ::close(std::exchange(descriptor_, -1));
  }
}

}  // namespace tavenhall
