#pragma once

#import <AppKit/AppKit.h>

// The installer's steps, one below the other: those that are done, the one that the user is at, those to come.
// Main thread.
@interface StepList : NSView {
 @private
  NSArray* titles_;
  NSUInteger current_;
}
// The titles are copied; `current` counts from 0.
- (void)setTitles:(NSArray*)titles current:(NSUInteger)current;
@end
