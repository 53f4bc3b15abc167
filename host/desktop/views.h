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

// A page of text that scrolls if it is too long. Main thread.

// Puts labels into a column at the left.
NSAttributedString* attributedText(const std::vector<tavenhall::Line>& lines);

// Autoreleased.
NSView* textPage(NSAttributedString* text, NSRect frame);
