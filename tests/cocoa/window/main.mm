#include "host/base/child_process.h"
#import "tests/cocoa/window/played_installer.h"

#include <clocale>
#include <cstdlib>
#include <mutex>
#include <unistd.h>

// Shows the page of the bundle that BUNDLE names, as an installer does. By the environment, since an AppKit
// program takes its arguments for documents to open.
int main() {
  @autoreleasepool {
    std::setlocale(LC_CTYPE, "");
    [NSApplication sharedApplication];
    tavenhall::test::RequestQueue requests(STDIN_FILENO);
    std::mutex mutex;
    const auto report = [&mutex](const tavenhall::Event& event) {
      const std::lock_guard lock(mutex);
      tavenhall::writeAll(STDOUT_FILENO, tavenhall::encode(event));
    };
    PlayedInstaller* installer = [[PlayedInstaller alloc] initWithRequests:requests report:report];
    if (![installer showPageOfBundle:[NSString stringWithUTF8String:std::getenv("BUNDLE")]]) {
      return 2;
    }
    [installer begin];
    [NSApp run];
  }
  return 0;
}
