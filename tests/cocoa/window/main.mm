#include "host/protocol/json_events.h"
#import "tests/cocoa/window/played_installer.h"

#include <clocale>
#include <cstdlib>
#include <unistd.h>

// Shows the page of the bundle that BUNDLE names, as an installer does. By the environment, since an AppKit
// program takes its arguments for documents to open.
int main() {
  @autoreleasepool {
    std::setlocale(LC_CTYPE, "");
    [NSApplication sharedApplication];
    tavenhall::JsonEvents events(STDOUT_FILENO);
    tavenhall::CommandSource commands(STDIN_FILENO);
    PlayedInstaller* installer = [[PlayedInstaller alloc] initWithCommands:commands events:events];
    if (![installer showPageOfBundle:[NSString stringWithUTF8String:std::getenv("BUNDLE")]]) {
      return 2;
    }
    [installer begin];
    [NSApp run];
  }
  return 0;
}
