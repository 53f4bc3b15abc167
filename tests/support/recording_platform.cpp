#include "tests/support/recording_platform.h"

#include "platform/installer_host.h"
#include "tests/support/page_threads.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <system_error>

namespace tavenhall {

namespace test {

namespace {

thread_local bool onPageThread = false;

struct Calls {
  std::mutex mutex;
  std::vector<std::string> lines;
};

// Never destroyed, since threads may outlive main.
Calls& recordedCalls() {
  static auto* const calls = new Calls;
  return *calls;
}

void record(std::string line) {
  if (!platform().keepsCalls) {
    return;
  }
  const std::lock_guard lock(recordedCalls().mutex);
  recordedCalls().lines.push_back(std::move(line));
}

void* runHandedBody(void* argument) {
  const std::unique_ptr<std::function<void()>> body(static_cast<std::function<void()>*>(argument));
  (*body)();
  return nullptr;
}

}  // namespace

PageThreads& PageThreads::instance() {
  static auto* const threads = new PageThreads;
  return *threads;
}

bool PageThreads::isPageThread() { return onPageThread; }

bool PageThreads::start(std::function<void()> body) {
  {
    const std::lock_guard lock(mutex_);
    ++alive_;
  }
  auto handed = std::make_unique<std::function<void()>>([this, body = std::move(body)]() mutable {
    onPageThread = true;
    body();
    body = nullptr;  // what it holds may go away with the test, once the thread counts as ended
    threadEnded();
  });
  pthread_t thread{};
  const bool isStarted = pthread_create(&thread, nullptr, runHandedBody, handed.get()) == 0;
  if (isStarted) {
    static_cast<void>(handed.release());  // the thread's now
    pthread_detach(thread);
  } else {
    threadEnded();
  }
  return isStarted;
}

std::size_t PageThreads::alive() const {
  const std::lock_guard lock(mutex_);
  return alive_;
}

std::uint64_t PageThreads::now() const {
  const std::lock_guard lock(mutex_);
  return now_;
}

void PageThreads::sleep(unsigned seconds) {
  std::unique_lock lock(mutex_);
  Sleeper sleeper{now_ + seconds, onPageThread};
  sleepers_.push_back(&sleeper);
  advanceWhenAllSleep();
  while (!sleeper.isAwake) {
    if (!onPageThread && !dispatches_.empty()) {
      serveOne(lock);
    } else {
      changed_.wait(lock);
    }
  }
}

void PageThreads::advanceWhenAllSleep() {
  const auto sleepingPageThreads =
      static_cast<std::size_t>(std::ranges::count_if(sleepers_, &Sleeper::isPageThread));
  if (sleepers_.empty() || sleepingPageThreads < alive_) {
    return;
  }
  const Sleeper* const first = *std::ranges::min_element(sleepers_, {}, &Sleeper::wakeUpTime);
  now_ = first->wakeUpTime;
  std::erase_if(sleepers_, [this](Sleeper* sleeper) {
    sleeper->isAwake = sleeper->wakeUpTime <= now_;
    return sleeper->isAwake;
  });
  changed_.notify_all();
}

void PageThreads::threadEnded() {
  const std::lock_guard lock(mutex_);
  --alive_;
  advanceWhenAllSleep();
  changed_.notify_all();
}

void PageThreads::dispatch(std::function<void()> block) {
  std::unique_lock lock(mutex_);
  Dispatch mine{std::move(block)};
  dispatches_.push_back(&mine);
  changed_.notify_all();
  changed_.wait(lock, [&mine] { return mine.hasRun; });
}

void PageThreads::serveOne(std::unique_lock<std::mutex>& lock) {
  Dispatch* const next = dispatches_.front();
  dispatches_.pop_front();
  lock.unlock();
  next->block();
  lock.lock();
  next->hasRun = true;
  changed_.notify_all();
}

bool PageThreads::waitForEnd(bool servesDispatches, std::chrono::seconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  std::unique_lock lock(mutex_);
  const auto hasWork = [this, servesDispatches] {
    return alive_ == 0 || (servesDispatches && !dispatches_.empty());
  };
  while (changed_.wait_until(lock, deadline, hasWork)) {
    if (alive_ == 0) {
      return true;
    }
    serveOne(lock);
  }
  return false;
}

std::vector<std::string> RecordingPlatform::calls() const {
  const std::lock_guard lock(recordedCalls().mutex);
  return recordedCalls().lines;
}

std::vector<std::string> RecordingPlatform::callsThatBegin(const std::string& start) const {
  std::vector<std::string> lines = calls();
  std::erase_if(lines, [&start](const std::string& line) { return !line.starts_with(start); });
  return lines;
}

std::uint64_t RecordingPlatform::now() const { return PageThreads::instance().now(); }

void RecordingPlatform::joinPageThreads() {
  EXPECT_TRUE(PageThreads::instance().waitForEnd(false, std::chrono::seconds(60)))
      << "a page thread has not ended within a minute";
}

RecordingPlatform& platform() {
  static auto* const instance = [] {
    auto* const made = new RecordingPlatform;
    made->strings = {{"OK_BUTTON", "OK"},
                     {"FindError", "The data folder was not found."},
                     {"InstallError", "The installation has not finished."},
                     {"FolderName", "TANVO"},
                     {"PluginName", "Tessaphon"}};
    return made;
  }();
  return *instance;
}

}  // namespace test

using test::PageThreads;
using test::platform;
using test::record;

bool firstUserSearchPath(SearchPath which, std::string& path) noexcept {
  const std::optional<std::string>& folder =
      which == SearchPath::caches ? platform().caches : platform().applicationSupport;
  if (folder) {
    path = *folder;
  }
  return folder.has_value();
}

bool resolveAlias(const char* path, std::string& target) noexcept {
  record(std::string("alias ") + path);
  const auto found = platform().aliases.find(path);
  if (found == platform().aliases.end()) {
    return false;
  }
  target = found->second;
  return true;
}

bool statFileSystem(const char* path) noexcept {
  record(std::string("statfs ") + path);
  if (platform().fileSystem) {
    return platform().fileSystem(path);
  }
  struct statvfs found {};
  return statvfs(path, &found) == 0;
}

void createPowerAssertion(const char* type, std::uint32_t level, const char* name,
                          std::uint32_t& identifier) noexcept {
  record(std::string("assertion ") + type + " " + std::to_string(level) + " " + name);
  std::uint32_t& next = platform().nextAssertion;
  identifier = next;
  next += next == 0 ? 0 : 1;
}

void releasePowerAssertion(std::uint32_t identifier) noexcept {
  record("assertion.release " + std::to_string(identifier));
}

bool detachNewThread(InstallerHost& host, const char* name, void (*body)(void*), void* target) noexcept {
  record(std::string("thread ") + name);
  if (!platform().canStartThreads) {
    return false;
  }
  // The host hears of the start before the body runs, and the starter tells it.
  auto hostKnows = std::make_shared<std::promise<void>>();
  const bool isStarted = PageThreads::instance().start([&host, name, body, target, hostKnows] {
    hostKnows->get_future().wait();
    body(target);
    host.pageThreadEnded(name);
  });
  if (isStarted) {
    host.pageThreadStarted(name);
    hostKnows->set_value();
  }
  return isStarted;
}

void sleepSeconds(unsigned seconds) noexcept {
  record("sleep " + std::to_string(seconds));
  if (platform().onSleep) {
    platform().onSleep(seconds);
  }
  PageThreads::instance().sleep(seconds);
}

int runShellCommand(const char* command) noexcept {
  record(std::string("system ") + command);
  return platform().shell ? platform().shell(command) : 0;
}

RemovalError removeItem(const char* path) noexcept {
  record(std::string("remove ") + path);
  if (platform().removal) {
    return platform().removal(path);
  }
  std::error_code error;
  if (std::filesystem::remove_all(path, error) == 0 && !error) {
    error = std::make_error_code(std::errc::no_such_file_or_directory);
  }
  return error ? RemovalError{true, error.message(), ""} : RemovalError{};
}

void setPosixPermissions(const char* path, std::int16_t permissions) noexcept {
  std::array<char, 8> octal{};
  std::snprintf(octal.data(), octal.size(), "%o", static_cast<unsigned>(permissions) & 07777U);
  record(std::string("permissions ") + octal.data() + " " + path);
  chmod(path, static_cast<mode_t>(permissions));
}

void errorText(int error, char* text, std::size_t room) noexcept {
  const std::string message = std::generic_category().message(error);
  const std::size_t length = std::min(message.size(), room - 1);
  std::memcpy(text, message.data(), length);
  text[length] = '\0';
}

std::string localizedString(const char* key) noexcept {
  const auto found = platform().strings.find(key);
  return found == platform().strings.end() ? key : found->second;
}

}  // namespace tavenhall
