#include "tests/engine/engine_run.h"

#include "host/base/exit_status.h"

#include <chrono>
#include <gmock/gmock.h>

// What an engine performs, and what it counts as success.
namespace tavenhall::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

TEST_F(EngineRun, PerformsCommandsInTheirOrder) {
  run({Command::title, Command::enter, Command::back, Command::forward});
  EXPECT_THAT(TestPage::calls, ElementsAre("title", "enter 0", "exit 1", "exit 0"));
}

TEST_F(EngineRun, PerformsNothingAfterQuit) {
  run({Command::title, Command::quit, Command::enter});
  EXPECT_THAT(TestPage::calls, ElementsAre("title"));
}

TEST_F(EngineRun, NextIsOffUntilThePageEnablesIt) {
  run({Command::title});
  EXPECT_FALSE(nextIsEnabled);
  run({Command::enter});
  EXPECT_TRUE(nextIsEnabled);
}

TEST_F(EngineRun, RefusesAPluginOfAnotherInterfaceVersion) {
  EventHub events;
  Engine engine(events, ejectNote, [](ExitStatus, const std::string&) {});
  EXPECT_THROW(engine.makePage([](InstallerHost*, std::uint32_t) -> InstallerPane* { return nullptr; }),
               UsageError);
}

// ---- What counts as success ----

TEST_F(EngineRun, SucceedsWhenThePageIsLeftForwards) {
  script.onEnter = [](InstallerHost& host) { reportCopy(host); };
  run({Command::enter, Command::forward});
  EXPECT_TRUE(isSuccess);
  EXPECT_TRUE(summary.hasLeft);
}

TEST_F(EngineRun, FailsWhenNothingWasCopied) {
  run({Command::enter, Command::forward});
  EXPECT_FALSE(isSuccess);
}

// The page's own result was good.
TEST_F(EngineRun, FailsWhenTheAuditFindsAFailure) {
  script.onEnter = [](InstallerHost& host) {
    reportCopy(host);
    writeFile("/tmp/source/two.db", "two");
    host.copyFinished({"/tmp/source", "/tmp/destination"}, true);
  };
  run({Command::enter, Command::forward});
  EXPECT_FALSE(isSuccess);
  EXPECT_FALSE(summary.isInstalled);
  EXPECT_EQ(summary.audit.files, 2);
  EXPECT_EQ(summary.audit.failures, 1);
}

TEST_F(EngineRun, EnteringAgainBeginsANewAudit) {
  script.onEnter = [](InstallerHost& host) { reportCopy(host); };
  run({Command::enter, Command::enter, Command::forward});
  EXPECT_TRUE(isSuccess);
  EXPECT_EQ(summary.audit.files, 1);
}

TEST_F(EngineRun, FailsWhenThePageIsLeftBackwardsOrRefuses) {
  script.onEnter = [](InstallerHost& host) { reportCopy(host); };
  run({Command::enter, Command::back});
  EXPECT_FALSE(isSuccess);
  script.letsGoForward = false;
  run({Command::enter, Command::forward});
  EXPECT_FALSE(isSuccess);
}

TEST_F(EngineRun, FailsAfterASheet) {
  script.onEnter = [](InstallerHost& host) {
    host.beginInformationalSheet({"OK", "Failed to open input file."});
  };
  run({Command::enter, Command::forward});
  EXPECT_FALSE(isSuccess);
  ASSERT_EQ(summary.sheets.size(), 1U);
  EXPECT_EQ(summary.sheets[0].message, "Failed to open input file.");
}

TEST_F(EngineRun, FailsAfterACopyThatFailedWhateverTheNextOneGives) {
  script.install = [](InstallerHost& host) {
    for (const bool isCopied : {false, true}) {
      host.copyBegun({"/Volumes/A/TANVO", "/T"});
      host.copyFinished({"/Volumes/A/TANVO", "/T"}, isCopied);
    }
  };
  run({Command::enter, Command::wait, Command::forward});
  EXPECT_FALSE(isSuccess);
}

TEST_F(EngineRun, AlertsAreNoFailure) {
  script.onEnter = [](InstallerHost& host) {
    EXPECT_EQ(host.runModal({"Ready for next volume", "Insert B", kButtons, 1}), kAlertFirstButtonReturn);
    reportCopy(host);
  };
  run({Command::enter, Command::forward});
  EXPECT_TRUE(isSuccess);
  ASSERT_EQ(summary.alerts.size(), 1U);
  EXPECT_EQ(summary.alerts[0].alert.informative, "Insert B");
  EXPECT_EQ(summary.alerts[0].answer, kAlertFirstButtonReturn);
}

TEST_F(EngineRun, TheSummaryHasThePagesCountsAndTheTimesOfItsCopyThreads) {
  state.readyToProceed = 1;
  state.installMode = 2;
  state.kBytesCopied = 200;
  state.bytesWritten = 204801;
  state.filesDone = 7;
  script.install = [](InstallerHost& host) {
    host.pageThreadStarted("copySingleVolume");
    std::this_thread::sleep_for(20ms);
    host.pageThreadEnded("copySingleVolume");
  };
  run({Command::enter, Command::wait});
  EXPECT_EQ(summary.ready, 1);
  EXPECT_EQ(summary.mode, 2);
  EXPECT_EQ(summary.kBytesCopied, 200);
  EXPECT_EQ(summary.bytesWritten, 204801);
  EXPECT_EQ(summary.filesDone, 7);
  ASSERT_EQ(summary.copySeconds.size(), 1U);
  EXPECT_GE(summary.copySeconds[0], 0.02);
}

TEST_F(EngineRun, ACopyThreadThatStillRunsHasItsTimeSoFar) {
  script.onEnter = [](InstallerHost& host) { host.pageThreadStarted("copySingleVolume"); };
  run({Command::enter, Command::title});
  ASSERT_EQ(summary.copySeconds.size(), 1U);
  EXPECT_GE(summary.copySeconds[0], 0.0);
}

TEST_F(EngineRun, AbortsWhenDispatchIsCalledOnTheMainThread) {
  script.onEnter = [](InstallerHost& host) { dispatch(host, [] {}); };
  EXPECT_EXIT(run({Command::enter}), testing::KilledBySignal(SIGABRT),
              "dispatchSync was called on the main thread");
}

}  // namespace
}  // namespace tavenhall::test
