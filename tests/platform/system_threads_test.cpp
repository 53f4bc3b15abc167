#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <string>
#include <sys/resource.h>
#include <sys/time.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "platform/installer_host.h"
#include "platform/system.h"
#include "tests/support/private_root.h"

namespace tavenhall::test {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;
using testing::ElementsAre;

// Hears of threads; has no page to show.
class ListeningHost final : public InstallerHost {
 public:
  void say(const std::string& line) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(line);
    changed_.notify_all();
  }

  std::vector<std::string> linesOnceThereAre(std::size_t count) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, 30s, [&] { return lines_.size() >= count; });
    return lines_;
  }

  void pageThreadStarted(const char* name) noexcept override {
    if (delay_ > 0ms) {
      std::this_thread::sleep_for(delay_);
    }
    say(std::string("started ") + name);
  }
  void pageThreadEnded(const char* name) noexcept override { say(std::string("ended ") + name); }
  void copyBegun(const TreeCopy& /*copy*/) noexcept override {}
  void copyFinished(const TreeCopy& /*copy*/, bool /*isCopied*/) noexcept override {}
  void discBegun(const char* /*root*/) noexcept override {}
  void discAwaited(unsigned /*seconds*/) noexcept override {}
  void ejectBegun() noexcept override {}

  // The host takes its time to note that a thread has started.
  void hesitate(std::chrono::milliseconds delay) { delay_ = delay; }

  TextField& instructions() noexcept override { std::abort(); }
  TextField& status() noexcept override { std::abort(); }
  Button& uiButton() noexcept override { std::abort(); }
  ProgressIndicator& progressIndicator() noexcept override { std::abort(); }
  void setNextEnabled(bool /*enabled*/) noexcept override {}
  void setPreviousEnabled(bool /*enabled*/) noexcept override {}
  int runModal(const Alert& /*alert*/) noexcept override { std::abort(); }
  void beginInformationalSheet(const Sheet& /*sheet*/) noexcept override {}
  void dispatchSync(void (* /*block*/)(void*), void* /*context*/) noexcept override { std::abort(); }
  void beginAnimationGrouping() noexcept override {}
  void setAnimationDuration(double /*seconds*/) noexcept override {}
  void endAnimationGrouping() noexcept override {}
  void assertionTaken(const char* /*type*/, std::uint32_t /*level*/, const char* /*name*/) noexcept override {}
  void assertionReleased(const char* /*type*/) noexcept override {}

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> lines_;
  std::chrono::milliseconds delay_{0};
};

void sayBody(void* host) { static_cast<ListeningHost*>(host)->say("body"); }

void slowBody(void* host) {
  std::this_thread::sleep_for(300ms);
  sayBody(host);
}

// Starts a thread of its own and sees it end.
void startingBody(void* target) {
  auto& host = *static_cast<ListeningHost*>(target);
  EXPECT_TRUE(detachNewThread(host, "copySingleVolume", sayBody, &host));
  host.linesOnceThereAre(4);
}

volatile std::sig_atomic_t signalsSeen = 0;

// An alarm ten times a second, whose handler restarts system calls or does not.
void ringOften(int flags) {
  struct sigaction action {};
  action.sa_handler = [](int) { signalsSeen = signalsSeen + 1; };
  action.sa_flags = flags;
  ASSERT_EQ(sigaction(SIGALRM, &action, nullptr), 0);
  const itimerval often{{0, 100'000}, {0, 100'000}};
  ASSERT_EQ(setitimer(ITIMER_REAL, &often, nullptr), 0);
}

void expectASleepOfTwoSeconds() {
  const Clock::time_point start = Clock::now();
  sleepSeconds(2);
  const Clock::duration slept = Clock::now() - start;
  EXPECT_GE(slept, 2s);
  EXPECT_LT(slept, 3500ms);
}

