#include "pane/install_data_pane.h"
#include "pane/process_wide.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <atomic>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kDisc = "/Volumes/Disc/TANVO";

struct VolumePage {
  RecordingHost host;
  InstallDataPane pane{host};

  explicit VolumePage(std::int32_t mode, const char* source = kDisc, const char* dest = "/tmp/to") {
    pane.gInstallMode = mode;
    pane.copySrcPath = source;
    pane.copyDstPath = dest;
    pane.gTANVOorDOVAnameOnly.assign("TANVO");
    pane.copySingleVolumeRunning = 1;
  }
};

std::vector<std::string> attempts() { return thoseThatBegin(logMessages(), "copySingleVolume: "); }

// ---- Waiting for a disc ----

TEST_F(VolumeCopy, ADiscOfHiddenFilesOnlyIsTriedThreeTimesIn15SecondsAndThenCopied) {
  writeFile("/Volumes/Disc/TANVO/.hidden", "x");
  writeFile("/Volumes/Disc/TANVO/.Trashes/one.dat", "x");
  VolumePage page(2);
  EventTrace trace(page.host);
  page.pane.copySingleVolume();
  EXPECT_THAT(trace.events(),
              ElementsAre("log copySingleVolume: no items found in top level folder. Attempt 0",
                          "log copySingleVolume: sleep to give disc a chance to initialize", "sleep 5",
                          "log copySingleVolume: no items found in top level folder. Attempt 1",
                          "log copySingleVolume: sleep to give disc a chance to initialize", "sleep 5",
                          "log copySingleVolume: no items found in top level folder. Attempt 2",
                          "log copySingleVolume: sleep to give disc a chance to initialize", "sleep 5",
                          "log Begin copySingleVolume: copySrcPath /Volumes/Disc/TANVO\n",
                          "log Copying folder /Volumes/Disc/TANVO /tmp/to\n", "log mkdir 0 2 /tmp/to",
                          "status  ", "log End copySingleVolume: copySrcPath /Volumes/Disc/TANVO\n"));
  EXPECT_EQ(platform().now(), 15U);
  EXPECT_EQ(page.pane.readyToProceed, 1);
  EXPECT_EQ(page.pane.copySingleVolumeRunning, 0);
}

TEST_F(VolumeCopy, AFolderThatCannotBeOpenedIsTriedThreeTimesIn15SecondsAndThenCopied) {
  VolumePage page(2);
  EventTrace trace(page.host);
  page.pane.copySingleVolume();
  EXPECT_THAT(trace.events(),
              ElementsAre("log copySingleVolume: cannot open top level folder. Attempt 0",
                          "log copySingleVolume: sleep to give disc a chance to initialize", "sleep 5",
                          "log copySingleVolume: cannot open top level folder. Attempt 1",
                          "log copySingleVolume: sleep to give disc a chance to initialize", "sleep 5",
                          "log copySingleVolume: cannot open top level folder. Attempt 2",
                          "log copySingleVolume: sleep to give disc a chance to initialize", "sleep 5",
                          "log Begin copySingleVolume: copySrcPath /Volumes/Disc/TANVO\n",
                          "log Copying folder /Volumes/Disc/TANVO /tmp/to\n", "log mkdir 0 2 /tmp/to",
                          "status  ", "log End copySingleVolume: copySrcPath /Volumes/Disc/TANVO\n"));
  EXPECT_EQ(platform().now(), 15U);
  EXPECT_EQ(page.pane.readyToProceed, 1);
}

TEST_F(VolumeCopy, AReadableDiscIsCopiedAtOnce) {
  writeFile("/Volumes/Disc/TANVO/one.dat", "one");
  VolumePage page(2);
  page.pane.copySingleVolume();
  EXPECT_THAT(attempts(), IsEmpty());
  EXPECT_THAT(platform().callsThatBegin("sleep"), IsEmpty());
  EXPECT_EQ(readFile("/tmp/to/one.dat"), "one");
}

