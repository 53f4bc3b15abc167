#include "platform/cocoa/controls.h"
#include "tests/cocoa/main_loop.h"
#import "tests/cocoa/stand-ins/controls.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

@interface RaisingControl : RecordingControl
@end

@implementation RaisingControl
- (void)setTitleWithMnemonic:(NSString*)text {
  [NSException raise:NSInternalInconsistencyException format:@"%@", text];
}

- (double)maxValue {
  [NSException raise:NSInternalInconsistencyException format:@"no value"];
  return 1.0;
}
@end

namespace tavenhall {
namespace {

using test::recordedCalls;
using test::runMainLoopUntil;
using Calls = std::vector<std::string>;

class Controls : public testing::Test {
 protected:
  NSAutoreleasePool* pool_ = [[NSAutoreleasePool alloc] init];
  NSTextField* textOutlet_ = (NSTextField*)[RecordingControl controlNamed:@"text"];
  NSProgressIndicator* barOutlet_ = (NSProgressIndicator*)[RecordingControl controlNamed:@"bar"];
  LayoutTextField text_{textOutlet_};
  LayoutProgressIndicator bar_{barOutlet_};
};

TEST_F(Controls, ShowsEveryText) {
  for (const char* shown : {"plain", " ", "", "a & b && c", "&", "100 % %s"}) {
    text_.setTitleWithMnemonic(shown);
    EXPECT_EQ(recordedCalls().back(), std::string("text setTitleWithMnemonic: ") + shown);
  }
  text_.setTitleWithMnemonic("no \xE4 text");
  EXPECT_EQ(recordedCalls().back(), "text setTitleWithMnemonic: no \xEF\xBF\xBD text");
}

TEST_F(Controls, EveryCallReachesItsControl) {
  text_.setNeedsDisplay();
  bar_.setMinValue(0.5);
  bar_.setMaxValue(2929.6875);
  bar_.setDoubleValue(12.0);
  EXPECT_EQ(bar_.maxValue(), 2929.6875);
  EXPECT_EQ(bar_.doubleValue(), 12.0);
  bar_.displayIfNeeded();

  EXPECT_EQ(recordedCalls(),
            (Calls{"text setNeedsDisplay", "bar setMinValue: 0.5", "bar setMaxValue: 2929.69",
                   "bar setDoubleValue: 12", "bar maxValue", "bar doubleValue", "bar displayIfNeeded"}));
}

TEST_F(Controls, WithoutALayoutNothingHappens) {
  textOutlet_ = nil;
  barOutlet_ = nil;
  text_.setTitleWithMnemonic("text");
  bar_.setDoubleValue(1.0);
  EXPECT_EQ(bar_.maxValue(), 0.0);
  EXPECT_EQ(recordedCalls(), Calls{});
}

TEST_F(Controls, AThreadOfThePageDoesNotTouchThemItself) {
  std::atomic<bool> isDone = false;
  std::thread page([&] {
    text_.setTitleWithMnemonic("from a thread");
    bar_.setDoubleValue(3.0);
    EXPECT_EQ(bar_.doubleValue(), 3.0);
    isDone = true;
  });
  EXPECT_TRUE(runMainLoopUntil([&] { return isDone.load(); }));
  page.join();
  EXPECT_EQ(recordedCalls(),
            (Calls{"text setTitleWithMnemonic: from a thread", "bar setDoubleValue: 3", "bar doubleValue"}));
}

TEST_F(Controls, AnExceptionEndsHere) {
  textOutlet_ = (NSTextField*)[RaisingControl controlNamed:@"text"];
  barOutlet_ = (NSProgressIndicator*)[RaisingControl controlNamed:@"bar"];
  text_.setTitleWithMnemonic("text");
  EXPECT_EQ(bar_.maxValue(), 0.0);
}

TEST_F(Controls, AnimationsAreGroupedWithTheirDuration) {
  test::recordAnimations();
  beginAnimationGroup();
  setAnimationGroupDuration(0.25);
  endAnimationGroup();
  EXPECT_EQ(recordedCalls(), (Calls{"beginGrouping", "setDuration: 0.25", "endGrouping"}));
}

}  // namespace
}  // namespace tavenhall
