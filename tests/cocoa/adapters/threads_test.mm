#include "platform/cocoa/pane_host.h"
#include "tests/cocoa/main_loop.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"
#include "tests/cocoa/stand-ins/thread_starts.h"

#import "platform/cocoa/install_data_pane.h"
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

// A pane that runs what the adapter's own threads hand to it, without a page.
@interface ThreadPane : InstallDataPane {
 @public
  tavenhall::PageThreads* threads_;
}
@end

@implementation ThreadPane
- (void)copySingleVolume {
  threads_->run("copySingleVolume");
}
@end

namespace tavenhall {
namespace {

// GNUstep sets up its run loop on first use. While another thread sends its first message, the two can wait for
// each other for ever.
class SetUpRunLoop : public testing::Environment {
  void SetUp() override {
    @autoreleasepool {
      [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate date]];
    }
  }
};
const testing::Environment* const kSetUpRunLoop = testing::AddGlobalTestEnvironment(new SetUpRunLoop);

using test::recordCall;
using test::recordedCalls;
using test::runMainLoopUntil;
using Calls = std::vector<std::string>;

constexpr const char* kInit = "NSThread initWithTarget: ThreadPane selector: copySingleVolume object: nil";
constexpr const char* kStart = "NSThread start, stackSize: 8388608";

class NotifiedHost final : public InstallerHost {
 public:
  TextField& instructions() noexcept override { std::abort(); }
  TextField& status() noexcept override { std::abort(); }
  Button& uiButton() noexcept override { std::abort(); }
  ProgressIndicator& progressIndicator() noexcept override { std::abort(); }
  void setNextEnabled(bool /*enabled*/) noexcept override {}
  void setPreviousEnabled(bool /*enabled*/) noexcept override {}
  int runModal(const Alert& /*alert*/) noexcept override { return 0; }
  void beginInformationalSheet(const Sheet& /*sheet*/) noexcept override {}
  void dispatchSync(void (* /*block*/)(void*), void* /*context*/) noexcept override {}
  void beginAnimationGrouping() noexcept override {}
  void setAnimationDuration(double /*seconds*/) noexcept override {}
  void endAnimationGrouping() noexcept override {}
  void pageThreadStarted(const char* name) noexcept override { recordCall(std::string("started ") + name); }
  void pageThreadEnded(const char* name) noexcept override {
    recordCall(std::string("ended ") + name);
    hasEnded = true;
  }
  void copyBegun(const TreeCopy& /*copy*/) noexcept override {}
  void copyFinished(const TreeCopy& /*copy*/, bool /*isCopied*/) noexcept override {}
  void discBegun(const char* /*root*/) noexcept override {}
  void discAwaited(unsigned /*seconds*/) noexcept override {}
  void ejectBegun() noexcept override {}
  void assertionTaken(const char* /*type*/, std::uint32_t /*level*/, const char* /*name*/) noexcept override {}
  void assertionReleased(const char* /*type*/) noexcept override {}

  std::atomic<bool> hasEnded = false;
};

class Threads : public testing::Test {
 protected:
  void SetUp() override {
    test::recordThreadStarts();
    pane_ = [[ThreadPane alloc] init];
    pane_->threads_ = &threads_;
  }

  NotifiedHost host_;
  PageThreads threads_{std::chrono::milliseconds(500)};
  ThreadPane* pane_ = nil;
};

TEST_F(Threads, BeginInThePanesMethodAndTheHostIsReportedAroundTheirBody) {
  const auto body = [](void* target) {
    recordCall([NSThread isMainThread] ? "the body, on the main thread" : "the body");
    *static_cast<int*>(target) = 7;
  };
  int target = 0;

  EXPECT_TRUE(threads_.detach(pane_, host_, "copySingleVolume", body, &target));
  ASSERT_TRUE(runMainLoopUntil([this] { return host_.hasEnded.load(); }));

  EXPECT_EQ(target, 7);
  EXPECT_EQ(recordedCalls(),
            (Calls{kInit, kStart, "started copySingleVolume", "the body", "ended copySingleVolume"}));
}

class ThreadsThatDoNotStart : public Threads, public testing::WithParamInterface<test::ThreadStarts> {};

TEST_P(ThreadsThatDoNotStart, AreReportedToThePageAndNotToTheHost) {
  test::setThreadStarts(GetParam());
  const auto body = [](void* /*target*/) { recordCall("the body"); };
  EXPECT_FALSE(threads_.detach(pane_, host_, "copySingleVolume", body, nullptr));

  // Nothing is left behind for the next one, or for a thread that comes late.
  [pane_ copySingleVolume];
  EXPECT_EQ(recordedCalls(), (Calls{kInit, kStart}));
}

INSTANTIATE_TEST_SUITE_P(Cases, ThreadsThatDoNotStart,
                         testing::Values(test::ThreadStarts::refused, test::ThreadStarts::lost),
                         [](const auto& instance) {
                           return instance.param == test::ThreadStarts::lost ? "Lost" : "Refused";
                         });

// ---- The dispatch ----

TEST(Dispatch, RunsOnTheMainThreadBeforeItReturns) {
  @autoreleasepool {
    NSTextField* noText = nil;
    NSProgressIndicator* noBar = nil;
    PaneHost host([[InstallDataPane alloc] init], {noText, noText, noBar});
    std::atomic<bool> hasReturned = false;
    bool wasOnMainThread = false;
    std::thread page([&] {
      host.dispatchSync([](void* context) { *static_cast<bool*>(context) = [NSThread isMainThread]; },
                        &wasOnMainThread);
      EXPECT_TRUE(wasOnMainThread);
      hasReturned = true;
    });
    EXPECT_TRUE(runMainLoopUntil([&] { return hasReturned.load(); }));
    page.join();
  }
}

// As when an alert is up, which was handed over too.
TEST(Dispatch, IsServedInsideAnother) {
  @autoreleasepool {
    InstallDataPane* pane = [[InstallDataPane alloc] init];
    NSTextField* noText = nil;
    NSProgressIndicator* noBar = nil;
    struct {
      PaneHost host;
      std::atomic<bool> innerHasRun = false;
      bool wasServed = false;
    } both{PaneHost(pane, {noText, noText, noBar})};
    std::atomic<bool> hasReturned = false;
    std::thread outer([&] {
      both.host.dispatchSync(
          [](void* context) {
            auto& all = *static_cast<decltype(both)*>(context);
            std::thread inner([&all] {
              all.host.dispatchSync([](void* flag) { *static_cast<std::atomic<bool>*>(flag) = true; },
                                    &all.innerHasRun);
            });
            all.wasServed = runMainLoopUntil([&all] { return all.innerHasRun.load(); });
            inner.join();
          },
          &both);
      hasReturned = true;
    });
    EXPECT_TRUE(runMainLoopUntil([&] { return hasReturned.load(); }));
    outer.join();
    EXPECT_TRUE(both.wasServed);
  }
}

TEST(DispatchDeathTest, FromTheMainThreadItEndsTheProcess) {
  EXPECT_DEATH(
      {
        NSTextField* noText = nil;
        NSProgressIndicator* noBar = nil;
        PaneHost host([[InstallDataPane alloc] init], {noText, noText, noBar});
        host.dispatchSync([](void*) {}, nullptr);
      },
      "dispatch_sync_f to the main queue on the main thread");
}

}  // namespace
}  // namespace tavenhall
