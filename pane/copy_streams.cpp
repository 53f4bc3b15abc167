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

}  // namespace

std::FILE* openCopySource(const char* path, std::int64_t& size) noexcept {
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
  size = found.st_size;
  hintSequentialRead(descriptor, size);
  return streamOn(descriptor, "rb", sourceBuffer);
}

std::FILE* openCopyDestination(const char* path, std::int64_t size) noexcept {
  const int descriptor = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, kFileMode);
  if (descriptor < 0) {
    return nullptr;
  }
  hintSequentialWrite(descriptor, size);
  return streamOn(descriptor, "w", destinationBuffer);
}

}  // namespace tavenhall
