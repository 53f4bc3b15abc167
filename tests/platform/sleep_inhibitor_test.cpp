#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <sstream>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "platform/system.h"
#include "tests/platform/private_bus.h"
#include "tests/support/files.h"

namespace tavenhall::test {

namespace {

using Clock = std::chrono::steady_clock;
using Manner = SleepServices::Manner;
using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr const char* kDisplay = "NoDisplaySleepAssertion";
constexpr const char* kIdle = "NoIdleSleepAssertion";

std::uint32_t take(const char* type, std::uint32_t level = 255) {
  std::uint32_t identifier = 123;
  createPowerAssertion(type, level, "Tavenhall installation in progress", identifier);
  return identifier;
}

// How long `action` takes.
template <typename Action>
Clock::duration timeOf(Action action) {
  const Clock::time_point start = Clock::now();
  action();
  return Clock::now() - start;
}

// The number of descriptors that a command of the page inherits.
int descriptorsOfACommand() {
  EXPECT_EQ(runShellCommand("ls /proc/self/fd | wc -l > /tmp/count"), 0);
  return std::stoi(readFile("/tmp/count"));
}

// Nothing answers: expects no lock after two seconds, and no descriptor left open.
void expectToBeGivenUpAfterTwoSeconds(const char* type) {
  const std::ptrdiff_t before = openDescriptors();
  const Clock::duration waited = timeOf([&] { EXPECT_EQ(take(type), 0U); });
  EXPECT_GE(waited, 1500ms);
  EXPECT_LT(waited, 4s);
  EXPECT_EQ(openDescriptors(), before);
}

// A bus that accepts the connection and never answers.
class StuckBus {
 public:
  StuckBus() : listener_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    makeFolder("/tmp/bus");
    sockaddr_un address{AF_UNIX, "/tmp/bus/socket"};
    EXPECT_EQ(bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listener_, 16), 0);
    pointBothBusesTo(kBusAddress);
  }
  ~StuckBus() { close(listener_); }
  StuckBus(const StuckBus&) = delete;
  StuckBus& operator=(const StuckBus&) = delete;

 private:
  int listener_;
};

}  // namespace

// ---- With both services ----

TEST(InhibitorLock, IdleSleepTakesALockOfTheLoginManager) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  EXPECT_NE(take(kIdle), 0U);
  EXPECT_THAT(
      services.calls(),
      ElementsAre("login1.Inhibit sleep:idle|Tavenhall installer|Tavenhall installation in progress|block"));
}

TEST(InhibitorLock, IdleSleepKeepsTheLockUntilItIsReleased) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  const std::uint32_t identifier = take(kIdle);
  EXPECT_FALSE(services.isInhibitorClosed());
  releasePowerAssertion(identifier);
  EXPECT_TRUE(services.isInhibitorClosed());
  EXPECT_EQ(services.calls().size(), 1U);
}

TEST(InhibitorLock, DisplaySleepInhibitsTheScreenSaverAndReturnsItsCookie) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  const std::uint32_t identifier = take(kDisplay);
  EXPECT_NE(identifier, 0U);
  EXPECT_THAT(services.calls(),
              ElementsAre("ScreenSaver.Inhibit Tavenhall installer|Tavenhall installation in progress"));
  releasePowerAssertion(identifier);
  EXPECT_THAT(services.calls(),
              ElementsAre("ScreenSaver.Inhibit Tavenhall installer|Tavenhall installation in progress",
                          "ScreenSaver.UnInhibit 4711"));
}

TEST(InhibitorLock, BothAreReleasedOnAnotherThread) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  const std::uint32_t display = take(kDisplay);
  const std::uint32_t idle = take(kIdle);
  std::thread([&] {
    releasePowerAssertion(display);
    releasePowerAssertion(idle);
  }).join();
  EXPECT_EQ(services.calls().back(), "ScreenSaver.UnInhibit 4711");
  EXPECT_TRUE(services.isInhibitorClosed());
}

TEST(InhibitorLock, EachHasItsOwnIdentifier) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  const std::uint32_t first = take(kDisplay);
  const std::uint32_t second = take(kIdle);
  const std::uint32_t third = take(kDisplay);
  EXPECT_NE(first, 0U);
  EXPECT_NE(second, 0U);
  EXPECT_NE(third, 0U);
  EXPECT_NE(first, second);
  EXPECT_NE(first, third);
  EXPECT_NE(second, third);
}

TEST(InhibitorLock, IsReleasedOnce) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  const std::uint32_t identifier = take(kDisplay);
  releasePowerAssertion(identifier);
  releasePowerAssertion(identifier);
  EXPECT_EQ(services.calls().size(), 2U);
}

