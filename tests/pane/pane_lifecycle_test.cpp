#include "pane/install_data_pane.h"
#include "tests/support/files.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PaneLifecycle : public testing::Test {
 protected:
  PaneLifecycle() { makeFolder("/Users/tester/Library/Caches"); }  // where the log goes
};

// ---- Leaving the page ----

struct Leaving {
  std::int64_t direction;
  std::int32_t ready;
  std::int32_t mode;
};

bool leave(RecordingHost& host, const Leaving& leaving) {
  InstallDataPane pane(host);
  pane.readyToProceed = leaving.ready;
  pane.gInstallMode = leaving.mode;
  return pane.shouldExitPane(leaving.direction);
}

TEST_F(PaneLifecycle, LeavingBackwardsIsAlwaysAllowedAndEnablesNext) {
  for (const std::int32_t mode : {0, 2, 3, 4}) {
    for (const std::int32_t ready : {0, 1}) {
      RecordingHost host;
      EXPECT_TRUE(leave(host, {1, ready, mode}));
      EXPECT_THAT(host.lines(), ElementsAre("next 1"));
    }
  }
  EXPECT_FALSE(exists(kLog));
}

TEST_F(PaneLifecycle, EveryDirectionButZeroIsBackwards) {
  for (const std::int64_t direction : {std::int64_t{-1}, std::int64_t{2}, std::int64_t{1} << 32}) {
    RecordingHost host;
    EXPECT_TRUE(leave(host, {direction, 0, 2})) << direction;
    EXPECT_THAT(host.lines(), ElementsAre("next 1")) << direction;
  }
}

TEST_F(PaneLifecycle, LeavingForwardsIsRefusedBeforeSuccessInModes0And2And3) {
  for (const std::int32_t mode : {0, 2, 3}) {
    RecordingHost host;
    EXPECT_FALSE(leave(host, {0, 0, mode})) << mode;
  }
}

TEST_F(PaneLifecycle, LeavingForwardsIsAllowedBeforeSuccessInMode4) {
  RecordingHost host;
  EXPECT_TRUE(leave(host, {0, 0, 4}));
  EXPECT_THAT(host.lines(), ElementsAre("next 1"));
  EXPECT_FALSE(exists(kLog));
}

TEST_F(PaneLifecycle, LeavingForwardsIsAllowedAfterSuccessInEveryMode) {
  for (const std::int32_t mode : {0, 2, 3, 4}) {
    RecordingHost host;
    EXPECT_TRUE(leave(host, {0, 1, mode})) << mode;
    EXPECT_THAT(host.lines(), ElementsAre("next 1")) << mode;
  }
}

TEST_F(PaneLifecycle, ANegativeResultCountsAsReady) {
  RecordingHost host;
  EXPECT_TRUE(leave(host, {0, -1, 2}));
}

TEST_F(PaneLifecycle, ARefusalUpdatesTheButtonsThenLogsThenShowsInstallError) {
  platform().strings["InstallError"] = "Not yet done.";
  platform().strings["OK_BUTTON"] = "Fine";
  RecordingHost host;
  std::vector<std::string> messagesAtEachLine;
  host.onLine = [&](const std::string& line) {
    messagesAtEachLine.push_back(line + " after " + std::to_string(logMessages().size()));
  };

  EXPECT_FALSE(leave(host, {0, 0, 2}));

  EXPECT_THAT(messagesAtEachLine,
              ElementsAre("previous 0 after 0", "next 0 after 0", "sheet Fine|Not yet done. after 1"));
  EXPECT_THAT(logMessages(), ElementsAre("readyToProceed is False: issuing InstallError message\n"));
}

TEST_F(PaneLifecycle, EachRefusalShowsASheetOfItsOwn) {
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_FALSE(pane.shouldExitPane(0));
  EXPECT_FALSE(pane.shouldExitPane(0));
  EXPECT_EQ(host.linesThatBegin("sheet ").size(), 2U);
  EXPECT_EQ(logMessages().size(), 2U);
}

// ---- Buttons ----

TEST_F(PaneLifecycle, TheButtonUpdateTurnsPreviousOffThenNextOffWhileNotReady) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane._updateNextButtonState();
  EXPECT_FALSE(pane._entriesAreValid());
  EXPECT_THAT(host.lines(), ElementsAre("previous 0", "next 0"));
}

TEST_F(PaneLifecycle, TheButtonUpdateTurnsPreviousOffThenNextOnWhenReady) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.readyToProceed = 1;
  pane._updateNextButtonState();
  EXPECT_TRUE(pane._entriesAreValid());
  EXPECT_THAT(host.lines(), ElementsAre("previous 0", "next 1"));
}

