#include "pane/copy_streams.h"

#include "platform/copy_hints.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace tavenhall {

namespace {

constexpr mode_t kFileMode = 0666;  // before the umask

std::array<char, 12 * kChunkSize> buffer;

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

}  // namespace

// Without waiting: opening a pipe would otherwise wait for somebody to write to it.
CopySource::CopySource(const char* path) noexcept : descriptor_(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
  if (!isOpen()) {
    return;
  }
  if (fstat(descriptor_, &found_) != 0 || !(S_ISREG(found_.st_mode) || S_ISDIR(found_.st_mode))) {
    close();
    return;
  }
  hintSequentialRead(descriptor_, found_.st_size);
}

std::span<const char> CopySource::next() noexcept {
  std::size_t filled = 0;
  while (filled < buffer.size() && !isAtEnd_) {
    const ssize_t count = read(descriptor_, buffer.data() + filled, buffer.size() - filled);
    if (count < 0) {
      break;
    }
    isAtEnd_ = count == 0;
    filled += static_cast<std::size_t>(count);
  }
  return std::span(buffer).first(filled);
}

void CopySource::close() noexcept {
  if (isOpen()) {
    ::close(std::exchange(descriptor_, -1));
  }
}

// Without O_TRUNC, which would empty the source where the user's folder leads back to it.
CopyDestination::CopyDestination(const char* path, const CopySource& source) noexcept
    : descriptor_(open(path, O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, kFileMode)) {
  if (isOpen() && !makeReadyFor(source)) {
    const int error = errno;
    close();
    errno = error;
  }
}

// Empties the file, unless it is the source: the same bytes are then written over themselves.
bool CopyDestination::makeReadyFor(const CopySource& source) noexcept {
  struct stat found {};
  const bool isKnown = fstat(descriptor_, &found) == 0;
  if (isKnown && source.isOpen() && isSameFile(found, source.found_)) {
    return true;
  }
  const bool isEmpty = isKnown && found.st_size == 0;
  if (!isEmpty && ftruncate(descriptor_, 0) != 0) {
    return false;
  }
  hintSequentialWrite(descriptor_, source.found_.st_size);
  return true;
}

std::size_t CopyDestination::write(std::span<const char> bytes) noexcept {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t count = ::write(descriptor_, bytes.data() + written, bytes.size() - written);
    if (count <= 0) {
      break;
    }
    written += static_cast<std::size_t>(count);
  }
  return written;
}

void CopyDestination::close() noexcept {
  if (isOpen()) {
    ::close(std::exchange(descriptor_, -1));
  }
}

}  // namespace tavenhall
