#include "pane/install_data_pane.h"
#include "pane/process_wide.h"
#include "tests/support/recording_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;

struct Progress {
  std::int32_t mode;
  std::int64_t copied;  // units of 1024 bytes
  double maximum;
};

// The value that the bar is set to.
double barValueFor(const Progress& progress) {
  RecordingHost host;
  host.barMaximum = progress.maximum;
  InstallDataPane pane(host);
  pane.gInstallMode = progress.mode;
  pane.kBytesCopied = progress.copied;
  pane.updateProgress();
  EXPECT_EQ(host.linesThatBegin("progress.value ").size(), 1U);
  return host.barValue();
}

std::vector<std::string> statusFor(const std::string& item) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gItemCurrentlyBeingInstalled.assign(item);
  pane.updateProgress();
  return host.linesThatBegin("status ");
}

// ---- The two dispatches ----

TEST(ProgressDisplay, TheBarAndTheStatusChangeInOrderInsideTwoDispatches) {
  RecordingHost host;
  host.barMaximum = 1000;
  InstallDataPane pane(host);
  pane.gInstallMode = 2;
  pane.kBytesCopied = 640;
  pane.gItemCurrentlyBeingInstalled.assign("Keyboards");

  pane.updateProgress();

  EXPECT_THAT(host.lines(),
              ElementsAre("main: animation.begin", "main: animation.duration 0", "main: progress.value 640",
                          "main: progress.display", "main: animation.end",
                          "main: status Installing... Keyboards", "main: status.needsDisplay"));
  EXPECT_EQ(host.dispatches(), 2);
}

TEST(ProgressDisplay, TheStatusIsADispatchOfItsOwnAfterTheBars) {
  RecordingHost host;
  InstallDataPane pane(host);
  std::vector<std::string> dispatchOfEachLine;
  host.onLine = [&](const std::string& line) {
    dispatchOfEachLine.push_back(std::to_string(host.dispatches()) + " " + line);
  };

  pane.updateProgress();

  EXPECT_THAT(dispatchOfEachLine,
              ElementsAre("1 main: animation.begin", "1 main: animation.duration 0", "1 main: progress.value 0",
                          "1 main: progress.display", "1 main: animation.end", "2 main: status Installing... ",
                          "2 main: status.needsDisplay"));
}

TEST(ProgressDisplay, AWorkerThreadWaitsForBothDispatches) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.kBytesCopied = 7;
  std::size_t linesWhenItReturned = 0;

  host.serve([&] {
    pane.updateProgress();
    linesWhenItReturned = host.lines().size();
  });

  EXPECT_EQ(linesWhenItReturned, 7U);
  EXPECT_EQ(host.barValue(), 7.0);
}

TEST(ProgressDisplay, TheRangeOfTheBarStaysAsItIs) {
  RecordingHost host;
  host.barMaximum = 1000;
  InstallDataPane pane(host);
  pane.gInstallMode = 4;
  pane.kBytesCopied = 2500;
  pane.totalNumBytesExpectedAcrossAllVolumes = 1;
  pane.updateProgress();
  EXPECT_EQ(host.barMaximum, 1000.0);
  EXPECT_THAT(host.linesThatBegin("progress.m"), ElementsAre());
}

// ---- Mode 2 and its like ----

TEST(ProgressDisplay, OutsideMode4AValueAboveTheMaximumIsPassedUnchanged) {
  for (const std::int32_t mode : {0, 2, 3}) {
    EXPECT_EQ(barValueFor({mode, 2500, 1000.0}), 2500.0) << mode;
  }
}

TEST(ProgressDisplay, TheValueIsTheCopiedCountWhateverTheExpectedSize) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gInstallMode = 2;
  pane.kBytesCopied = 12345;
  pane.totalNumBytesExpectedAcrossAllVolumes = 1024;
  pane.updateProgress();
  EXPECT_EQ(host.barValue(), 12345.0);
}

TEST(ProgressDisplay, CountsBeyond32BitsReachTheBar) {
  EXPECT_EQ(barValueFor({2, 5000000000, 100.0}), 5000000000.0);
}

// ---- Mode 4 ----