TEST_F(PaneLifecycle, AChangedTextUpdatesTheButtons) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.controlTextDidChange();
  pane.readyToProceed = 1;
  pane.controlTextDidChange();
  EXPECT_THAT(host.lines(), ElementsAre("previous 0", "next 0", "previous 0", "next 1"));
}

TEST_F(PaneLifecycle, UpdateTextHasNoEffect) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.readyToProceed = 1;
  pane.updateText();
  EXPECT_THAT(host.lines(), IsEmpty());
  EXPECT_THAT(platform().calls(), IsEmpty());
  EXPECT_FALSE(exists(kLog));
  EXPECT_EQ(pane.readyToProceed, 1);
}

// ---- Title ----

TEST_F(PaneLifecycle, TheTitleComesFromTheAttributesFile) {
  setAttributes("InstallDataTitle = Klänge einrichten\n");
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(pane.title(), "Klänge einrichten");
  EXPECT_THAT(logMessages(), ElementsAre("Found Installation Attribute File at  "
                                         "/Users/tester/Downloads/Set/.InstallationAttributes.dat",
                                         "Data from attributes file::  InstallData title=Klänge einrichten "));
  EXPECT_THAT(host.lines(), IsEmpty());
}

TEST_F(PaneLifecycle, AMissingTitleIsInstallingData) {
  setAttributes("Mode = DataUpdater\n");
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(pane.title(), "Installing Data");
  EXPECT_EQ(logMessages().back(), "Could not find title string in attributes file ");
}

TEST_F(PaneLifecycle, EveryCallForTheTitleReadsTheFileAndLogsAnew) {
  setAttributes("InstallDataTitle = First\n");
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(pane.title(), "First");
  setAttributes("InstallDataTitle = Second\n");
  EXPECT_EQ(pane.title(), "Second");
  EXPECT_THAT(logMessages(), ElementsAre("Found Installation Attribute File at  "
                                         "/Users/tester/Downloads/Set/.InstallationAttributes.dat",
                                         "Data from attributes file::  InstallData title=First ",
                                         "Data from attributes file::  InstallData title=Second "));
}

TEST_F(PaneLifecycle, TheTitleOfTheLongestLineIsWhole) {
  const std::string title(2047 - std::string("InstallDataTitle = \n").size(), 't');
  setAttributes("InstallDataTitle = " + title + "\n");
  RecordingHost host;
  InstallDataPane pane(host);
  EXPECT_EQ(pane.title(), title);
}

TEST_F(PaneLifecycle, TheTitleMayBeAskedForWhileAnInstallRuns) {
  setAttributes(
      "Mode = DataUpdater\nInstallDataTitle = Page\nRelativePath = Data\nTotalSizeMillionsBytes = 1\n");
  writeFile(std::string(kSet) + "/Data/TANVO/one.dat", someBytes(500000));
  makeFolder(kTanvo);
  RecordingHost host;
  InstallDataPane pane(host);

  pane.didEnterPane(0);
  std::atomic<bool> isInstalling = true;
  int differences = 0;
  std::thread asker([&] {
    do {
      differences += pane.title() == "Page" ? 0 : 1;
    } while (isInstalling);
  });
  host.serve();
  isInstalling = false;
  asker.join();

  EXPECT_EQ(differences, 0);
  EXPECT_EQ(pane.readyToProceed, 1);
  EXPECT_EQ(pane.gPathOfSourceDataExcludingTANVOtail.view(), "/Users/tester/Downloads/Set/Data");
}

// ---- Localised texts and sheets ----

TEST_F(PaneLifecycle, AMissingLocalisedKeyYieldsTheKeyItself) {
  platform().strings.erase("InstallError");
  platform().strings.erase("OK_BUTTON");
  RecordingHost host;
  EXPECT_FALSE(leave(host, {0, 0, 2}));
  EXPECT_THAT(host.linesThatBegin("sheet "), ElementsAre("sheet OK_BUTTON|InstallError"));
}

TEST_F(PaneLifecycle, ASheetShowsPercentSignsAsTheyStand) {
  platform().strings["InstallError"] = "100% of %s, %n and %%";
  RecordingHost host;
  EXPECT_FALSE(leave(host, {0, 0, 2}));
  EXPECT_THAT(host.linesThatBegin("sheet "), ElementsAre("sheet OK|100% of %s, %n and %%"));
}