TEST_F(VolumeCopy, AnEmptyFolderOnTheDiscIsAnItem) {
  makeFolder("/Volumes/Disc/TANVO/Samples");
  VolumePage page(2);
  page.pane.copySingleVolume();
  EXPECT_THAT(attempts(), IsEmpty());
}

TEST_F(VolumeCopy, ADiscThatBecomesReadableEndsTheAttempts) {
  VolumePage page(2);
  int sleeps = 0;
  platform().onSleep = [&](unsigned) {
    ++sleeps;
    if (sleeps == 1) {
      makeFolder("/Volumes/Disc/TANVO");
    } else {
      writeFile("/Volumes/Disc/TANVO/one.dat", "one");
    }
  };
  page.pane.copySingleVolume();
  EXPECT_THAT(attempts(), ElementsAre("copySingleVolume: cannot open top level folder. Attempt 0",
                                      "copySingleVolume: sleep to give disc a chance to initialize",
                                      "copySingleVolume: no items found in top level folder. Attempt 1",
                                      "copySingleVolume: sleep to give disc a chance to initialize"));
  EXPECT_EQ(platform().now(), 10U);
  EXPECT_EQ(readFile("/tmp/to/one.dat"), "one");
}

TEST_F(VolumeCopy, ADiscThatComesDuringTheLastSleepIsCopied) {
  VolumePage page(2);
  int sleeps = 0;
  platform().onSleep = [&](unsigned) {
    if (++sleeps == 3) {
      writeFile("/Volumes/Disc/TANVO/one.dat", "one");
    }
  };
  page.pane.copySingleVolume();
  EXPECT_EQ(platform().now(), 15U);
  EXPECT_EQ(readFile("/tmp/to/one.dat"), "one");
}

TEST_F(VolumeCopy, OtherModesNeverWaitForTheSource) {
  for (const std::int32_t mode : {0, 3, 4}) {
    VolumePage page(mode);
    page.pane.copySingleVolume();
    EXPECT_EQ(page.pane.readyToProceed, 1) << mode;
  }
  EXPECT_THAT(attempts(), IsEmpty());
  EXPECT_EQ(platform().now(), 0U);
}

// ---- The copy ----

TEST_F(VolumeCopy, AWholeCopyIsLoggedAroundTheEnginesLinesAndClearsTheStatus) {
  writeFile("/Volumes/Disc/TANVO/one.dat", "one");
  VolumePage page(0);
  EventTrace trace(page.host);
  page.pane.copySingleVolume();
  EXPECT_THAT(trace.events(),
              ElementsAre("log Begin copySingleVolume: copySrcPath /Volumes/Disc/TANVO\n",
                          "log Copying folder /Volumes/Disc/TANVO /tmp/to\n", "log mkdir 0 2 /tmp/to",
                          "main: animation.begin", "main: animation.duration 0", "main: progress.value 0",
                          "main: progress.display", "main: animation.end", "main: status Installing... TANVO",
                          "main: status.needsDisplay", "status  ",
                          "log End copySingleVolume: copySrcPath /Volumes/Disc/TANVO\n"));
}

TEST_F(VolumeCopy, TheEnginesResultBecomesReadyToProceed) {
  makeFolder(kDisc);
  std::filesystem::create_symlink("/tmp/nowhere", std::string(kDisc) + "/broken");
  VolumePage page(0);
  page.pane.readyToProceed = 1;
  page.pane.copySingleVolume();
  EXPECT_EQ(page.pane.readyToProceed, 0);
  std::filesystem::remove(std::string(kDisc) + "/broken");
  page.pane.copySingleVolume();
  EXPECT_EQ(page.pane.readyToProceed, 1);
}

TEST_F(VolumeCopy, TheTailNameIsTheDataFoldersName) {
  makeFolder(kDisc);
  VolumePage page(0);
  page.pane.gTANVOorDOVAnameOnly.assign("DOVA");
  page.pane.copySingleVolume();
  EXPECT_EQ(page.pane.gItemCurrentlyBeingInstalled.view(), "DOVA");
}

