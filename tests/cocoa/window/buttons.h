#pragma once

#import <AppKit/AppKit.h>

namespace tavenhall::test {

// The button with this title in the view or below it, which owns it; nil if there is none. Main thread.
[[nodiscard]] NSButton* buttonWithTitle(NSView* view, NSString* title);

}  // namespace tavenhall::test
