#include "tests/cocoa/window/appkit_events.h"

#include "tests/cocoa/method_exchange.h"

#import <IOKit/pwr_mgt/IOPMLib.h>
#import <InstallerPlugins/InstallerPlugins.h>
#include <array>
#include <cstdarg>
#include <dlfcn.h>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

tavenhall::test::Report theReport;
id<AlertWatcher> theWatcher = nil;

// Set once the layout is loaded.
id theInstructions = nil;
id theStatus = nil;
id theBar = nil;

std::array<const char*, 2> heldTypes{};

}  // namespace

// ---- Power assertions: identifiers 1 and 2 ----

IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel level, CFStringRef name,
                                     IOPMAssertionID* identifier) {
  const bool isDisplay = [(NSString*)type isEqualToString:@"NoDisplaySleepAssertion"];
  *identifier = isDisplay ? 1 : 2;
  heldTypes.at(*identifier - 1) = isDisplay ? "NoDisplaySleepAssertion" : "NoIdleSleepAssertion";
  theReport(tavenhall::event::Assertion{[(NSString*)type UTF8String], level, [(NSString*)name UTF8String]});
  return kIOReturnSuccess;
}

IOReturn IOPMAssertionRelease(IOPMAssertionID identifier) {
  theReport(tavenhall::event::AssertionRelease{heldTypes.at(identifier - 1)});
  return kIOReturnSuccess;
}

// ---- Sheets ----

using BeginSheet = void (*)(NSString*, NSString*, NSString*, NSString*, NSWindow*, id, SEL, SEL, void*,
                            NSString*, ...);

// Exported, for the bundle to find it before AppKit's.
__attribute__((visibility("default"))) void NSBeginInformationalAlertSheet(
    NSString* title, NSString* defaultButton, NSString* alternateButton, NSString* otherButton,
    NSWindow* docWindow, id modalDelegate, SEL willEndSelector, SEL didEndSelector, void* contextInfo,
    NSString* message, ...) {
  static const auto begin = reinterpret_cast<BeginSheet>(dlsym(RTLD_NEXT, "NSBeginInformationalAlertSheet"));
  va_list values;
  va_start(values, message);
  NSString* shown = [[[NSString alloc] initWithFormat:message arguments:values] autorelease];
  va_end(values);
  theReport(tavenhall::event::Sheet{[defaultButton UTF8String], [shown UTF8String], ""});
  begin(title, defaultButton, alternateButton, otherButton, docWindow, modalDelegate, willEndSelector,
        didEndSelector, contextInfo, @"%@", shown);
}

// ---- Controls and alerts ----

@interface NSTextField (Told)
- (void)told_setTitleWithMnemonic:(NSString*)text;
@end

@implementation NSTextField (Told)
- (void)told_setTitleWithMnemonic:(NSString*)text {
  [self told_setTitleWithMnemonic:text];
  if (self == theInstructions || self == theStatus) {
    const char* shown = [[self stringValue] UTF8String];
    if (self == theInstructions) {
      theReport(tavenhall::event::Instructions{shown});
    } else {
      theReport(tavenhall::event::Status{shown});
    }
  }
}
@end

@interface NSProgressIndicator (Told)
- (void)told_setMinValue:(double)value;
- (void)told_setMaxValue:(double)value;
- (void)told_setDoubleValue:(double)value;
@end

@implementation NSProgressIndicator (Told)
- (void)report:(const tavenhall::Event&)event {
  if (self == theBar) {
    theReport(event);
  }
}

- (void)told_setMinValue:(double)value {
  [self told_setMinValue:value];
  [self report:tavenhall::event::ProgressMinimum{value}];
}

- (void)told_setMaxValue:(double)value {
  [self told_setMaxValue:value];
  [self report:tavenhall::event::ProgressMaximum{value}];
}

- (void)told_setDoubleValue:(double)value {
  [self told_setDoubleValue:value];
  [self report:tavenhall::event::ProgressValue{value, {}}];
}
@end

@interface NSAlert (Told)
- (NSInteger)told_runModal;
@end

@implementation NSAlert (Told)
- (NSInteger)told_runModal {
  if ([self messageText] == nil || [self informativeText] == nil) {
    NSLog(@"AppKit itself has something to say: %@ %@", [self messageText], [self informativeText]);
    _exit(4);
  }
  std::vector<std::string> buttons;
  for (NSButton* button in [self buttons]) {
    buttons.emplace_back([[button title] UTF8String]);
  }
  theReport(tavenhall::event::Alert{[[self messageText] UTF8String],
                                    [[self informativeText] UTF8String],
                                    std::move(buttons),
                                    static_cast<int>([self alertStyle])});
  [theWatcher alertIsUp:self];
  const NSInteger answer = [self told_runModal];
  [theWatcher alertIsGone:self];
  return answer;
}
@end

namespace tavenhall::test {

void reportAppKitEvents(Report report, id<AlertWatcher> watcher) {
  theReport = std::move(report);
  theWatcher = watcher;
  exchangeMethods([NSTextField class], @selector(setTitleWithMnemonic:), @selector(told_setTitleWithMnemonic:));
  exchangeMethods([NSProgressIndicator class], @selector(setMinValue:), @selector(told_setMinValue:));
  exchangeMethods([NSProgressIndicator class], @selector(setMaxValue:), @selector(told_setMaxValue:));
  exchangeMethods([NSProgressIndicator class], @selector(setDoubleValue:), @selector(told_setDoubleValue:));
  exchangeMethods([NSAlert class], @selector(runModal), @selector(told_runModal));
}

void watchPane(InstallerPane* pane) {
  theInstructions = [pane valueForKey:@"instructions"];
  theStatus = [pane valueForKey:@"status"];
  theBar = [pane valueForKey:@"progressIndicator"];
}

}  // namespace tavenhall::test
