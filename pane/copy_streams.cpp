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

// Empties the file, unless it is the source: the same bytes are then written over themselves.
bool emptyUnlessSource(int descriptor, std::FILE* source) {
  struct stat found {};
  if (fstat(descriptor, &found) == 0) {
    struct stat read {};
    if (found.st_size == 0 ||
        (source != nullptr && fstat(fileno(source), &read) == 0 && isSameFile(found, read))) {
      return true;
    }
  }
  return ftruncate(descriptor, 0) == 0;
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
  hintSequentialRead(descriptor);
  return streamOn(descriptor, "rb", sourceBuffer);
}

std::FILE* openCopyDestination(const char* path, std::FILE* source) noexcept {
  // Without O_TRUNC, which would empty the source where the user's folder leads back to it.
  const int descriptor = open(path, O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, kFileMode);
  if (descriptor < 0) {
    return nullptr;
  }
  if (!emptyUnlessSource(descriptor, source)) {
    const int error = errno;
    close(descriptor);
    errno = error;
    return nullptr;
  }
  return streamOn(descriptor, "w", destinationBuffer);
}

}  // namespace tavenhall