TEST_F(VolumeCopy, TheProgressLoggingCountersStartFromZeroForEveryVolume) {
  makeFolder(kDisc);
  VolumePage page(0);
  progressSizeForLoggingUnitBytes = 99999999.0F;
  progressCounterForLogging = 7;
  page.pane.copySingleVolume();
  EXPECT_EQ(progressSizeForLoggingUnitBytes, 0.0F);
  EXPECT_EQ(progressCounterForLogging, 0);
}

TEST_F(VolumeCopy, TheCountersAreSetBackBeforeTheCopyNotAfterIt) {
  writeFile("/Volumes/Disc/TANVO/one.dat", someBytes(2000));
  VolumePage page(0);
  progressSizeForLoggingUnitBytes = 99999999.0F;
  page.pane.copySingleVolume();
  EXPECT_EQ(progressSizeForLoggingUnitBytes, 2000.0F);
  EXPECT_THAT(thoseThatBegin(logMessages(), "Data copy progress"), IsEmpty());
}

TEST_F(VolumeCopy, NoDestinationIsLoggedByTheEngineAndFails) {
  writeFile("/Volumes/Disc/TANVO/one.dat", "one");
  VolumePage page(4, kDisc, nullptr);
  page.pane.readyToProceed = 1;
  page.pane.copySingleVolume();
  EXPECT_THAT(logMessages(), ElementsAre("Begin copySingleVolume: copySrcPath /Volumes/Disc/TANVO\n",
                                         "copyDirectoryOrFile: no destination for /Volumes/Disc/TANVO",
                                         "End copySingleVolume: copySrcPath /Volumes/Disc/TANVO\n"));
  EXPECT_THAT(page.host.lines(), ElementsAre("status  "));
  EXPECT_EQ(page.pane.readyToProceed, 0);
  EXPECT_EQ(page.pane.copySingleVolumeRunning, 0);
}

// ---- The flag ----

TEST_F(VolumeCopy, TheFlagIsClearedWhateverTheEngineReturned) {
  makeFolder(kDisc);
  VolumePage page(0);
  page.pane.copySingleVolume();
  EXPECT_EQ(page.pane.copySingleVolumeRunning, 0);

  std::filesystem::create_symlink("/tmp/nowhere", std::string(kDisc) + "/broken");
  page.pane.copySingleVolumeRunning = 1;
  page.pane.copySingleVolume();
  EXPECT_EQ(page.pane.readyToProceed, 0);
  EXPECT_EQ(page.pane.copySingleVolumeRunning, 0);
}

TEST_F(VolumeCopy, TheFlagIsStillSetWhenTheStatusIsCleared) {
  makeFolder(kDisc);
  VolumePage page(0);
  std::vector<int> flags;
  page.host.onLine = [&](const std::string&) { flags.push_back(page.pane.copySingleVolumeRunning); };
  page.pane.copySingleVolume();
  EXPECT_THAT(flags, ElementsAre(1));
}

TEST_F(VolumeCopy, WhoeverSeesTheFlagClearedSeesTheResultAndTheLastLogLine) {
  writeFile("/Volumes/Disc/TANVO/one.dat", someBytes(50000));
  VolumePage page(0);
  std::atomic<std::int32_t> result = -1;
  std::string last;
  std::thread watcher([&] {
    while (page.pane.copySingleVolumeRunning.load(std::memory_order_acquire) != 0) {
      std::this_thread::yield();
    }
    result = page.pane.readyToProceed.load();
    last = lastLogMessage();
  });
  page.host.serve([&] { page.pane.copySingleVolume(); });
  watcher.join();
  EXPECT_EQ(result, 1);
  EXPECT_EQ(last, "End copySingleVolume: copySrcPath /Volumes/Disc/TANVO\n");
}

}  // namespace

}  // namespace tavenhall::test