TEST(ProgressDisplay, InMode4TheBarStartsAgainFromTheLeft) {
  EXPECT_EQ(barValueFor({4, 2500, 1000.0}), 500.0);
  EXPECT_EQ(barValueFor({4, 1001, 1000.0}), 1.0);
}

TEST(ProgressDisplay, InMode4AMultipleOfTheMaximumStaysFull) {
  EXPECT_EQ(barValueFor({4, 2000, 1000.0}), 1000.0);
  EXPECT_EQ(barValueFor({4, 7000, 1000.0}), 1000.0);
}

TEST(ProgressDisplay, InMode4AValueEqualToTheMaximumStaysFull) {
  EXPECT_EQ(barValueFor({4, 1000, 1000.0}), 1000.0);
}

TEST(ProgressDisplay, InMode4AValueBelowTheMaximumIsPassedUnchanged) {
  EXPECT_EQ(barValueFor({4, 999, 1000.0}), 999.0);
  EXPECT_EQ(barValueFor({4, 0, 1000.0}), 0.0);
}

TEST(ProgressDisplay, InMode4AFractionalMaximumLeavesAFraction) {
  EXPECT_EQ(barValueFor({4, 2000, 976.5625}), 46.875);
}

TEST(ProgressDisplay, InMode4AMaximumThatIsNotPositiveSkipsTheWrap) {
  EXPECT_EQ(barValueFor({4, 2500, 0.0}), 2500.0);
  EXPECT_EQ(barValueFor({4, 2500, -1000.0}), 2500.0);
}

TEST(ProgressDisplay, InMode4AnEnormousValueWrapsAtOnce) {
  EXPECT_EQ(barValueFor({4, std::int64_t{1} << 62, 3.0}), 1.0);
  EXPECT_EQ(barValueFor({4, std::int64_t{1} << 62, 1.0}), 1.0);
}

// ---- The status line ----

TEST(ProgressDisplay, TheStatusNamesTheItemBeingInstalled) {
  EXPECT_THAT(statusFor("Glass Rivers"), ElementsAre("status Installing... Glass Rivers"));
}

TEST(ProgressDisplay, WithoutAnItemTheStatusEndsAfterItsBlank) {
  EXPECT_THAT(statusFor(""), ElementsAre("status Installing... "));
}

TEST(ProgressDisplay, AnItemsPercentSignsAndUmlautsStandAsTheyAre) {
  EXPECT_THAT(statusFor("100%s Flügel %n"), ElementsAre("status Installing... 100%s Flügel %n"));
}

TEST(ProgressDisplay, TheLongestItemIsShownWhole) {
  const std::string item(511, 'i');
  EXPECT_THAT(statusFor(item), ElementsAre("status Installing... " + item));
}

// ---- The counter ----

TEST(ProgressDisplay, EveryCallAddsOneToTheAsteriskCounter) {
  RecordingHost host;
  InstallDataPane pane(host);
  const int before = sAsteriskAnimationCounter;
  pane.updateProgress();
  EXPECT_EQ(sAsteriskAnimationCounter, before + 1);
  pane.gInstallMode = 4;
  pane.updateProgress();
  EXPECT_EQ(sAsteriskAnimationCounter, before + 2);
}

TEST(ProgressDisplay, TheCounterGoesUpBetweenTheTwoDispatches) {
  RecordingHost host;
  InstallDataPane pane(host);
  const int before = sAsteriskAnimationCounter;
  std::vector<int> added;
  host.onLine = [&](const std::string& line) {
    if (line == "main: animation.end" || line == "main: status Installing... ") {
      added.push_back(sAsteriskAnimationCounter - before);
    }
  };
  pane.updateProgress();
  EXPECT_THAT(added, ElementsAre(0, 1));
}

TEST(ProgressDisplay, TheLoggingCountersAreLeftAlone) {
  RecordingHost host;
  InstallDataPane pane(host);
  progressSizeForLoggingUnitBytes = 12345.0F;
  progressCounterForLogging = 6;
  pane.updateProgress();
  EXPECT_EQ(progressSizeForLoggingUnitBytes, 12345.0F);
  EXPECT_EQ(progressCounterForLogging, 6);
}

}  // namespace

}  // namespace tavenhall::test
