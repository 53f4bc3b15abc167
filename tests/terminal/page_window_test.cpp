#include "host/terminal/page_window.h"
#include "host/base/text.h"

#include "tests/terminal/page_driver.h"

#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kDiscAlert =
    "{'event':'alert','message':'Ready for next volume','informative':'Please insert Tessaphon B',"
    "'buttons':['OK'],'style':1}";
constexpr const char* kOptionalDiscAlert =
    "{'event':'alert','message':'Ready for next volume','informative':'Insert Northfield Outrider disc.',"
    "'buttons':['OK','Skip'],'style':1}";
constexpr const char* kSheet = "{'event':'sheet','button':'OK','message':'Failed to open input file.'}";

TEST(PageWindows, AnAlertIsAWindowWithItsButtons) {
  PageDriver driver;
  driver.enter();
  driver.receive(kDiscAlert);
  EXPECT_THAT(driver.windowTexts(), ElementsAre("Ready for next volume", "Please insert Tessaphon B"));
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("answer 1000"));
  EXPECT_FALSE(driver.page.hasWindow());
}

TEST(PageWindows, TheSecondButtonOfAnAlertIsReachedByTabAndArrowsAndKey) {
  PageDriver driver;
  driver.enter();
  driver.receive(kOptionalDiscAlert);
  driver.act(Action::focusNext);
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("answer 1001"));
  driver.receive(kOptionalDiscAlert);
  driver.act(Action::focusPrevious);
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("answer 1001"));
  driver.receive(kOptionalDiscAlert);
  driver.press('s');
  EXPECT_THAT(driver.requests(), ElementsAre("answer 1001"));
}

TEST(PageWindows, EscapeNeverSkipsADisc) {
  PageDriver driver;
  driver.enter();
  driver.receive(kOptionalDiscAlert);
  driver.act(Action::cancel);
  EXPECT_THAT(driver.requests(), IsEmpty());
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("answer 1001"));
}

TEST(PageWindows, EscapeAnswersAnAlertWithOneButton) {
  PageDriver driver;
  driver.enter();
  driver.receive(kDiscAlert);
  driver.act(Action::cancel);
  EXPECT_THAT(driver.requests(), ElementsAre("answer 1000"));
}

TEST(PageWindows, ASheetDoesNotStopTheClockAndWantsNothingOfTheEngine) {
  PageDriver driver;
  driver.enter();
  driver.receive(kSheet);
  EXPECT_TRUE(driver.page.meter().isRunning());
  EXPECT_THAT(driver.windowTexts(),
              ElementsAre("A problem", "Failed to open input file.", "The installation continues meanwhile."));
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), IsEmpty());
  EXPECT_FALSE(driver.page.hasWindow());
}

TEST(PageWindows, SheetsThatComeWhileOneIsUpJoinIt) {
  PageDriver driver;
  driver.enter();
  driver.receive(kSheet);
  driver.receive("{'event':'sheet','button':'OK','message':'Failed to copy file.'}");
  driver.receive(kSheet);
  driver.receive("{'event':'idle'}");
  EXPECT_THAT(driver.windowTexts(),
              ElementsAre("3 problems", "Failed to open input file.", "(2 times)", "Failed to copy file."));
}

TEST(PageWindows, FiftyThousandFailuresAreOneWindow) {
  PageDriver driver;
  driver.enter();
  for (int i = 0; i < 50000; ++i) {
    driver.receive(kSheet);
  }
  driver.receive("{'event':'idle'}");
  EXPECT_THAT(driver.windowTexts(),
              ElementsAre("50 000 problems", "Failed to open input file.", "(50 000 times)"));
  driver.act(Action::press);
  EXPECT_FALSE(driver.page.hasWindow());
}

TEST(PageWindows, MessagesThatAllDifferDoNotGrowWithoutEnd) {
  SheetList sheets;
  for (int i = 0; i < 5000; ++i) {
    sheets.add("Failure " + std::to_string(i), "OK");
  }
  const PageWindow window = sheets.window(false);
  EXPECT_EQ(window.heading, "5 000 problems");
  EXPECT_EQ(window.paragraphs.back().text, "and 4 800 more");
  EXPECT_LT(window.paragraphs.size(), 500U);
}

TEST(PageWindows, AnAlertStandsAboveASheetWhichComesAfterIt) {
  PageDriver driver;
  driver.enter();
  driver.receive(kSheet);
  driver.receive(kDiscAlert);
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), ElementsAre("answer 1000"));
  EXPECT_THAT(driver.windowTexts(),
              ElementsAre("A problem", "Failed to open input file.", "The installation continues meanwhile."));
}

TEST(PageWindows, TheLeaveWindowIsAboveAllOthers) {
  PageDriver driver;
  driver.enter();
  driver.receive(kDiscAlert);
  driver.act(Action::leave);
  driver.act(Action::press);
  EXPECT_THAT(driver.requests(), IsEmpty());
  EXPECT_THAT(driver.windowTexts(), ElementsAre("Ready for next volume", "Please insert Tessaphon B"));
}

TEST(PageWindows, AWindowScrollsByItself) {
  PageDriver driver;
  driver.enter();
  driver.receive(kSheet);
  driver.act(Action::lineDown);
  EXPECT_EQ(driver.page.windows().back().scroll, 1);
  EXPECT_EQ(driver.page.textScroll(), 0);
}

TEST(PageWindows, ThePagesButtonsAreOutOfReachBehindAWindow) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'next','enabled':true}");
  driver.receive(kSheet);
  EXPECT_EQ(driver.page.focus(), std::nullopt);
  driver.press('c');
  EXPECT_THAT(driver.requests(), IsEmpty());
}

// ---- Keys ----

std::string keysOf(const std::vector<std::string>& labels) {
  std::string keys;
  for (const PageButton& button : buttonsWithKeys(labels)) {
    keys += button.hotKey == '\0' ? '-' : button.hotKey;
  }
  return keys;
}

TEST(PageWindows, AButtonsKeyIsItsFirstLetterThatIsFree) {
  EXPECT_EQ(keysOf({"OK", "Skip"}), "os");
  EXPECT_EQ(keysOf({"Continue", "Cancel", "Copy"}), "cao");
}

TEST(PageWindows, AButtonWithoutAFreeLetterHasNoKey) {
  EXPECT_EQ(keysOf({"OK", "Ok", "KO"}), "ok-");
  EXPECT_EQ(keysOf({"はい"}), "-");
}

TEST(PageWindows, LargeNumbersAreGrouped) {
  EXPECT_EQ(groupedNumber(0), "0");
  EXPECT_EQ(groupedNumber(999), "999");
  EXPECT_EQ(groupedNumber(1000), "1 000");
  EXPECT_EQ(groupedNumber(1234567), "1 234 567");
}

}  // namespace
}  // namespace tavenhall::test
