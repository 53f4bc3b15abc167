#include "platform/cocoa/dialogs.h"
#include "tests/cocoa/main_loop.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"

#include <gtest/gtest.h>

namespace tavenhall {
namespace {

using test::recordedCalls;
using test::runMainLoopUntil;
using Calls = std::vector<std::string>;

TEST(Sheets, HaveOneButtonNoTitleAndNothingThatIsReportedOfTheirEnd) {
  @autoreleasepool {
    beginInformationalSheet({"Gut", "Failed to open output file."}, (NSWindow*)@"the window", @"the pane");
    ASSERT_TRUE(runMainLoopUntil([] { return !recordedCalls().empty(); }));
    EXPECT_EQ(recordedCalls(),
              (Calls{"NSBeginInformationalAlertSheet title nil, buttons Gut nil nil, window the "
                     "window, delegate NSConstantString, selectors NULL NULL, context NULL, "
                     "message Failed to open output file."}));
  }
}

TEST(Sheets, ShowPercentSignsAmpersandsAndBytesThatAreNoUtf8) {
  @autoreleasepool {
    beginInformationalSheet({"OK", "100 % of %s & %@ \xE4"}, nil, nil);
    ASSERT_TRUE(runMainLoopUntil([] { return !recordedCalls().empty(); }));
    EXPECT_TRUE(recordedCalls().at(0).ends_with("message 100 % of %s & %@ \xEF\xBF\xBD"))
        << recordedCalls().at(0);
  }
}

// One that holds its caller holds nobody but the run loop.
TEST(Sheets, AreBegunByTheRunLoopInOrderWhileNoOtherDialogIsUp) {
  @autoreleasepool {
    beginInformationalSheet({"OK", "one"}, nil, nil);
    beginInformationalSheet({"OK", "two"}, nil, nil);
    EXPECT_EQ(recordedCalls(), Calls{});

    int rounds = 0;
    ASSERT_TRUE(runMainLoopUntil([&] { return ++rounds > 20; }, NSModalPanelRunLoopMode));
    EXPECT_EQ(recordedCalls(), Calls{});

    ASSERT_TRUE(runMainLoopUntil([] { return recordedCalls().size() == 2; }));
    EXPECT_TRUE(recordedCalls().at(0).ends_with("message one"));
    EXPECT_TRUE(recordedCalls().at(1).ends_with("message two"));
  }
}

}  // namespace
}  // namespace tavenhall
