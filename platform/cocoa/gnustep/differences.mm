#import "platform/cocoa/differences.h"

#include "platform/cocoa/gnustep/main_thread.h"

namespace tavenhall {

void changeControl(void (*change)(void*), void* context) noexcept { runOnMainThread(change, context); }

void showWithMnemonic(NSTextField* field, NSString* text) {
  [field setTitleWithMnemonic:[@"&" stringByAppendingString:text]];
}

// Only while the run loop is in its usual mode: while a sheet or an alert is up, the next sheet waits.
void beginWithoutWaiting(id sheet, SEL begin) {
  NSArray* modes = [NSArray arrayWithObject:NSDefaultRunLoopMode];
  [sheet performSelector:begin withObject:nil afterDelay:0 inModes:modes];
}

}  // namespace tavenhall
