#include "host/engine/run_record.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tavenhall::test {
namespace {

constexpr std::array<const char*, 2> kButtons{"OK", "Skip"};
constexpr Alert kAlert{"Ready for next volume", "Insert Northfield Outrider disc.", kButtons, 1};

PaneSnapshot snapshot(std::int32_t ready, std::int32_t mode, std::int64_t kBytes) {
  PaneSnapshot state;
  state.readyToProceed = ready;
  state.installMode = mode;
  state.kBytesCopied = kBytes;
  return state;
}

TEST(RunSuccess, APageThatWasNotLeftForwardsIsNone) {
  RunRecord record;
  record.copyStarted();
  record.copyEnded(1);
  EXPECT_FALSE(record.isLeft());
  EXPECT_FALSE(record.isSuccess());
}

TEST(RunSuccess, APageThatWasLeftForwardsAfterGoodCopiesIsOne) {
  RunRecord record;
  record.copyStarted();
  record.copyEnded(1);
  record.leftForward();
  EXPECT_TRUE(record.isLeft());
  EXPECT_TRUE(record.isSuccess());
}

TEST(RunSuccess, ACopyThatGaveNoughtIsNoneWhateverTheNextOneGave) {
  RunRecord record;
  record.copyStarted();
  record.copyEnded(0);
  record.copyStarted();
  record.copyEnded(1);
  record.leftForward();
  EXPECT_FALSE(record.isSuccess());
}

TEST(RunSuccess, ASheetIsNone) {
  RunRecord record;
  record.sheetShown({"OK", "Failed to open input file."});
  record.leftForward();
  EXPECT_FALSE(record.isSuccess());
}

TEST(RunSuccess, AlertsDoNotMatter) {
  RunRecord record;
  record.alertShown(kAlert);
  record.alertAnswered(1001);
  record.leftForward();
  EXPECT_TRUE(record.isSuccess());
}

// The summary with every time set to 0.
std::string summaryOf(const RunRecord& record, const PaneSnapshot& state) {
  auto object = nlohmann::ordered_json::parse(record.summary(state));
  object["seconds"] = 0;
  for (auto& copy : object["copies"]) {
    copy["seconds"] = 0;
  }
  return object.dump();
}

TEST(RunSummary, OfNothing) {
  EXPECT_EQ(
      summaryOf(RunRecord(), {}),
      R"({"left":false,"ready":0,"mode":0,"seconds":0,"kBytesCopied":0,"copies":[],"alerts":[],"sheets":[]})");
}

TEST(RunSummary, OfEverything) {
  RunRecord record;
  record.copyStarted();
  record.copyEnded(1);
  record.alertShown(kAlert);
  record.alertAnswered(1001);
  record.copyStarted();
  record.copyEnded(0);
  record.sheetShown({"OK", "Failed to open input file."});
  record.leftForward();
  EXPECT_EQ(summaryOf(record, snapshot(1, 2, 204800)),
            R"({"left":true,"ready":1,"mode":2,"seconds":0,"kBytesCopied":204800,)"
            R"("copies":[{"seconds":0},{"seconds":0}],)"
            R"("alerts":[{"message":"Ready for next volume","informative":"Insert Northfield Outrider disc.",)"
            R"("buttons":["OK","Skip"],"answer":1001}],)"
            R"("sheets":[{"button":"OK","message":"Failed to open input file."}]})");
}

TEST(RunSummary, IsOneLineWithTimesToTheMillisecond) {
  RunRecord record;
  record.copyStarted();
  record.copyEnded(1);
  const std::string seconds = R"([0-9]+\.[0-9]{1,3})";
  EXPECT_THAT(record.summary({}),
              testing::ContainsRegex(R"(^\{"left":false,"ready":0,"mode":0,"seconds":)" + seconds +
                                     R"(,"kBytesCopied":0,"copies":\[\{"seconds":)" + seconds +
                                     R"(\}\],"alerts":\[\],"sheets":\[\]\})" + "\n$"));
}

TEST(RunSummary, ACopyThatStillRunsHasItsTimeSoFar) {
  RunRecord record;
  record.copyStarted();
  const auto object = nlohmann::ordered_json::parse(record.summary({}));
  ASSERT_EQ(object["copies"].size(), 1U);
  EXPECT_GE(object["copies"][0]["seconds"], 0.0);
}

TEST(RunSummary, AnAlertThatNobodyAnsweredHasNoAnswer) {
  RunRecord record;
  record.alertShown(kAlert);
  EXPECT_EQ(nlohmann::ordered_json::parse(record.summary({}))["alerts"].dump(),
            R"([{"message":"Ready for next volume","informative":"Insert Northfield Outrider disc.",)"
            R"("buttons":["OK","Skip"]}])");
}

TEST(RunSummary, TextsThatAreNotUtf8AreReplaced) {
  RunRecord record;
  record.sheetShown({"OK", "Caf\xE9"});
  EXPECT_THAT(record.summary({}), testing::HasSubstr("Caf\xEF\xBF\xBD"));
}

}  // namespace
}  // namespace tavenhall::test
