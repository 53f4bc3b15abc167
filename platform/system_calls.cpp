#include "platform/system.h"

#include "platform/thread_processor.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <sys/statvfs.h>
#include <system_error>
#include <thread>

// What is the same on every system of the kind, with AppKit and without.
namespace tavenhall {

bool statFileSystem(const char* path) noexcept {
  struct statvfs found {};
  return statvfs(path, &found) == 0;
}

// Not by sleep: what it gives as left after a signal is rounded, and may be too little.
void sleepSeconds(unsigned seconds) noexcept { std::this_thread::sleep_for(std::chrono::seconds(seconds)); }

int runShellCommand(const char* command) noexcept {
  const AnyProcessor anyProcessor;  // a host may keep this thread on one, but not the command
  return std::system(command);
}

void errorText(int error, char* text, std::size_t room) noexcept {
  const std::string message = std::generic_category().message(error);
  const std::size_t length = std::min(message.size(), room - 1);
  std::memcpy(text, message.data(), length);
  text[length] = '\0';
}

}  // namespace tavenhall
