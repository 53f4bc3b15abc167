#include "pane/install_data_pane.h"
#include "tests/pane/event_trace.h"
#include "tests/support/files.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kBanner =
    "log \n\n"
    "**********************************************************************************************\n"
    "  Install Data Pane Enter: Version 7.7";

class PaneEntry : public testing::Test {
 protected:
  PaneEntry() { makeFolder("/Users/tester/Library/Caches"); }  // where the log goes
};

// A small data updater: one file, from the folder Data beside the package.
void makeUpdater() {
  setAttributes("Mode = DataUpdater\nInstallingData = Copying to %s\nRelativePath = Data\n");
  writeFile(std::string(kSet) + "/Data/TANVO/one.dat", "one");
}

std::string textShownOnEntry(const std::string& value) {
  setAttributes("InstallingData = " + value + "\n");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.didEnterPane(0);
  const auto lines = host.linesThatBegin("instructions ");
  EXPECT_EQ(lines.size(), 1U);
  return lines.empty() ? "" : lines[0].substr(std::string("instructions ").size());
}

// ---- The order ----

TEST_F(PaneEntry, WithACentralFolderEverythingUpToTheInstallThreadIsInOrder) {
  makeUpdater();
  makeFolder(kTanvo);
  RecordingHost host;
  InstallDataPane pane(host);
  EventTrace trace(host);
  std::vector<std::string> events;
  trace.onLine = [&](const std::string& line) {
    if (line == "thread.started doEntireInstall") {
      events = trace.events();
    }
  };

  pane.didEnterPane(0);
  host.serve();

  // The system's own record of a hold comes before the word to the host.
  EXPECT_THAT(
      events,
      ElementsAre(
          kBanner, "previous 0", "next 0",
          "log After resolve 1 /Users/tester/Library/Application Support/Tavenhall/TANVO", "log File exists",
          "log Found Installation Attribute File at  /Users/tester/Downloads/Set/.InstallationAttributes.dat",
          "log Data from attributes file::  InstallingData=Copying to %s ",
          "instructions Copying to /Users/tester/Library/Application Support/Tavenhall/TANVO",
          "assertion NoDisplaySleepAssertion 255 Tavenhall installation in progress",
          "assertion NoDisplaySleepAssertion 255 Tavenhall installation in progress",
          "assertion NoIdleSleepAssertion 255 Tavenhall installation in progress",
          "assertion NoIdleSleepAssertion 255 Tavenhall installation in progress", "log Installation mode is 0",
          "log Data from attributes file::   num Vol=0 ",
          "log Install kind:  Relative path (Either Data updater or single-step fully-downloaded).",
          "log Data from attributes file::    RelativePath=Data ",
          "log Data from attributes file::   num Vol=0 ", "thread doEntireInstall"));
}

void expectRefusedEntry(std::int64_t direction) {
  setAttributes("InstallingData = Copying to %s\n");
  platform().strings["FindError"] = "No folder.";
  platform().strings["OK_BUTTON"] = "Fine";
  RecordingHost host;
  InstallDataPane pane(host);
  EventTrace trace(host);

  pane.didEnterPane(direction);

  EXPECT_THAT(
      trace.events(),
      ElementsAre(
          kBanner, "previous 0", "next 0",
          "log After resolve 1 /Users/tester/Library/Application Support/Tavenhall/TANVO",
          "log Found Installation Attribute File at  /Users/tester/Downloads/Set/.InstallationAttributes.dat",
          "log Data from attributes file::  InstallingData=Copying to %s ", "instructions Copying to (null)",
          "log InstallData fatal error: TANVO or DOVA folder not found.", "sheet Fine|No folder.", "previous 0",
          "next 0"));
}

TEST_F(PaneEntry, WithoutACentralFolderTheFatalLineAndFindErrorComeInOrder) { expectRefusedEntry(0); }

TEST_F(PaneEntry, EnteringBackwardsDoesTheSame) { expectRefusedEntry(1); }

TEST_F(PaneEntry, WithoutACentralFolderNothingIsStarted) {
  makeUpdater();
  RecordingHost host;
  InstallDataPane pane(host);

  pane.didEnterPane(0);

  EXPECT_THAT(host.linesThatBegin("thread."), IsEmpty());
  EXPECT_THAT(host.linesThatBegin("assertion"), IsEmpty());
  EXPECT_THAT(platform().callsThatBegin("assertion"), IsEmpty());
  EXPECT_THAT(platform().callsThatBegin("thread"), IsEmpty());
  EXPECT_EQ(host.dispatches(), 0);
  EXPECT_EQ(pane.gTANVOorDOVA_destinationPath, nullptr);
}

