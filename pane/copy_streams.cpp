#include "pane/copy_streams.h"

#include "platform/file_hints.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavenhall {

namespace {

constexpr std::size_t kStreamBufferSize = 131072;  // bytes
constexpr mode_t kFileMode = 0666;                 // before the umask

std::array<char, kStreamBufferSize> sourceBuffer;
std::array<char, kStreamBufferSize> destinationBuffer;

std::FILE* streamOn(int descriptor, const char* mode, std::array<char, kStreamBufferSize>& buffer) {
  std::FILE* stream = fdopen(descriptor, mode);
  if (stream == nullptr) {
    const int error = errno;
    close(descriptor);
    errno = error;
    return nullptr;
  }
  std::setvbuf(stream, buffer.data(), _IOFBF, buffer.size());
  return stream;
}

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Empties the file for the source's bytes, unless it is the source: the same bytes are then written over
// themselves.
bool makeReadyFor(std::FILE* source, int descriptor) {
  struct stat found {};
  struct stat read {};
  const bool hasSource = source != nullptr && fstat(fileno(source), &read) == 0;
  const bool isKnown = fstat(descriptor, &found) == 0;
  if (isKnown && hasSource && isSameFile(found, read)) {
    return true;
  }
  const bool isEmpty = isKnown && found.st_size == 0;
  if (!isEmpty && ftruncate(descriptor, 0) != 0) {
    return false;
  }
  if (hasSource) {
    hintSequentialWrite(descriptor, read.st_size);
  }
  return true;
}

}  // namespace

std::FILE* openCopySource(const char* path) noexcept {
  // Without waiting: opening a pipe would otherwise wait for somebody to write to it.
  const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) {
    return nullptr;
  }
  struct stat found {};
  if (fstat(descriptor, &found) != 0 || !(S_ISREG(found.st_mode) || S_ISDIR(found.st_mode))) {
    close(descriptor);
    errno = EINVAL;
    return nullptr;
  }
  hintSequentialRead(descriptor, found.st_size);
  return streamOn(descriptor, "rb", sourceBuffer);
}

std::FILE* openCopyDestination(const char* path, std::FILE* source) noexcept {
  // Without O_TRUNC, which would empty the source where the user's folder leads back to it.
  const int descriptor = open(path, O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, kFileMode);
  if (descriptor < 0) {
    return nullptr;
  }
  if (!makeReadyFor(source, descriptor)) {
    const int error = errno;
    close(descriptor);
    errno = error;
    return nullptr;
  }
  return streamOn(descriptor, "w", destinationBuffer);
}

}  // namespace tavenhall