TEST_F(PaneLifecycle, ASheetOfAWorkerIsHandedToTheMainThread) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.showSheetFromWorker("Something to say.");
  EXPECT_THAT(host.lines(), ElementsAre("main: sheet OK|Something to say."));
  EXPECT_EQ(host.dispatches(), 1);
}

// ---- Completion ----

TEST_F(PaneLifecycle, AnEmptyCompletionMessageIsFilledFromTheAttributesFile) {
  setAttributes("InstalledData = All data is in %s.\n");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gTANVOorDOVA_destinationPath = "/Volumes/Data/TANVO";
  pane.displayCompletionMessage();
  EXPECT_THAT(host.lines(), ElementsAre("instructions All data is in /Volumes/Data/TANVO."));
  EXPECT_EQ(pane.gCompletionMessage.view(), "All data is in %s.");
  EXPECT_EQ(logMessages().back(), "Data from attributes file::  InstalledData=All data is in %s. ");
}

TEST_F(PaneLifecycle, AFilledCompletionMessageIsShownWithoutALookup) {
  setAttributes("InstalledData = From the file\n");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gTANVOorDOVA_destinationPath = "/Volumes/Data/TANVO";
  pane.gCompletionMessage.assign("Kept: %s");
  pane.displayCompletionMessage();
  EXPECT_THAT(host.lines(), ElementsAre("instructions Kept: /Volumes/Data/TANVO"));
  EXPECT_FALSE(exists(kLog));
}

TEST_F(PaneLifecycle, AnInstalledDataTextWithoutAPlaceShowsAsItIs) {
  setAttributes("InstalledData = Done.\\nContinue.\n");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gTANVOorDOVA_destinationPath = "/Volumes/Data/TANVO";
  pane.displayCompletionMessage();
  EXPECT_THAT(host.lines(), ElementsAre("instructions Done. \nContinue."));
}

TEST_F(PaneLifecycle, TheBuiltInCompletionMessageSendsTheUserToTheDataUpdater) {
  setAttributes("Mode = DataUpdater\n");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.displayCompletionMessage();
  EXPECT_THAT(host.lines(), ElementsAre("instructions Step 1 finished.\n\n"
                                        "Please run the Data Updater to complete the installation.\n\n"
                                        "Press Continue button."));
  EXPECT_EQ(logMessages().back(), "Could not find InstallingData string in attributes file ");
}

TEST_F(PaneLifecycle, ACompletionMessageWithoutADestinationSaysNull) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gCompletionMessage.assign("In %s");
  pane.displayCompletionMessage();
  EXPECT_THAT(host.lines(), ElementsAre("instructions In (null)"));
}

// ---- What a host may ask ----

TEST_F(PaneLifecycle, ANewPaneIsIdleAndEmpty) {
  RecordingHost host;
  InstallDataPane pane(host);
  const PaneSnapshot snapshot = pane.snapshot();
  EXPECT_EQ(snapshot.readyToProceed, 0);
  EXPECT_EQ(snapshot.installMode, 0);
  EXPECT_EQ(snapshot.kBytesCopied, 0);
  EXPECT_EQ(snapshot.currentVolumeNumber, 0);
  EXPECT_EQ(snapshot.volumeCount, 0);
  EXPECT_EQ(snapshot.sourceFolder, "");
  EXPECT_EQ(snapshot.destinationFolder, "");
  EXPECT_THAT(host.lines(), IsEmpty());
}

TEST_F(PaneLifecycle, TheSnapshotHasThePagesState) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.readyToProceed = 1;
  pane.gInstallMode = 2;
  pane.kBytesCopied = 5000000000;
  pane.gCurrentVolumeNumber = 1;
  pane.gVolumeCount = 3;
  pane.copySrcPath = "/Volumes/Disc/TANVO";
  pane.gTANVOorDOVA_destinationPath = "/Volumes/Data/TANVO";
  const PaneSnapshot snapshot = pane.snapshot();
  EXPECT_EQ(pane.isReadyToProceed(), 1);
  EXPECT_EQ(snapshot.readyToProceed, 1);
  EXPECT_EQ(snapshot.installMode, 2);
  EXPECT_EQ(snapshot.kBytesCopied, 5000000000);
  EXPECT_EQ(snapshot.currentVolumeNumber, 1);
  EXPECT_EQ(snapshot.volumeCount, 3);
  EXPECT_EQ(snapshot.sourceFolder, "/Volumes/Disc/TANVO");
  EXPECT_EQ(snapshot.destinationFolder, "/Volumes/Data/TANVO");
}

}  // namespace

}  // namespace tavenhall::test