TEST_F(PaneEntry, ADanglingCentralFolderIsAMissingOne) {
  makeUpdater();
  makeFolder("/Users/tester/Library/Application Support/Tavenhall");
  ASSERT_EQ(symlink("/Volumes/Gone/TANVO", kTanvo), 0);
  RecordingHost host;
  InstallDataPane pane(host);

  pane.didEnterPane(0);

  EXPECT_EQ(logMessages().back(), "InstallData fatal error: TANVO or DOVA folder not found.");
  EXPECT_EQ(host.linesThatBegin("sheet ").size(), 1U);
}

TEST_F(PaneEntry, APageThatNeverStartedCannotBeLeftForwards) {
  setAttributes("Mode = TavenhallUpdater\n");
  RecordingHost host;
  InstallDataPane pane(host);
  pane.didEnterPane(0);
  EXPECT_EQ(pane.gInstallMode, 0);
  EXPECT_FALSE(pane.shouldExitPane(0));
}

// ---- The page's text ----

TEST_F(PaneEntry, AnInstallingDataTextWithoutAPlaceShowsAsItIs) {
  EXPECT_EQ(textShownOnEntry("Just a moment."), "Just a moment.");
}

TEST_F(PaneEntry, OnlyTheFirstPlaceTakesTheDestination) {
  EXPECT_EQ(textShownOnEntry("100%% to %s, %s, %d and %n%"), "100% to (null), %s, %d and %n%");
}

TEST_F(PaneEntry, TheTextsLineBreaksAreABlankAndANewline) {
  EXPECT_EQ(textShownOnEntry("One\\nTwo\\rThree"), "One \nTwo \nThree");
}

TEST_F(PaneEntry, AMissingTextIsTheBuiltInOne) {
  setAttributes("Mode = DataUpdater\nRelativePath = Nowhere\n");
  makeFolder(kTanvo);
  platform().canStartThreads = false;
  RecordingHost host;
  InstallDataPane pane(host);

  pane.didEnterPane(0);

  EXPECT_THAT(host.linesThatBegin("instructions "),
              ElementsAre("instructions Now installing data from source media to: \n\n"
                          "/Users/tester/Library/Application Support/Tavenhall/TANVO\n\n"
                          "This process is lengthy and can take up to 3 hours.\n"
                          "The progress bar will move very slowly at first.\n"
                          "Thanks for your patience.\n\n"
                          "Please wait for the installation to complete."));
}

// ---- The reset: seen after an entry that starts nothing ----

TEST_F(PaneEntry, ResetsTheCountersAndFlags) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.totalNumBytesExpectedAcrossAllVolumes = 7;
  pane.kBytesCopied = 8;
  pane.readyToProceed = 1;
  pane.gVolumeCount = 5;
  pane.gAllTwoComponentInstallChoicesAreLite = 1;
  pane.gNumTwoComponentInstallFolders = 9;
  pane.gNumMirelPacksInstallFolders = 4;

  pane.didEnterPane(0);

  EXPECT_EQ(pane.totalNumBytesExpectedAcrossAllVolumes, 100000000);
  EXPECT_EQ(pane.kBytesCopied, 0);
  EXPECT_EQ(pane.readyToProceed, 0);
  EXPECT_EQ(pane.gVolumeCount, 1);
  EXPECT_EQ(pane.gAllTwoComponentInstallChoicesAreLite, 0);
  EXPECT_EQ(pane.gNumTwoComponentInstallFolders, 0);
  EXPECT_EQ(pane.gNumMirelPacksInstallFolders, 0);
}

TEST_F(PaneEntry, EmptiesTheNamesAndPathsOfTheInstallBefore) {
  makeUpdater();
  makeFolder(kTanvo);
  RecordingHost host;
  InstallDataPane pane(host);
  const auto texts = [&pane] {
    return std::vector<std::string_view>{pane.gItemCurrentlyBeingInstalled.view(),
                                         pane.gTANVOorDOVAnameOnly.view(),
                                         pane.gPathOfSourceDataExcludingTANVOtail.view(),
                                         pane.gPathOfSourceDataIncludingTANVOtail.view(),
                                         pane.gAltSrcFolder.view(),
                                         pane.gPluginNameChar.view(),
                                         pane.gCompletionMessage.view()};
  };
  pane.didEnterPane(0);
  host.serve();
  ASSERT_THAT(texts(), testing::Each(testing::Not("")));
  std::filesystem::remove_all(kTanvo);  // so that the second entry starts nothing

  pane.didEnterPane(0);

  EXPECT_THAT(texts(), testing::Each(""));
}

