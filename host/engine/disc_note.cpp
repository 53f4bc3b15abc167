#include "host/engine/disc_note.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace tavenhall {

DiscNote::DiscNote() {
  std::FILE* file = std::tmpfile();
  if (file == nullptr) {
    return;
  }
  descriptor_ = dup(fileno(file));  // without close-on-exec: the command is to have it
  std::fclose(file);
  if (descriptor_ >= 0) {
    setenv("TAVINSTALL_DISC_FD", std::to_string(descriptor_).c_str(), 1);
  }
}

void DiscNote::write(const std::string& folder) noexcept {
  if (descriptor_ < 0 || ftruncate(descriptor_, 0) != 0) {
    return;
  }
  static_cast<void>(!pwrite(descriptor_, folder.data(), folder.size(), 0));  // without it nothing is ejected
}

}  // namespace tavenhall
