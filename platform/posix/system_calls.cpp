#include "platform/system.h"

#include "platform/host_system.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <sys/statvfs.h>
#include <system_error>
#include <thread>
#include <unistd.h>

// What is the same on every POSIX system, with AppKit and without.
namespace tavenhall {

bool statFileSystem(const char* path) noexcept {
  struct statvfs found {};
  return statvfs(path, &found) == 0;
}

// Not sleep(): the remaining time that it returns after a signal is rounded and may be too short.
void sleepSeconds(unsigned seconds) noexcept { std::this_thread::sleep_for(std::chrono::seconds(seconds)); }

int runShellCommand(const char* command) noexcept { return std::system(command); }

void errorText(int error, char* text, std::size_t room) noexcept {
  const std::string message = std::generic_category().message(error);
  const std::size_t length = std::min(message.size(), room - 1);
  std::memcpy(text, message.data(), length);
  text[length] = '\0';
}

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
