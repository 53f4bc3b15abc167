#include "host/base/build_facts.h"
#include "host/cli/desktop_program.h"
#import "host/desktop/installer.h"
#import "host/desktop/look.h"

#include <clocale>

namespace {

// The language in which AppKit shows the plug-in: its bundle and this program have the same ones.
std::string language() {
  NSMutableArray* known = [NSMutableArray array];
  for (const char* name : tavenhall::kLanguages) {
    [known addObject:[NSString stringWithUTF8String:name]];
  }
  return [[[NSBundle preferredLocalizationsFromArray:known] objectAtIndex:0] UTF8String];
}

}  // namespace

int main(int argumentCount, char** arguments) {
  // Character types alone: the log's month names are the same on every machine.
  std::setlocale(LC_CTYPE, "");
  static tavenhall::DesktopProgram run;
  @autoreleasepool {
    setUpLanguages();
    const std::string shown = language();
    tavenhall::DesktopProgram::setLanguage(shown);
    if (const auto status = run.read(argumentCount, arguments)) {
      return static_cast<int>(*status);
    }
    setUpFonts(shown);
    [NSApplication sharedApplication];
    if (!setUpLook()) {
      return static_cast<int>(tavenhall::ExitStatus::badUsage);
    }
    [NSApp setDelegate:[[Installer alloc] initWithRun:&run]];
    [NSApp run];
  }
  return 0;
}
