#pragma once

#import <Foundation/Foundation.h>

// A text or a bar that records what is asked of it, under its name, and needs no display. A call on another
// thread than the main one is recorded as such. What setTitleWithMnemonic: would show is recorded, not what it
// was given.
@interface RecordingControl : NSObject {
 @private
  NSString* name_;
  double maxValue_;
  double doubleValue_;
}
+ (RecordingControl*)controlNamed:(NSString*)name;
- (void)setTitleWithMnemonic:(NSString*)text;
- (void)setNeedsDisplay;
- (id)window;
- (void)setMinValue:(double)value;
- (void)setMaxValue:(double)value;
- (void)setDoubleValue:(double)value;
- (double)maxValue;
- (double)doubleValue;
- (void)displayIfNeeded;
@end

namespace tavenhall::test {

// From now on the grouping of animations is recorded. GNUstep has no current context; there is one now. Once a
// process.
void recordAnimations();

}  // namespace tavenhall::test
