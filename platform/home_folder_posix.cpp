#include "platform/home_folder.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace tavenhall {

bool homeFolder(std::string& home) noexcept {
  if (const char* variable = std::getenv("HOME"); variable != nullptr && *variable != '\0') {
    home = variable;
    return true;
  }
  std::array<char, 16384> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr ||
      found->pw_dir == nullptr || *found->pw_dir == '\0') {
    return false;
  }
  home = found->pw_dir;
  return true;
}

}  // namespace tavenhall
