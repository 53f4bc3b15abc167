#include "platform/cocoa/pane_host.h"
#include "tests/cocoa/window/buttons.h"

#import <AppKit/AppKit.h>
#include <array>
#include <atomic>
#include <cstdio>
#include <thread>

// Two threads of a page at once: one hands an alert over and waits for its answer; the other, once the alert is
// up, hands over the click on its first button, which is not the answer of an alert that could not be shown.
// Writes what happens, a line for each thing.
namespace {

using tavenhall::PaneHost;
using tavenhall::test::buttonWithTitle;

struct Shared {
  PaneHost& host;
  std::atomic<bool> alertIsUp = false;
  std::atomic<int> answer = 0;  // none yet
};

void say(const char* line) {
  std::printf("%s\n", line);
  std::fflush(stdout);
}

void showAlert(Shared& shared) {
  auto work = [&] {
    say("the alert begins");
    constexpr std::array<const char*, 2> kButtons = {"OK", "Skip"};
    shared.alertIsUp = true;
    shared.alertIsUp.notify_all();
    shared.answer = shared.host.runModal({"Ready for next volume", "Insert the disc.", kButtons, 1});
  };
  shared.host.dispatchSync([](void* it) { (*static_cast<decltype(work)*>(it))(); }, &work);
  std::printf("the alert was answered: %d\n", shared.answer.load());
  std::fflush(stdout);
}

// True once the alert's window was there to click on.
bool clickOk(Shared& shared) {
  bool hasClicked = false;
  auto work = [&] {
    NSButton* ok = buttonWithTitle([[NSApp modalWindow] contentView], @"OK");
    if (ok != nil) {
      say("the second dispatch is served while the alert is up");
      [ok performClick:nil];
      hasClicked = true;
    }
  };
  shared.host.dispatchSync([](void* it) { (*static_cast<decltype(work)*>(it))(); }, &work);
  return hasClicked;
}

}  // namespace

int main() {
  @autoreleasepool {
    [NSApplication sharedApplication];
    InstallDataPane* const noPane = nil;
    NSTextField* const noText = nil;
    NSProgressIndicator* const noBar = nil;
    PaneHost host(noPane, {noText, noText, noBar});
    Shared shared{host};
    std::thread second([&] {
      shared.alertIsUp.wait(false);
      while (!clickOk(shared) && shared.answer == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
    });
    std::thread first([&] {
      showAlert(shared);
      second.join();
      say("both threads have ended");
      std::_Exit(shared.answer == NSAlertFirstButtonReturn ? 0 : 1);
    });
    [NSApp run];
  }
  return 1;
}
