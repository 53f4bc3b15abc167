#pragma once

#include "host/ui/styled_text.h"

#import <AppKit/AppKit.h>

// A list of the installer's steps: done, current and future ones. Main thread.
@interface StepList : NSView {
 @private
  NSArray* titles_;
  NSUInteger current_;
}
// The titles are copied; `current` counts from 0.
- (void)setTitles:(NSArray*)titles current:(NSUInteger)current;
@end

// A page of text that scrolls if it is too long, with labels in a column at the left. Paths are broken at their
// separators, and copied whole. Main thread. Autoreleased.
NSView* textPage(const std::vector<tavenhall::Line>& lines, NSRect frame);
