#pragma once

#import <AppKit/AppKit.h>
#include <functional>

namespace tavenhall::test {

// Runs the main thread's loop in that mode until the condition holds; false when it does not within a minute.
[[nodiscard]] inline bool runMainLoopUntil(const std::function<bool()>& condition,
                                           NSString* mode = NSDefaultRunLoopMode) {
  NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:60.0];
  while (!condition()) {
    if ([limit timeIntervalSinceNow] < 0) {
      return false;
    }
    @autoreleasepool {
      [[NSRunLoop currentRunLoop] runMode:mode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
      [NSThread sleepForTimeInterval:0.001];
    }
  }
  return true;
}

}  // namespace tavenhall::test