TEST_F(PaneEntry, ClearsAllFiftyLibrarySlots) {
  RecordingHost host;
  InstallDataPane pane(host);
  ASSERT_EQ(pane.gTwoComponentInstallFolderNames.size(), 50U);
  ASSERT_EQ(pane.gTwoComponentInstallChoicesAreLite.size(), 50U);
  for (std::size_t i = 0; i < 50; ++i) {
    pane.gTwoComponentInstallFolderNames[i].assign("Library");
    pane.gTwoComponentInstallChoicesAreLite[i] = 1;
  }

  pane.didEnterPane(0);

  for (std::size_t i = 0; i < 50; ++i) {
    EXPECT_EQ(pane.gTwoComponentInstallFolderNames[i].view(), "") << i;
    EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[i], 0) << i;
  }
}

TEST_F(PaneEntry, KeepsTheModeTheOptionTheVolumeNumberAndTheCopysState) {
  const char* source = "/a/TANVO";
  const char* destination = "/b/TANVO";
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gInstallMode = 4;
  pane.gInstallationHasLiteVsFullOption = 1;
  pane.gCurrentVolumeNumber = 3;
  pane.copySingleVolumeRunning = 1;
  pane.copySrcPath = source;
  pane.copyDstPath = destination;

  pane.didEnterPane(0);

  EXPECT_EQ(pane.gInstallMode, 4);
  EXPECT_EQ(pane.gInstallationHasLiteVsFullOption, 1);
  EXPECT_EQ(pane.gCurrentVolumeNumber, 3);
  EXPECT_EQ(pane.copySingleVolumeRunning, 1);
  EXPECT_EQ(pane.copySrcPath, source);
  EXPECT_EQ(pane.copyDstPath, destination);
}

TEST_F(PaneEntry, ReplacesTheDestinationOfAnEarlierEntry) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.gTANVOorDOVA_destinationPath = "/Volumes/Old/TANVO";
  pane.didEnterPane(0);
  EXPECT_EQ(pane.gTANVOorDOVA_destinationPath, nullptr);
}

TEST_F(PaneEntry, TheStateIsResetBeforeTheButtonsAreUpdated) {
  RecordingHost host;
  InstallDataPane pane(host);
  pane.kBytesCopied = 8;
  pane.readyToProceed = 1;
  pane.gCompletionMessage.assign("done");
  std::int64_t copiedAtFirstLine = -1;
  bool messageWasEmpty = false;
  host.onLine = [&](const std::string& line) {
    if (copiedAtFirstLine == -1) {
      EXPECT_EQ(line, "previous 0");
      copiedAtFirstLine = pane.kBytesCopied;
      messageWasEmpty = pane.gCompletionMessage.empty();
    }
  };

  pane.didEnterPane(0);

  EXPECT_EQ(copiedAtFirstLine, 0);
  EXPECT_TRUE(messageWasEmpty);
  EXPECT_EQ(host.lines()[1], "next 0");
}

// ---- Entering again ----

TEST_F(PaneEntry, EnteringTwiceRunsTwoJobs) {
  makeUpdater();
  makeFolder(kTanvo);
  RecordingHost host;
  InstallDataPane pane(host);

  pane.didEnterPane(0);
  host.serve();
  pane.didEnterPane(1);
  host.serve();

  const auto log = logMessages();
  EXPECT_EQ(host.linesThatBegin("thread.started doEntireInstall").size(), 2U);
  EXPECT_EQ(host.linesThatBegin("thread.ended doEntireInstall").size(), 2U);
  EXPECT_EQ(std::count(log.begin(), log.end(),
                       "Installation complete\n*********************************************************\n"),
            2);
}

TEST_F(PaneEntry, EnteringAgainStartsFromNothingCopied) {
  makeUpdater();
  writeFile(std::string(kSet) + "/Data/TANVO/two.dat", someBytes(300 * 1024));
  makeFolder(kTanvo);
  RecordingHost host;
  InstallDataPane pane(host);
  pane.didEnterPane(0);
  host.serve();
  const std::int64_t copiedOnce = pane.kBytesCopied;

  pane.didEnterPane(0);
  host.serve();

  EXPECT_EQ(copiedOnce, 300);
  EXPECT_EQ(pane.kBytesCopied, 300);
  EXPECT_EQ(pane.readyToProceed, 1);
}

TEST_F(PaneEntry, ASecondEntryFindsACentralFolderThatHasCome) {
  makeUpdater();
  RecordingHost host;
  InstallDataPane pane(host);
  pane.didEnterPane(0);
  ASSERT_EQ(host.linesThatBegin("sheet ").size(), 1U);
  makeFolder(kTanvo);

  pane.didEnterPane(0);
  host.serve();

  EXPECT_EQ(host.linesThatBegin("sheet ").size(), 1U);
  EXPECT_EQ(readFile(std::string(kTanvo) + "/one.dat"), "one");
}

}  // namespace

}  // namespace tavenhall::test
