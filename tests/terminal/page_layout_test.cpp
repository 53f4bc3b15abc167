#include "host/terminal/page_layout.h"

#include "tests/terminal/in_utf8.h"
#include "tests/terminal/page_driver.h"
#include "tests/terminal/rendered.h"

#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using PageLayout = InUtf8;

TEST_F(PageLayout, TheStepsStandAtTheSide) {
  PageDriver driver;
  driver.enter();
  const auto rows = rowsOf(driver);
  EXPECT_EQ(rows[3].substr(0, 20), "  ✓ Introduction  ");
  EXPECT_THAT(rows[4], HasSubstr("✓ Installation"));
  EXPECT_THAT(rows[5], HasSubstr("● Installing"));
  EXPECT_THAT(rows[6], HasSubstr("    Tessaphon Data"));
  EXPECT_THAT(rows[7], HasSubstr("○ Summary"));
}

TEST_F(PageLayout, TheStepsAreAsWideAsTheirLongestWordAsFarAsAThirdGoes) {
  Introduction introduction = PageDriver::plainIntroduction();
  introduction.pageTitle = "Samplebibliotheken";
  PageDriver fitting(introduction);
  EXPECT_EQ(rowsOf(fitting, kSmallestPage)[3], "  ● Introduction        Welcome to the Tessaphon");
  EXPECT_EQ(rowsOf(fitting, kSmallestPage)[5], "  ○ Samplebibliotheken");
  introduction.pageTitle = "Samplebibliotheksinstallation";
  PageDriver beyond(introduction);
  EXPECT_THAT(rowsOf(beyond, kSmallestPage)[6], StartsWith("    nstallation         "));
}

// Copies at 20 MB a second for so long, of 2.0 GB.
void copyFor(PageDriver& driver, int seconds) {
  driver.at(0);
  driver.enter();
  driver.receive("{'event':'progress.max','value':1953125}");
  driver.receive("{'event':'phase','phase':'copying','volume':2,'volumes':3,'disc':'Tessaphon B','seconds':0}");
  for (int tenth = 1; tenth <= seconds * 10; ++tenth) {
    driver.at(tenth / 10.0);
    driver.receive("{'event':'progress.value','value':" + std::to_string(tenth * 1953.125) + "}");
  }
  driver.receive("{'event':'status','text':'Installing... Keyboards'}");
}

TEST_F(PageLayout, TheBarHasThePhaseAboveAndItsNumbersBelow) {
  PageDriver driver;
  copyFor(driver, 43);
  const auto rows = rowsOf(driver);
  EXPECT_EQ(rows[16], "                        Disc 2 of 3: Tessaphon B - copying");
  EXPECT_THAT(rows[17], AllOf(HasSubstr("━━━━━━━━━━━━━━━━━━━────────────────────"), HasSubstr("43 %")));
  EXPECT_EQ(rows[18], "                        Installing... Keyboards");
  EXPECT_EQ(rows[19], "                        860.0 MB of 2.0 GB copied                  20.0 MB/s");
  EXPECT_EQ(rows[20], "                        43 s passed                  less than a minute left");
}

TEST_F(PageLayout, TheWaitForADiscIsCountedDownWithoutANumberOfACopy) {
  PageDriver driver;
  copyFor(driver, 43);
  driver.receive(
      "{'event':'phase','phase':'looking','volume':3,'volumes':3,'disc':'Tessaphon C','seconds':10}");
  EXPECT_EQ(rowsOf(driver)[16], "                        Disc 3 of 3: Tessaphon C - looking for it: 10 s");
  EXPECT_EQ(rowsOf(driver, kSmallestPage)[12], "                     Disc 3 of 3 - looking for it: 10 s");
  driver.at(46.5);
  const auto rows = rowsOf(driver);
  EXPECT_EQ(rows[16], "                        Disc 3 of 3: Tessaphon C - looking for it: 7 s");
  EXPECT_EQ(rows[19], "                        860.0 MB of 2.0 GB copied");
  EXPECT_EQ(rows[20], "                        46 s passed");
}

