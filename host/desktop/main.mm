#include "host/desktop/desktop_run.h"
#import "host/desktop/installer.h"
#import "host/desktop/look.h"

#include <clocale>

int main(int argumentCount, char** arguments) {
  // Character types alone: the log's month names are the same on every machine.
  std::setlocale(LC_CTYPE, "");
  static tavenhall::DesktopRun run;
  if (const auto status = run.read(argumentCount, arguments)) {
    return static_cast<int>(*status);
  }
  @autoreleasepool {
    setUpDefaults();
    [NSApplication sharedApplication];
    setUpLook();
    [NSApp setDelegate:[[Installer alloc] initWithRun:&run]];
    [NSApp run];
  }
  return 0;
}
