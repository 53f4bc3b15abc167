#import "tests/cocoa/stand-ins/controls.h"

#include "tests/cocoa/method_exchange.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"

#import <AppKit/AppKit.h>
#include <cstdio>

using tavenhall::test::recordCall;

namespace {

std::string textOf(double number) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", number);
  return text;
}

}  // namespace

@implementation RecordingControl

+ (RecordingControl*)controlNamed:(NSString*)name {
  RecordingControl* control = [[[self alloc] init] autorelease];
  control->name_ = [name copy];
  control->maxValue_ = 100.0;
  return control;
}

- (void)dealloc {
  [name_ release];
  [super dealloc];
}

- (void)record:(const std::string&)what {
  recordCall(std::string([name_ UTF8String]) + " " + what +
             ([NSThread isMainThread] ? "" : " on a page's thread"));
}

- (void)setTitleWithMnemonic:(NSString*)text {
  const NSRange mark = [text rangeOfString:@"&"];
  [self record:std::string("setTitleWithMnemonic: ") +
               (mark.location == NSNotFound ? "nothing"
                                            : [[text stringByReplacingCharactersInRange:mark
                                                                             withString:@""] UTF8String])];
}

- (void)setNeedsDisplay {
  [self record:"setNeedsDisplay"];
}

- (id)window {
  return [name_ stringByAppendingString:@"'s"];
}

- (void)setMinValue:(double)value {
  [self record:"setMinValue: " + textOf(value)];
}

- (void)setMaxValue:(double)value {
  [self record:"setMaxValue: " + textOf(value)];
  maxValue_ = value;
}

- (void)setDoubleValue:(double)value {
  [self record:"setDoubleValue: " + textOf(value)];
  doubleValue_ = value;
}

- (double)maxValue {
  [self record:"maxValue"];
  return maxValue_;
}

- (double)doubleValue {
  [self record:"doubleValue"];
  return doubleValue_;
}

- (void)displayIfNeeded {
  [self record:"displayIfNeeded"];
}

@end

@interface NSAnimationContext (Recorded)
+ (void)recorded_beginGrouping;
+ (void)recorded_endGrouping;
+ (NSAnimationContext*)recorded_currentContext;
- (void)recorded_setDuration:(NSTimeInterval)duration;
@end

@implementation NSAnimationContext (Recorded)
+ (void)recorded_beginGrouping {
  recordCall("beginGrouping");
}

+ (void)recorded_endGrouping {
  recordCall("endGrouping");
}

+ (NSAnimationContext*)recorded_currentContext {
  static NSAnimationContext* const context = [[NSAnimationContext alloc] init];
  return context;
}

- (void)recorded_setDuration:(NSTimeInterval)duration {
  recordCall("setDuration: " + textOf(duration));
}
@end

namespace tavenhall::test {

void recordAnimations() {
  const Class context = [NSAnimationContext class];
  exchangeClassMethods(context, @selector(beginGrouping), @selector(recorded_beginGrouping));
  exchangeClassMethods(context, @selector(endGrouping), @selector(recorded_endGrouping));
  exchangeClassMethods(context, @selector(currentContext), @selector(recorded_currentContext));
  exchangeMethods(context, @selector(setDuration:), @selector(recorded_setDuration:));
}

}  // namespace tavenhall::test