TEST_F(PageLayout, ADiscThatWasNotThereIsReported) {
  PageDriver driver;
  driver.enter();
  driver.receive(
      "{'event':'phase','phase':'not-found','volume':1,'volumes':0,'disc':'Tessaphon A','seconds':0}");
  EXPECT_EQ(rowsOf(driver)[16], "                        Disc 1: Tessaphon A - not found, waiting for you");
}

TEST_F(PageLayout, TheHelpTellsWhatHappensAndTheKeys) {
  PageDriver driver;
  copyFor(driver, 3);
  driver.act(Action::help);
  const auto rows = rowsOf(driver);
  EXPECT_THAT(rows, Contains(HasSubstr("Files are copied from the disc or from the folder beside")));
  EXPECT_THAT(rows, Contains(HasSubstr("q or Ctrl-C: leave; asks first")));
  driver.press('c');
  EXPECT_FALSE(driver.page.hasWindow());
}

TEST_F(PageLayout, ShowsNoTimeLeftBeforeItIsKnown) {
  PageDriver driver;
  copyFor(driver, 5);
  EXPECT_THAT(rowsOf(driver), Not(Contains(HasSubstr("left"))));
}

TEST_F(PageLayout, ABarThatWrapsHasNeitherPercentNorTimeRemaining) {
  Introduction introduction = PageDriver::plainIntroduction();
  introduction.barWraps = true;
  PageDriver driver(introduction);
  copyFor(driver, 20);
  const auto rows = rowsOf(driver);
  EXPECT_THAT(rows[17], Not(HasSubstr("%")));
  EXPECT_EQ(rows[19], "                        400.0 MB copied                            20.0 MB/s");
  EXPECT_EQ(rows[20], "                        20 s passed");
}

TEST_F(PageLayout, ALongTimeLeftIsReportedInHoursAndMinutes) {
  PageDriver driver;
  driver.at(0);
  driver.enter();
  driver.receive("{'event':'phase','phase':'copying','volume':1,'volumes':1,'disc':'','seconds':0}");
  driver.receive("{'event':'progress.max','value':100000}");
  for (int second = 1; second <= 60; ++second) {
    driver.at(second);
    driver.receive("{'event':'progress.value','value':" + std::to_string(second * 20) + "}");
  }
  EXPECT_THAT(rowsOf(driver)[20], HasSubstr("about 1 h 30 min left"));
}

TEST_F(PageLayout, AWindowStandsAboveTheProgress) {
  PageDriver driver;
  driver.enter();
  driver.receive(
      "{'event':'alert','message':'Ready for next volume','informative':'Please insert Tessaphon B',"
      "'buttons':['OK','Skip'],'style':1}");
  const auto rows = rowsOf(driver);
  EXPECT_THAT(rows[4], HasSubstr("╭────────────────────────────────────────────╮"));
  EXPECT_THAT(rows[6], HasSubstr("│  Ready for next volume                     │"));
  EXPECT_THAT(rows[8], HasSubstr("│  Please insert Tessaphon B                 │"));
  EXPECT_THAT(rows[10], HasSubstr("│                          [ OK ]  [ Skip ]  │"));
  EXPECT_THAT(rows[11], HasSubstr("╰────────────────────────────────────────────╯"));
}

TEST_F(PageLayout, ALongTextInAWindowScrolls) {
  PageDriver driver;
  driver.enter();
  std::string text;
  for (int i = 1; i <= 50; ++i) {
    text += "line " + std::to_string(i) + "\\n";
  }
  driver.receive("{'event':'alert','message':'Long','informative':'" + text + "','buttons':['OK'],'style':1}");
  auto layers = layOut(driver.page, driver.now(), kUsual, unicodeSigns());
  EXPECT_GT(layers.back().extent.maximum, 30);
  driver.page.act(Action::toEnd, layers.back().extent, driver.now());
  const auto rows = rowsOf(driver);
  EXPECT_THAT(rows, Contains(HasSubstr("line 50")));
  EXPECT_THAT(rows, Contains(HasSubstr("[ OK ]")));
}

