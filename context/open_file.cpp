#include "context/open_file.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace tavenhall {

std::FILE* openToRead(const char* path) noexcept {
  const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  std::FILE* file = descriptor < 0 ? nullptr : fdopen(descriptor, "r");
  if (descriptor >= 0 && file == nullptr) {
    const int error = errno;
    close(descriptor);
    errno = error;
  }
  return file;
}

}  // namespace tavenhall
