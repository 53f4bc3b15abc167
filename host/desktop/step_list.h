#pragma once

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
