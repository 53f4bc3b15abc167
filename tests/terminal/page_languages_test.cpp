// The page's own words in every language: each has its place, and each button its key.
#include "host/terminal/page_layout.h"
#include "tests/terminal/in_language.h"
#include "tests/terminal/page_driver.h"
#include "tests/terminal/rendered.h"

#include <functional>
#include <gmock/gmock.h>
#include <set>
#include <string>

namespace tavenhall::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

Introduction shortOfRoom() {
  Introduction introduction = PageDriver::plainIntroduction();
  introduction.freeBytes = 300000000;
  introduction.isDestinationThere = false;
  return introduction;
}

// A copy of many gigabytes that has gone on for an hour, and has as long to go.
void copyForAnHour(PageDriver& driver) {
  driver.at(0);
  driver.enter();
  driver.receive("{'event':'progress.max','value':195312500}");
  driver.receive("{'event':'phase','phase':'copying','volume':1,'volumes':1,'disc':'','seconds':0}");
  for (int second = 1; second <= 3599; ++second) {
    driver.at(second);
    driver.receive("{'event':'progress.value','value':" + std::to_string(second * 22000) + "}");
  }
}

RunResult failedResult() {
  RunResult result;
  result.hasSummary = true;
  result.bytes = 204800000;
  result.time = std::chrono::seconds(3599);
  result.destination = PageDriver::plainIntroduction().destination;
  result.log = "/Users/tester/Library/Caches/Tavenhall/installationLog.txt";
  for (const char* kind : {"no-destination", "not-found", "folder", "source", "target", "size"}) {
    result.failures.first.push_back({kind, "/T/" + std::string(kind), ""});
  }
  result.failures.count = 1203;
  result.messages = {"sudo: no"};
  return result;
}

// A state with words of the program's own.
struct State {
  const char* name;
  std::function<void(PageDriver&)> reach;
  bool isRoomShort = false;
};

const std::vector<State>& states() {
  static const std::vector<State> kStates{
      {"the introduction", [](PageDriver&) {}},
      {"an introduction with warnings", [](PageDriver&) {}, true},
      {"the question of room", [](PageDriver& driver) { driver.act(Action::press); }, true},
      {"leaving at once", [](PageDriver& driver) { driver.act(Action::leave); }},
      {"a copy", copyForAnHour},
      {"leaving a copy",
       [](PageDriver& driver) {
         copyForAnHour(driver);
         driver.act(Action::leave);
       }},
      {"a password",
       [](PageDriver& driver) {
         copyForAnHour(driver);
         driver.page.setPasswordPrompt("[sudo] password for tester:", driver.now());
       }},
      {"two sheets",
       [](PageDriver& driver) {
         copyForAnHour(driver);
         driver.receive("{'event':'sheet','button':'','message':'Failed to copy file.'}");
         driver.receive("{'event':'sheet','button':'','message':'Failed to copy file.'}");
       }},
      {"leaving after a failure",
       [](PageDriver& driver) {
         driver.enter();
         driver.receive("{'event':'sheet','button':'','message':'Failed to copy file.'}");
         driver.receive("{'event':'idle'}");
         driver.act(Action::leave);
       }},
      {"a failed installation", [](PageDriver& driver) { driver.page.end(failedResult(), driver.now()); }},
      {"a good installation",
       [](PageDriver& driver) {
         RunResult result = failedResult();
         result.status = ExitStatus::success;
         result.failures = {};
         driver.page.end(result, driver.now());
       }},
  };
  return kStates;
}

