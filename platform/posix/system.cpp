#include "platform/system.h"
#include "platform/host_system.h"
#include "platform/strings_file.h"
#include "platform/thread_start.h"

#include <cerrno>
#include <filesystem>
#include <memory>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavenhall {

namespace {

// Held by the starter and by the thread, since either may be done first.
using SharedStart = std::shared_ptr<ThreadStart>;

void* runPageThread(void* argument) {
  const std::unique_ptr<SharedStart> handed(static_cast<SharedStart*>(argument));
  (*handed)->run();
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

bool detachNewThread(InstallerHost& host, const char* name, void (*body)(void*), void* target) noexcept {
  const auto start = std::make_shared<ThreadStart>(host, name, body, target);
  auto handed = std::make_unique<SharedStart>(start);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_attr_setstacksize(&attributes, kPageThreadStack);
  pthread_t thread{};
  const bool isStarted = pthread_create(&thread, &attributes, runPageThread, handed.get()) == 0;
  pthread_attr_destroy(&attributes);
  if (!isStarted) {
    return false;
  }
  static_cast<void>(handed.release());  // the thread's now
  start->release();
  return true;
}

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

std::string localizedString(const char* key) noexcept { return bundleStrings().text(key); }

}  // namespace tavenhall
