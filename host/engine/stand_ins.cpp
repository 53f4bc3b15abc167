#include "host/engine/stand_ins.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>
#include <unistd.h>

namespace tavenhall {

void addStandInsToPath(const std::filesystem::path& standIns) {
  if (standIns.empty()) {
    return;
  }
  const char* found = std::getenv("PATH");
  std::string path = found != nullptr ? found : "/usr/local/bin:/usr/bin:/bin";
  path += ":" + standIns.string();
  std::error_code error;
  if (const std::filesystem::path first = standIns / "first"; std::filesystem::is_directory(first, error)) {
    path.insert(0, first.string() + ":");
  }
  setenv("PATH", path.c_str(), 1);
}

EjectNote::EjectNote() {
  std::FILE* file = std::tmpfile();
  if (file == nullptr) {
    return;
  }
  descriptor_ = dup(fileno(file));  // without close-on-exec, since the command reads it
  std::fclose(file);
  if (descriptor_ >= 0) {
    setenv("TAVINSTALL_DISC_FD", std::to_string(descriptor_).c_str(), 1);
  }
}

void EjectNote::write(const char* folder) noexcept {
  if (descriptor_ < 0 || ftruncate(descriptor_, 0) != 0) {
    return;
  }
  static_cast<void>(!pwrite(descriptor_, folder, std::strlen(folder), 0));  // without it nothing is ejected
}

}  // namespace tavenhall