TEST_F(PageLayout, ALongTextOnThePageHasAScrollBar) {
  PageDriver driver;
  driver.enter();
  std::string text;
  for (int i = 1; i <= 50; ++i) {
    text += "line " + std::to_string(i) + "\\n";
  }
  driver.receive("{'event':'instructions','text':'" + text + "'}");
  const auto rows = rowsOf(driver);
  EXPECT_THAT(rows[5], AllOf(HasSubstr("line 1"), HasSubstr("┃")));
  EXPECT_THAT(rows[12], HasSubstr("│"));
}

TEST_F(PageLayout, AClickFindsTheButtonUnderIt) {
  PageDriver driver;
  const auto layers = layOut(driver.page, driver.now(), kUsual, unicodeSigns());
  const std::size_t column = std::string(rendered(layers, kUsual)[22]).find("[ Continue ]");
  ASSERT_NE(column, std::string::npos);
  EXPECT_EQ(buttonAt(layers, 22, static_cast<int>(column)), 1U);
  EXPECT_EQ(buttonAt(layers, 22, static_cast<int>(column) + 11), 1U);
  EXPECT_EQ(buttonAt(layers, 22, static_cast<int>(column) - 1), std::nullopt);
  EXPECT_EQ(buttonAt(layers, 21, static_cast<int>(column)), std::nullopt);
}

TEST_F(PageLayout, AClickBesideAWindowReachesNoButtonBehindIt) {
  PageDriver driver;
  driver.act(Action::leave);
  const auto layers = layOut(driver.page, driver.now(), kUsual, unicodeSigns());
  EXPECT_EQ(buttonAt(layers, 22, 70), std::nullopt);
}

TEST_F(PageLayout, ATooSmallWindowGetsOneLine) {
  PageDriver driver;
  EXPECT_THAT(rowsOf(driver, {3, 59}), ElementsAre("Make this window larger (60x20).", "", ""));
  EXPECT_THAT(rowsOf(driver, {1, 10}), ElementsAre("Make this…"));
}

TEST_F(PageLayout, ATooSmallWindowReportsAWaitingAlert) {
  PageDriver driver;
  driver.enter();
  driver.receive("{'event':'alert','message':'Next','informative':'Insert B','buttons':['OK'],'style':1}");
  EXPECT_EQ(rowsOf(driver, {19, 80})[0], "A prompt is waiting. Make this window larger (60x20).");
}

TEST_F(PageLayout, EverythingHasItsPlaceAtEverySize) {
  PageDriver driver;
  copyFor(driver, 43);
  driver.page.addMessage("sudo: a terminal is required to read the password; either use the -S option");
  driver.receive("{'event':'instructions','text':'日本語のテキスト and e\u0301 more\\n\\nand more'}");
  driver.receive(
      "{'event':'sheet','button':'OK','message':'A message that is rather long, and wraps in most windows'}");
  driver.receive(
      "{'event':'alert','message':'音源 Outrider','informative':'','buttons':['Weitermachen','Überspringen',"
      "'Ganz und gar nicht'],'style':1}");
  driver.act(Action::leave);
  for (int rows = 1; rows < 60; rows += 3) {
    for (int columns = 1; columns < 200; columns += 7) {
      SCOPED_TRACE(std::to_string(columns) + "x" + std::to_string(rows));
      static_cast<void>(rowsOf(driver, {rows, columns}));  // fails where something goes beyond its layer
    }
  }
}

TEST_F(PageLayout, WithoutUnicodeEverythingIsAscii) {
  PageDriver driver;
  copyFor(driver, 43);
  driver.act(Action::leave);
  for (const std::string& row : rowsOf(driver, kUsual, plainSigns())) {
    for (const char character : row) {
      EXPECT_TRUE(character >= ' ' && character < 0x7F) << row;
    }
  }
}

}  // namespace
}  // namespace tavenhall::test