TEST(InhibitorLock, ReleasingAnUnknownIdentifierDoesNothing) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  const std::uint32_t identifier = take(kDisplay);
  releasePowerAssertion(0);
  releasePowerAssertion(identifier + 1000);
  EXPECT_EQ(services.calls().size(), 1U);
}

TEST(InhibitorLock, IsTakenAtLevelOnOnly) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  for (const std::uint32_t level : {0U, 1U, 254U, 256U}) {
    EXPECT_EQ(take(kDisplay, level), 0U);
    EXPECT_EQ(take(kIdle, level), 0U);
  }
  EXPECT_THAT(services.calls(), ElementsAre());
}

TEST(InhibitorLock, RefusesAnUnknownType) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  EXPECT_EQ(take("PreventUserIdleSystemSleep"), 0U);
  EXPECT_THAT(services.calls(), ElementsAre());
}

TEST(InhibitorLock, IsNotInheritedByCommands) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  const int before = descriptorsOfACommand();
  ASSERT_NE(take(kDisplay), 0U);
  ASSERT_NE(take(kIdle), 0U);
  EXPECT_EQ(descriptorsOfACommand(), before);
}

TEST(InhibitorLock, LeaksNoDescriptor) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  const std::uint32_t idle = take(kIdle);
  releasePowerAssertion(idle);
  ASSERT_TRUE(services.isInhibitorClosed());  // lent once, so the service's own count is settled from here on
  const std::ptrdiff_t before = openDescriptors();
  for (int turn = 0; turn < 10; ++turn) {
    const std::uint32_t identifier = take(kDisplay);
    EXPECT_NE(identifier, 0U);
    EXPECT_EQ(openDescriptors(), before + 1);
    releasePowerAssertion(identifier);
    EXPECT_EQ(openDescriptors(), before);
  }
}

// ---- With less than that ----

TEST(InhibitorLock, FailsAtOnceWithoutABus) {
  const std::ptrdiff_t before = openDescriptors();
  for (const char* address : {"unix:path=/tmp/no bus", "unix:path=/tmp/not/there", "no address",
                              "unix:", "tcp:host=127.0.0.1,port=1"}) {
    pointBothBusesTo(address);
    EXPECT_LT(timeOf([&] {
                EXPECT_EQ(take(kDisplay), 0U) << address;
                EXPECT_EQ(take(kIdle), 0U) << address;
              }),
              1500ms)
        << address;
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST(InhibitorLock, FailsForTheDisplayWithoutAUserBus) {
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  unsetenv("XDG_RUNTIME_DIR");
  EXPECT_EQ(take(kDisplay), 0U);
}

TEST(InhibitorLock, FailsOnABusWithoutTheServices) {
  PrivateBus bus;
  const std::ptrdiff_t before = openDescriptors();
  EXPECT_LT(timeOf([] {
              EXPECT_EQ(take(kDisplay), 0U);
              EXPECT_EQ(take(kIdle), 0U);
            }),
            1500ms);
  EXPECT_EQ(openDescriptors(), before);
}

TEST(InhibitorLock, FailsWhenTheServicesRefuse) {
  PrivateBus bus;
  SleepServices services(Manner::refuses);
  EXPECT_EQ(take(kDisplay), 0U);
  EXPECT_EQ(take(kIdle), 0U);
  EXPECT_THAT(
      services.calls(),
      ElementsAre("ScreenSaver.Inhibit Tavenhall installer|Tavenhall installation in progress",
                  "login1.Inhibit sleep:idle|Tavenhall installer|Tavenhall installation in progress|block"));
}

TEST(InhibitorLock, TimesOutAfterTwoSecondsWhenTheServicesDoNotAnswer) {
  PrivateBus bus;
  SleepServices services(Manner::staysSilent);
  expectToBeGivenUpAfterTwoSeconds(kDisplay);
  expectToBeGivenUpAfterTwoSeconds(kIdle);
}

TEST(InhibitorLock, TimesOutAfterTwoSecondsWhenTheBusDoesNotAnswer) {
  StuckBus bus;
  expectToBeGivenUpAfterTwoSeconds(kDisplay);
  expectToBeGivenUpAfterTwoSeconds(kIdle);
}

TEST(InhibitorLock, IsReleasedAtOnceWhenTheBusHasGone) {
  PrivateBus bus;
  SleepServices services(Manner::grants);
  const std::ptrdiff_t before = openDescriptors();
  const std::uint32_t display = take(kDisplay);
  ASSERT_NE(display, 0U);
  bus.stop();
  EXPECT_LT(timeOf([&] { releasePowerAssertion(display); }), 1500ms);
  EXPECT_LE(openDescriptors(), before);
  EXPECT_EQ(take(kDisplay), 0U);
}

}  // namespace tavenhall::test