class PageInEveryLanguage : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override { speak(GetParam()); }
};
INSTANTIATE_TEST_SUITE_P(Each, PageInEveryLanguage,
                         testing::Values("en", "de", "es", "fr", "it", "ja", "zh_CN"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST_P(PageInEveryLanguage, ItsWordsStandWholeAndApart) {
  for (const Size size : {kSmallestPage, kUsual, Size{40, 120}}) {
    for (const State& state : states()) {
      SCOPED_TRACE(std::to_string(size.columns) + " columns, " + state.name);
      PageDriver driver(state.isRoomShort ? shortOfRoom() : PageDriver::plainIntroduction());
      state.reach(driver);
      EXPECT_THAT(rowsOf(driver, size), Each(Not(HasSubstr("…"))));
    }
  }
}

TEST_P(PageInEveryLanguage, EachButtonHasItsKey) {
  for (const State& state : states()) {
    SCOPED_TRACE(state.name);
    PageDriver driver(state.isRoomShort ? shortOfRoom() : PageDriver::plainIntroduction());
    state.reach(driver);
    std::vector<PageButton> buttons = driver.page.buttons();
    if (driver.page.hasWindow() && !driver.page.takesTyping()) {
      buttons = driver.page.windows().back().buttons;
    }
    std::set<char> keys;
    for (const PageButton& button : buttons) {
      EXPECT_NE(button.hotKey, '\0') << button.label;
      EXPECT_TRUE(keys.insert(button.hotKey).second) << button.label;
    }
  }
}

// Where there are few signs the keys' names are longer; how to leave is told all the same.
TEST_P(PageInEveryLanguage, HowToLeaveIsReportedInTheSmallestWindow) {
  PageDriver driver;
  copyForAnHour(driver);
  driver.act(Action::leave);
  const auto wide = layOut(driver.page, driver.now(), {24, 200}, plainSigns());
  const auto narrow = rowsOf(driver, kSmallestPage, plainSigns());
  const std::string leaving = wide.front().runs.back().text;
  const std::string last = leaving.substr(leaving.rfind("   ") + 3);
  EXPECT_THAT(narrow.back(), testing::EndsWith(last));
}

TEST_P(PageInEveryLanguage, TheLineOfATooSmallWindowFits) {
  PageDriver driver;
  EXPECT_THAT(rowsOf(driver, {19, 59})[0], AllOf(HasSubstr("60x20"), Not(HasSubstr("…"))));
  driver.enter();
  driver.receive("{'event':'alert','message':'Next','informative':'Insert B','buttons':['OK'],'style':1}");
  EXPECT_THAT(rowsOf(driver, {19, 59})[0], AllOf(HasSubstr("60x20"), Not(HasSubstr("…"))));
}

// ---- What single languages say ----

std::vector<std::string> labelsOf(const std::vector<PageButton>& buttons) {
  std::vector<std::string> labels;
  for (const PageButton& button : buttons) {
    labels.push_back(button.label + " " + (button.hotKey == '\0' ? '-' : button.hotKey));
  }
  return labels;
}

TEST(PageLanguage, AGermanButtonHasALetterOfItsGermanLabel) {
  speak("de");
  PageDriver driver;
  EXPECT_THAT(labelsOf(driver.page.buttons()), ElementsAre("Zurück z", "Fortfahren f"));
  driver.act(Action::leave);
  EXPECT_THAT(labelsOf(driver.page.windows().back().buttons), ElementsAre("Fortsetzen f", "Verlassen v"));
  driver.press('v');
  EXPECT_THAT(driver.requests(), ElementsAre("leave"));
}

TEST(PageLanguage, AJapaneseButtonHasTheEnglishKeyBehindItsLabel) {
  speak("ja");
  PageDriver driver;
  EXPECT_THAT(labelsOf(driver.page.buttons()), ElementsAre("戻る(G) g", "続ける(C) c"));
  driver.act(Action::leave);
  EXPECT_THAT(labelsOf(driver.page.windows().back().buttons), ElementsAre("続行(G) g", "終了(L) l"));
  driver.press('l');
  EXPECT_THAT(driver.requests(), ElementsAre("leave"));
}

TEST(PageLanguage, TheGermanNumbersBelowTheBarGiveWayToEachOther) {
  speak("de");
  PageDriver driver;
  copyForAnHour(driver);
  const auto usual = rowsOf(driver, kUsual);
  EXPECT_EQ(usual[19], "                        81,1 GB von 200,0 GB kopiert               22,5 MB/s");
  EXPECT_EQ(usual[20], "                        59 min 59 s vergangen           noch etwa 1 h 30 min");
  const auto small = rowsOf(driver, kSmallestPage);
  EXPECT_EQ(small[15], "                     81,1 GB von 200,0 GB      22,5 MB/s");
  EXPECT_EQ(small[16], "                     59 min 59 s    noch etwa 1 h 30 min");
}

TEST(PageLanguage, AFailureThatIsReportedInJapaneseHasItsFile) {
  speak("ja");
  RunResult result = failedResult();
  result.failures.count = 1;
  result.failures.first = {{"target", "/Volumes/A/TANVO/2.db", ""}};
  EXPECT_EQ(resultHeading(result).text, "インストールは完全ではありません。");
  EXPECT_THAT(
      textOf(resultLines(result, 100)),
      ElementsAre("失敗 1 件。以下に示すものを直してから、再度インストールしてください。", "",
                  "コピー        204.8 MB（59 min 59 s）",
                  "コピー先      /Users/tester/Library/Application Support/Tavenhall/TANVO",
                  "ログ          /Users/tester/Library/Caches/Tavenhall/installationLog.txt", "",
                  "書き込めません", "  /Volumes/A/TANVO/2.db", "", "実行されたコマンドの出力", "  sudo: no"));
}

TEST(PageLanguage, TheLastWordIsInGerman) {
  speak("de");
  RunResult result = failedResult();
  EXPECT_EQ(closingText(result),
            "Die Installation ist unvollständig. Kopiert: 204,8 MB in 59 min 59 s.\n"
            "Das Protokoll ist /Users/tester/Library/Caches/Tavenhall/installationLog.txt.\n");
  result.status = ExitStatus::success;
  result.failures.count = 0;
  result.bytes.reset();
  EXPECT_THAT(closingText(result), testing::StartsWith("Installiert: in 59 min 59 s.\n"));
}

TEST(PageLanguage, ChineseSentencesStandWithoutABlankBetweenThem) {
  speak("zh_CN");
  PageDriver driver(shortOfRoom());
  EXPECT_THAT(rowsOf(driver, {24, 120}),
              Contains(HasSubstr("空间可能不足。数据需要 2.0 GB，磁盘可用空间为 300.0 MB。")));
}

TEST(PageLanguage, GermanProblemsAreCounted) {
  speak("de");
  PageDriver driver;
  driver.enter();
  const std::string sheet = "{'event':'sheet','button':'','message':'Failed to copy file.'}";
  driver.receive(sheet);
  EXPECT_THAT(driver.windowTexts(),
              ElementsAre("Ein Problem", "Failed to copy file.", "Die Installation läuft inzwischen weiter."));
  driver.receive(sheet);
  EXPECT_THAT(driver.windowTexts(), ElementsAre("2 Probleme", "Failed to copy file.", "(2-mal)",
                                                "Die Installation läuft inzwischen weiter."));
}

}  // namespace
}  // namespace tavenhall::test
