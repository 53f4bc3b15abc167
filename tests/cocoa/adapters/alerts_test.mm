#include "platform/cocoa/dialogs.h"
#include "tests/cocoa/stand-ins/dialogs.h"
#include "tests/cocoa/stand-ins/recorded_calls.h"

#import <Foundation/Foundation.h>
#include <array>
#include <gtest/gtest.h>

namespace tavenhall {
namespace {

using test::recordedCalls;
using Calls = std::vector<std::string>;

constexpr std::array<const char*, 2> kButtons = {"OK", "Skip"};
constexpr Alert kAlert = {"Ready for next volume", "Insert Tin & Parade, 100 %s.", kButtons, 1};

TEST(Alerts, AreMadeWithTheirButtonsInOrderTheirTextsAndTheirStyle) {
  test::recordAlerts([] { return 1001L; });

  EXPECT_EQ(runModalAlert(kAlert), 1001);
  EXPECT_EQ(recordedCalls(),
            (Calls{"NSAlert init", "NSAlert addButtonWithTitle: OK", "NSAlert addButtonWithTitle: Skip",
                   "NSAlert setMessageText: Ready for next volume",
                   "NSAlert setInformativeText: Insert Tin & Parade, 100 %s.", "NSAlert setAlertStyle: 1",
                   "NSAlert runModal"}));
}

TEST(Alerts, ShowsATextThatIsNotUtf8) {
  test::recordAlerts([] { return 1000L; });
  constexpr std::array<const char*, 1> kButton = {"OK"};

  EXPECT_EQ(runModalAlert({"Ready", "Please insert \xE4", kButton, 1}), 1000);
  EXPECT_EQ(recordedCalls().at(3), "NSAlert setInformativeText: Please insert \xEF\xBF\xBD");
}

TEST(Alerts, AnExceptionEndsHereAndCountsAsTheLastButton) {
  test::recordAlerts([]() -> long {
    [NSException raise:NSInternalInconsistencyException format:@"no display"];
    return 1000;
  });

  EXPECT_EQ(runModalAlert(kAlert), 1001);
  constexpr std::array<const char*, 1> kButton = {"OK"};
  EXPECT_EQ(runModalAlert({"Ready", "Please insert a disc", kButton, 1}), 1000);
}

}  // namespace
}  // namespace tavenhall
