#pragma once

#import <Foundation/Foundation.h>

namespace tavenhall {

// Every adapter does its work in here: what it leaves to the pool is released, and an Objective-C exception
// ends here with a line on standard error, since the page knows no exceptions. Any thread.
template <typename Work>
void adapt(const char* what, Work work) noexcept {
  @autoreleasepool {
    @try {
      work();
    } @catch (NSException* exception) {
      NSLog(@"%s: %@: %@", what, [exception name], [exception reason]);
    }
  }
}

}  // namespace tavenhall
