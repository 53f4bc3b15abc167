#include "platform/memory_file.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

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

}  // namespace tavenhall
