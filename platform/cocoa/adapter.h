#pragma once

#include "platform/cocoa/differences.h"

#import <Foundation/Foundation.h>
#include <string>

// What every adapter between the page and AppKit uses: an end for Objective-C's exceptions, and texts.
namespace tavenhall {

// Runs `work` with an autorelease pool. An Objective-C exception ends here with a line on standard error, since
// the page is built without exceptions. Any thread.
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

// Runs `change`, which changes the control that `what` names, on the thread that may change it, and returns
// when it has run. Any thread.
template <typename Change>
void changeControl(const char* what, Change change) noexcept {
  auto adapted = [=] { adapt(what, change); };
  changeControl([](void* context) { (*static_cast<decltype(adapted)*>(context))(); }, &adapted);
}

// The page's bytes as an autoreleased string, never nil. Bytes that are not UTF-8 become U+FFFD, a null pointer
// the empty string. Any thread.
[[nodiscard]] NSString* stringOfBytes(const char* bytes);

// A string as UTF-8, nil as the empty text. Any thread.
[[nodiscard]] std::string bytesOfString(NSString* string);

}  // namespace tavenhall
