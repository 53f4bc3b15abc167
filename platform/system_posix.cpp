#include "platform/installer_host.h"
#include "platform/strings_file.h"
#include "platform/system.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <pthread.h>
#include <pwd.h>
#include <semaphore>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>
#include <unistd.h>

namespace tavenhall {

namespace {

// A walk down a folder tree recurses; the default of some systems' threads is too small for the deepest.
constexpr std::size_t kStackSize = 8388608;  // bytes

bool homeFolder(std::string& home) {
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

struct ThreadStart {
  ThreadStart(InstallerHost& itsHost, const char* itsName, void (*itsBody)(void*), void* itsTarget)
      : host(itsHost), name(itsName), body(itsBody), target(itsTarget) {}

  InstallerHost& host;
  const char* name;
  void (*body)(void*);
  void* target;
  std::binary_semaphore hostKnows{0};
};

// Held by the starter and by the thread, since either may be done first.
using SharedStart = std::shared_ptr<ThreadStart>;

void* runPageThread(void* argument) {
  const std::unique_ptr<SharedStart> handed(static_cast<SharedStart*>(argument));
  const SharedStart start = *handed;
  start->hostKnows.acquire();
  start->body(start->target);
  start->host.pageThreadEnded(start->name);
  return nullptr;
}

}  // namespace

bool firstUserSearchPath(SearchPath which, std::string& path) noexcept {
  std::string home;
  if (!homeFolder(home)) {
    return false;
  }
  path = home + (which == SearchPath::caches ? "/Library/Caches" : "/Library/Application Support");
  return true;
}

// Finder's aliases are a thing of macOS alone.
bool resolveAlias(const char* /*path*/, std::string& /*target*/) noexcept { return false; }

bool statFileSystem(const char* path) noexcept {
  struct statvfs found {};
  return statvfs(path, &found) == 0;
}

bool detachNewThread(InstallerHost& host, const char* name, void (*body)(void*), void* target) noexcept {
  const auto start = std::make_shared<ThreadStart>(host, name, body, target);
  auto handed = std::make_unique<SharedStart>(start);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_attr_setstacksize(&attributes, kStackSize);
  pthread_t thread{};
  const bool isStarted = pthread_create(&thread, &attributes, runPageThread, handed.get()) == 0;
  pthread_attr_destroy(&attributes);
  if (!isStarted) {
    return false;
  }
  static_cast<void>(handed.release());  // the thread's now
  host.pageThreadStarted(name);
  start->hostKnows.release();
  return true;
}

// Not by sleep: what it gives as left after a signal is rounded, and may be too little.
void sleepSeconds(unsigned seconds) noexcept { std::this_thread::sleep_for(std::chrono::seconds(seconds)); }

int runShellCommand(const char* command) noexcept { return std::system(command); }

RemovalError removeItem(const char* path) noexcept {
  std::error_code error;
  if (std::filesystem::remove_all(path, error) == 0 && !error) {
    error = std::make_error_code(std::errc::no_such_file_or_directory);
  }
  if (!error) {
    return {};
  }
  return {true, error.message(), ""};
}

void setPosixPermissions(const char* path, std::int16_t permissions) noexcept {
  struct stat found {};
  if (stat(path, &found) == 0) {
    chmod(path, static_cast<mode_t>(permissions));
  }
}

void errorText(int error, char* text, std::size_t room) noexcept {
  const std::string message = std::generic_category().message(error);
  const std::size_t length = std::min(message.size(), room - 1);
  std::memcpy(text, message.data(), length);
  text[length] = '\0';
}

std::string localizedString(const char* key) noexcept { return bundleStrings().text(key); }

}  // namespace tavenhall
