#include "tests/cocoa/stand-ins/dialogs.h"

#include "tests/cocoa/method_exchange.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"

#import <AppKit/AppKit.h>
#include <cstdarg>
#include <string>

using tavenhall::test::recordCall;

namespace {

std::function<long()> theAnswer;

std::string textOf(NSString* string) { return string == nil ? "nil" : [string UTF8String]; }

std::string textOf(SEL selector) { return selector == NULL ? "NULL" : sel_getName(selector); }

}  // namespace

// The arguments that say nothing are left out as long as they say it.
// Exported, for the bundle to find it before AppKit's.
__attribute__((visibility("default"))) void NSBeginInformationalAlertSheet(
    NSString* title, NSString* defaultButton, NSString* alternateButton, NSString* otherButton,
    NSWindow* docWindow, id modalDelegate, SEL willEndSelector, SEL didEndSelector, void* contextInfo,
    NSString* message, ...) {
  va_list none;
  va_start(none, message);
  NSString* shown = [[[NSString alloc] initWithFormat:message arguments:none] autorelease];
  va_end(none);
  recordCall("NSBeginInformationalAlertSheet title " + textOf(title) + ", buttons " + textOf(defaultButton) +
             " " + textOf(alternateButton) + " " + textOf(otherButton) + ", window " +
             textOf([docWindow description]) + ", delegate " +
             textOf(NSStringFromClass([modalDelegate class])) + ", selectors " + textOf(willEndSelector) + " " +
             textOf(didEndSelector) + ", context " + (contextInfo == nullptr ? "NULL" : "something") +
             ", message " + textOf(shown));
}

@interface NSAlert (Recorded)
- (id)recorded_init;
- (NSButton*)recorded_addButtonWithTitle:(NSString*)title;
- (void)recorded_setMessageText:(NSString*)text;
- (void)recorded_setInformativeText:(NSString*)text;
- (void)recorded_setAlertStyle:(NSAlertStyle)style;
- (NSInteger)recorded_runModal;
@end

@implementation NSAlert (Recorded)
- (id)recorded_init {
  recordCall("NSAlert init");
  return self;
}

- (NSButton*)recorded_addButtonWithTitle:(NSString*)title {
  recordCall("NSAlert addButtonWithTitle: " + textOf(title));
  return nil;
}

- (void)recorded_setMessageText:(NSString*)text {
  recordCall("NSAlert setMessageText: " + textOf(text));
}

- (void)recorded_setInformativeText:(NSString*)text {
  recordCall("NSAlert setInformativeText: " + textOf(text));
}

- (void)recorded_setAlertStyle:(NSAlertStyle)style {
  recordCall("NSAlert setAlertStyle: " + std::to_string(style));
}

- (NSInteger)recorded_runModal {
  recordCall(std::string("NSAlert runModal") + ([NSThread isMainThread] ? "" : " on a page's thread"));
  return theAnswer();
}
@end

namespace tavenhall::test {

void recordAlerts(std::function<long()> answer) {
  theAnswer = std::move(answer);
  const Class alert = [NSAlert class];
  exchangeMethods(alert, @selector(init), @selector(recorded_init));
  exchangeMethods(alert, @selector(addButtonWithTitle:), @selector(recorded_addButtonWithTitle:));
  exchangeMethods(alert, @selector(setMessageText:), @selector(recorded_setMessageText:));
  exchangeMethods(alert, @selector(setInformativeText:), @selector(recorded_setInformativeText:));
  exchangeMethods(alert, @selector(setAlertStyle:), @selector(recorded_setAlertStyle:));
  exchangeMethods(alert, @selector(runModal), @selector(recorded_runModal));
}

}  // namespace tavenhall::test
