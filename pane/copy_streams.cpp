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
constexpr int kLastFolderDescriptor =
    63;  // the rest is for listing deep trees; a process may have as few as 256
constexpr int kOpenForWriting = O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC;

std::array<char, 12 * kChunkSize> buffer;

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

}  // namespace

OpenFolder::OpenFolder(const char* path) noexcept
    : descriptor_(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (descriptor_ > kLastFolderDescriptor) {
    close(std::exchange(descriptor_, -1));
  }
}

OpenFolder::~OpenFolder() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

// With O_NONBLOCK, since opening a pipe would otherwise block until somebody writes to it.
CopySource::CopySource(const FilePlace& file) noexcept
    : descriptor_(openat(file.folder, file.name, O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
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
    // A short read that completes the size is the end; another read would only confirm it.
    const bool isShort = static_cast<std::size_t>(count) < buffer.size() - filled;
    filled += static_cast<std::size_t>(count);
    bytesRead_ += count;
    isAtEnd_ = count == 0 || (isShort && bytesRead_ == found_.st_size);
  }
  return std::span(buffer).first(filled);
}

void CopySource::close() noexcept {
  if (isOpen()) {
    ::close(std::exchange(descriptor_, -1));
  }
}

// First tries to create a new file, which needs no examination. Without O_TRUNC, which would empty the source
// if the destination leads back to it.
CopyDestination::CopyDestination(const FilePlace& file, const CopySource& source) noexcept
    : descriptor_(openat(file.folder, file.name, kOpenForWriting | O_EXCL, kFileMode)) {
  if (isOpen()) {
    hintSequentialWrite(descriptor_, source.found_.st_size);
    return;
  }
  if (errno == EEXIST) {
    descriptor_ = openat(file.folder, file.name, kOpenForWriting, kFileMode);
  }
  if (isOpen() && !makeReadyFor(source)) {
    const int error = errno;
    close();
    errno = error;
  }
}

// Empties the file, unless it is the source: then the same bytes are written over themselves.
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
