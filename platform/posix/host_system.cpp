#include "platform/host_system.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

// With POSIX alone, for systems that have nothing better.
namespace tavenhall {

int openMemoryFile() noexcept {
  std::FILE* file = std::tmpfile();
  if (file == nullptr) {
    return -1;
  }
  const int descriptor = fcntl(fileno(file), F_DUPFD_CLOEXEC, 0);
  std::fclose(file);
  return descriptor;
}

WakeUp::WakeUp() noexcept {
  int ends[2];
  if (pipe(ends) != 0) {
    std::perror("tavinstall: pipe");
    std::abort();
  }
  for (const int end : ends) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
  readEnd_ = ends[0];
  writeEnd_ = ends[1];
}

WakeUp::~WakeUp() {
  close(readEnd_);
  close(writeEnd_);
}

void WakeUp::signal() noexcept {
  const int error = errno;
  const char one = 1;
  static_cast<void>(!write(writeEnd_, &one, 1));  // fails only when the pipe is full: already readable
  errno = error;
}

void WakeUp::clear() noexcept {
  char some[64];
  while (read(readEnd_, some, sizeof some) > 0) {
  }
}

}  // namespace tavenhall