// From here on this process gets no further thread. The limit does not bind root, so root becomes somebody
// else first; in a user namespace root is an ordinary user to the limit.
bool forbidThreads() {
  constexpr uid_t kSomebodyElse = 65533;
  const rlimit none{0, 0};
  return setrlimit(RLIMIT_NPROC, &none) == 0 &&
         (!isRealRoot() || setresuid(kSomebodyElse, kSomebodyElse, kSomebodyElse) == 0);
}

// How startAThreadWhereNoneCanBeHad ends.
constexpr int kRefused = 0;
constexpr int kStarted = 1;
constexpr int kHostWasNotified = 2;
constexpr int kNotForbidden = 3;

[[noreturn]] void startAThreadWhereNoneCanBeHad() {
  if (!forbidThreads()) {
    _exit(kNotForbidden);
  }
  ListeningHost host;
  if (detachNewThread(host, "doEntireInstall", sayBody, &host)) {
    _exit(kStarted);
  }
  _exit(host.linesOnceThereAre(0).empty() ? kRefused : kHostWasNotified);
}

}  // namespace

// ---- Sleeping ----

TEST(SleepSeconds, SleepsThatLong) { expectASleepOfTwoSeconds(); }

TEST(SleepSeconds, ReturnsAtOnceForNoSeconds) {
  const Clock::time_point start = Clock::now();
  sleepSeconds(0);
  EXPECT_LT(Clock::now() - start, 500ms);
}

TEST(SleepSeconds, SleepsOnWhenSignalsArrive) {
  ringOften(0);
  expectASleepOfTwoSeconds();
  EXPECT_GE(signalsSeen, 10);
}

TEST(SleepSeconds, SleepsOnWhenRestartingSignalsArrive) {
  ringOften(SA_RESTART);
  expectASleepOfTwoSeconds();
  EXPECT_GE(signalsSeen, 10);
}

// ---- Threads ----

TEST(DetachNewThread, RunsTheBodyOnAnotherThread) {
  ListeningHost host;
  struct Report {
    ListeningHost& host;
    std::thread::id thread;
  } report{host, std::this_thread::get_id()};
  ASSERT_TRUE(detachNewThread(
      host, "doEntireInstall",
      [](void* target) { static_cast<Report*>(target)->thread = std::this_thread::get_id(); }, &report));
  host.linesOnceThereAre(2);
  EXPECT_NE(report.thread, std::this_thread::get_id());
}

TEST(DetachNewThread, NotifiesTheHostBeforeTheBodyAndAfterIt) {
  ListeningHost host;
  ASSERT_TRUE(detachNewThread(host, "copySingleVolume", sayBody, &host));
  EXPECT_THAT(host.linesOnceThereAre(3),
              ElementsAre("started copySingleVolume", "body", "ended copySingleVolume"));
}

TEST(DetachNewThread, StartsTheBodyOnlyAfterTheNotification) {
  ListeningHost host;
  host.hesitate(300ms);
  ASSERT_TRUE(detachNewThread(host, "copySingleVolume", sayBody, &host));
  EXPECT_THAT(host.linesOnceThereAre(3),
              ElementsAre("started copySingleVolume", "body", "ended copySingleVolume"));
}

TEST(DetachNewThread, NotifiesOfTheEndOnlyAfterTheBodyHasReturned) {
  ListeningHost host;
  ASSERT_TRUE(detachNewThread(host, "doEntireInstall", slowBody, &host));
  EXPECT_THAT(host.linesOnceThereAre(3),
              ElementsAre("started doEntireInstall", "body", "ended doEntireInstall"));
}

TEST(DetachNewThread, StartsOneThreadFromAnother) {
  ListeningHost host;
  ASSERT_TRUE(detachNewThread(host, "doEntireInstall", startingBody, &host));
  EXPECT_THAT(host.linesOnceThereAre(5),
              ElementsAre("started doEntireInstall", "started copySingleVolume", "body",
                          "ended copySingleVolume", "ended doEntireInstall"));
}

TEST(DetachNewThread, LogsAFailedStartWithoutANotification) {
  EXPECT_EXIT(startAThreadWhereNoneCanBeHad(), testing::ExitedWithCode(kRefused), "");
}

}  // namespace tavenhall::test
