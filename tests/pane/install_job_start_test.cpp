#include "pane/install_data_pane.h"
#include "pane/process_wide.h"
#include "tests/pane/event_trace.h"
#include "tests/support/files.h"
#include "tests/support/recording_host.h"
#include "tests/support/recording_platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Not;

constexpr const char* kRelativeKindLine =
    "Install kind:  Relative path (Either Data updater or single-step fully-downloaded).";
constexpr const char* kDisplayHold = "assertion NoDisplaySleepAssertion 255 Tavenhall installation in progress";
constexpr const char* kIdleHold = "assertion NoIdleSleepAssertion 255 Tavenhall installation in progress";
constexpr const char* kNoThreadLine = "spawnBackgroundInstallJob: could not start the install thread";

class InstallJobStart : public testing::Test {
 protected:
  InstallJobStart() {
    makeFolder("/Users/tester/Library/Caches");  // where the log goes
    pane.gTANVOorDOVA_destinationPath = kTanvo;
  }

  // The log of a job start after which nothing happens, since no thread can be had.
  std::vector<std::string> planAlone() {
    platform().canStartThreads = false;
    pane.spawnBackgroundInstallJob();
    std::vector<std::string> log = logMessages();
    EXPECT_EQ(log.empty() ? "" : log.back(), kNoThreadLine);
    log.pop_back();
    return log;
  }

  // Everything up to the start of the install thread; the install then runs to its end.
  std::vector<std::string> eventsOfJobStart() {
    EventTrace trace(host);
    std::vector<std::string> events;
    trace.onLine = [&](const std::string& line) {
      if (line == "thread.started doEntireInstall") {
        events = trace.events();
      }
    };
    pane.spawnBackgroundInstallJob();
    host.serve();
    host.onLine = nullptr;
    return events;
  }

  RecordingHost host;
  InstallDataPane pane{host};
};

// What a job start does, with the log's lines given alone.
std::vector<std::string> jobStart(const std::vector<std::string>& log) {
  std::vector<std::string> events = {kDisplayHold, kDisplayHold, kIdleHold, kIdleHold};
  for (const std::string& line : log) {
    events.push_back(line.starts_with("alert ") ? line : "log " + line);
  }
  events.emplace_back("thread doEntireInstall");
  return events;
}

// ---- The whole order ----

TEST_F(InstallJobStart, Mode0AsksForVolumesChoiceAndRelativePathInOrder) {
  setAttributes("Mode = DataUpdater\nNumberOfVolumes = 2\nRelativePath = Data\n");
  writeFile("/tmp/TavInstallType", "Full\n");
  EXPECT_THAT(eventsOfJobStart(),
              ElementsAreArray(
                  jobStart({kFoundLine, "Installation mode is 0", "Data from attributes file::   num Vol=2 ",
                            "contentsOfTavInstallTypeFile = Full", "Install Type = Full", kRelativeKindLine,
                            "Data from attributes file::    RelativePath=Data "})));
}

TEST_F(InstallJobStart, Mode2AsksForVolumesPromptChoiceAndDiscInOrder) {
  setAttributes("Mode = InstallFromVolumes\nNumberOfVolumes = 2\nLiteVsFullPrompt = YES\n");
  writeFile("/tmp/TavInstallType", "Full\n");
  writeFile("/Volumes/Tavenhall Tessaphon A/TANVO/a.dat", "a");
  writeFile("/Volumes/Tessaphon B/TANVO/b.dat", "b");
  EXPECT_THAT(eventsOfJobStart(),
              ElementsAreArray(jobStart(
                  {kFoundLine, "Installation mode is 2", "Data from attributes file::   num Vol=2 ",
                   "Data from attributes file::  LiteVsFullPrompt =YES ", "contentsOfTavInstallTypeFile = Full",
                   "Install Type = Full", "Install kind:  Disc/flash.",
                   "Volume 0 path should be: /Volumes/Tavenhall Tessaphon A",
                   "Data from attributes file::   num Vol=2 "})));
}

TEST_F(InstallJobStart, Mode3AsksForVolumesAndRelativePathInOrder) {
  setAttributes("Mode = FullyDownloaded\nNumberOfVolumes = 3\n");
  EXPECT_THAT(eventsOfJobStart(),
              ElementsAreArray(
                  jobStart({kFoundLine, "Installation mode is 3", "Data from attributes file::   num Vol=3 ",
                            kRelativeKindLine, "Could not find RelativePath string in attributes file ",
                            "Data from attributes file::   num Vol=3 "})));
}

TEST_F(InstallJobStart, Mode4ListsDetectsAndAnnouncesInOrder) {
  const std::string installed =
      std::string(kTanvo) + "/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library";
  setAttributes("Mode = TavenhallUpdater\nRelativePath = Data\nRelativePath2 = Update\nNumberOfVolumes = 9\n");
  writeFile("/tmp/TavInstallType", "Lite\n");
  makeFolder(std::string(kSet) + "/Update/TANVO/Mirel Packs/Velmora");
  writeFile(installed + "/Sub/x.db", someBytes(999));
  EXPECT_THAT(
      eventsOfJobStart(),
      ElementsAreArray(jobStart(
          {kFoundLine, "Installation mode is 4", "Data from attributes file::  RelativePath2=Update ",
           "Searching for Mirel Packs update data: /Users/tester/Downloads/Set/Update/TANVO/Mirel Packs \n",
           "Found Mirel Packs library: Mirel Packs/Velmora\n", "Searching: " + installed + " \n",
           "Found " + installed + "/Sub/x.db file with size = 999\n",
           "Confirmed Velmora Library Installation is Lite\n", kRelativeKindLine,
           "Data from attributes file::    RelativePath=Data ",
           "Displaying Lite Vs Full Informational Prompt 0",
           "alert Detected Installation Type|FX only installation detected for Mirel Pack Velmora. "
           "Performing an FX only data update.|Continue|1"})));
}

TEST_F(InstallJobStart, AMissingAttributesFileInstallsOneVolumeFromDisc) {
  setPackage("/Users/tester/Downloads/Set/Installer.pkg");
  EXPECT_THAT(planAlone(), ElementsAre("Did not find Installation Attribute File.",
                                       "Did not find InstallationAttributes file.  Assuming Flash installation",
                                       "Installation mode is 2", "Data from attributes file::   num Vol=0 ",
                                       "Install kind:  Disc/flash.",
                                       "Volume 0 path should be: /Volumes/Tavenhall Tessaphon A",
                                       "Data from attributes file::   num Vol=0 "));
  EXPECT_EQ(pane.gVolumeCount, 1);
  EXPECT_EQ(pane.gInstallationHasLiteVsFullOption, 0);
}

// ---- Modes ----

TEST_F(InstallJobStart, TheModeReplacesTheOneOfAnEarlierEntry) {
  setAttributes("Mode = SupportHub\n");
  pane.gInstallMode = 2;
  planAlone();
  EXPECT_EQ(pane.gInstallMode, 4);
}

TEST_F(InstallJobStart, TheVolumeCountStartsFromOne) {
  setAttributes("Mode = DataUpdater\n");
  pane.gVolumeCount = 8;
  std::int32_t countAtFirstHold = 0;
  host.onLine = [&](const std::string& line) {
    countAtFirstHold = line == kDisplayHold ? pane.gVolumeCount : countAtFirstHold;
  };
  planAlone();
  EXPECT_EQ(countAtFirstHold, 1);
}

TEST_F(InstallJobStart, OnlyTwoVolumesTurnTheOptionOnInModes0And3) {
  for (const char* mode : {"DataUpdater", "Downloaded"}) {
    for (const char* number : {"0", "1", "2", "3", "-2", "4294967298"}) {
      setAttributes(std::string("Mode = ") + mode + "\nNumberOfVolumes = " + number + "\n");
      pane.gInstallationHasLiteVsFullOption = 1;
      planAlone();
      EXPECT_EQ(pane.gInstallationHasLiteVsFullOption, std::string(number) == "2" ? 1 : 0) << mode << number;
    }
  }
}

TEST_F(InstallJobStart, TheOptionOfAnEarlierEntryIsTakenBack) {
  for (const char* mode : {"DataUpdater", "InstallFromVolumes", "Downloaded", "SupportHub"}) {
    setAttributes(std::string("Mode = ") + mode + "\n");
    pane.gInstallationHasLiteVsFullOption = 1;
    planAlone();
    EXPECT_EQ(pane.gInstallationHasLiteVsFullOption, 0) << mode;
  }
}

TEST_F(InstallJobStart, Mode4ReadsNeitherTheChoiceFileNorTheNumberOfVolumesForTheOption) {
  setAttributes("Mode = SupportHub\nRelativePath2 = Update\nNumberOfVolumes = 2\nLiteVsFullPrompt = Yes\n");
  writeFile("/tmp/TavInstallType", "Lite\n");
  makeFolder(std::string(kSet) + "/Update/TANVO/Lumaweave");
  EXPECT_THAT(planAlone(), ElementsAre(kFoundLine, "Installation mode is 4",
                                       "Data from attributes file::  RelativePath2=Update ", kRelativeKindLine,
                                       "Could not find RelativePath string in attributes file ",
                                       "Displaying Lite Vs Full Informational Prompt 0"));
  EXPECT_EQ(pane.gInstallationHasLiteVsFullOption, 1);
  EXPECT_EQ(pane.gTwoComponentInstallChoicesAreLite[0], 0);
  EXPECT_EQ(pane.gVolumeCount, 2);
}

// ---- The source root ----

TEST_F(InstallJobStart, InMode2TheRootIsTheFirstVolumesPathEvenWhenItIsNotMounted) {
  setAttributes("Mode = InstallFromVolumes\nRelativePath = Data\n");
  ASSERT_FALSE(exists("/Volumes/Tavenhall Tessaphon A"));
  planAlone();
  EXPECT_EQ(pane.gPathOfSourceDataExcludingTANVOtail.view(), "/Volumes/Tavenhall Tessaphon A");
}

TEST_F(InstallJobStart, InTheOtherModesTheRootIsRelativeToThePackagesFolder) {
  for (const char* mode : {"DataUpdater", "Downloaded", "SupportHub"}) {
    setAttributes(std::string("Mode = ") + mode + "\nRelativePath = ../Data of the set\n");
    planAlone();
    EXPECT_EQ(pane.gPathOfSourceDataExcludingTANVOtail.view(),
              "/Users/tester/Downloads/Set/../Data of the set");
  }
}

TEST_F(InstallJobStart, WithoutARelativePathTheRootIsOneFolderUp) {
  setAttributes("Mode = DataUpdater\n");
  planAlone();
  EXPECT_EQ(pane.gPathOfSourceDataExcludingTANVOtail.view(), "/Users/tester/Downloads/Set/..");
}

TEST_F(InstallJobStart, WhatBelongsToOthersIsLeftAlone) {
  setAttributes("Mode = DataUpdater\n");
  pane.gAltSrcFolder.assign("/alternate");
  pane.totalNumBytesExpectedAcrossAllVolumes = 77;
  pane.gTANVOorDOVAnameOnly.assign("NAME");
  planAlone();
  EXPECT_EQ(pane.gAltSrcFolder.view(), "/alternate");
  EXPECT_EQ(pane.totalNumBytesExpectedAcrossAllVolumes, 77);
  EXPECT_EQ(pane.gTANVOorDOVAnameOnly.view(), "NAME");
  EXPECT_EQ(pane.gTANVOorDOVA_destinationPath, kTanvo);
}

// ---- The plug-in's name and the folder's ----

TEST_F(InstallJobStart, ThePluginNameIsTheLocalisedOne) {
  setAttributes("Mode = InstallFromVolumes\n");
  platform().strings["PluginName"] = "Bassoria";
  planAlone();
  EXPECT_EQ(pane.gPluginNameChar.view(), "Bassoria");
  EXPECT_EQ(pane.gPathOfSourceDataExcludingTANVOtail.view(), "/Volumes/Tavenhall Bassoria");
}

TEST_F(InstallJobStart, AMissingPluginNameIsTheKeyItself) {
  setAttributes("Mode = InstallFromVolumes\n");
  platform().strings.erase("PluginName");
  planAlone();
  EXPECT_EQ(pane.gPluginNameChar.view(), "PluginName");
  EXPECT_EQ(pane.gPathOfSourceDataExcludingTANVOtail.view(), "/Volumes/");
}

TEST_F(InstallJobStart, APluginNameOf511BytesIsTaken) {
  setAttributes("Mode = DataUpdater\n");
  platform().strings["PluginName"] = std::string(511, 'p');
  planAlone();
  EXPECT_EQ(pane.gPluginNameChar.length(), 511U);
}

TEST_F(InstallJobStart, APluginNameOf512BytesEndsTheProcess) {
  setAttributes("Mode = DataUpdater\n");
  platform().strings["PluginName"] = std::string(512, 'p');
  EXPECT_DEATH(planAlone(), "InstallDataPane: a text does not fit its buffer of 512 bytes; stopping");
}

TEST_F(InstallJobStart, AFolderNameOf127BytesIsTakenByTheJob) {
  setAttributes("Mode = DataUpdater\n");
  platform().strings["FolderName"] = std::string(127, 'f');
  pane.spawnBackgroundInstallJob();
  host.serve();
  EXPECT_EQ(pane.gTANVOorDOVAnameOnly.view(), std::string(127, 'f'));
}

TEST_F(InstallJobStart, AFolderNameOf128BytesEndsTheProcess) {
  setAttributes("Mode = DataUpdater\n");
  platform().strings["FolderName"] = std::string(128, 'f');
  EXPECT_DEATH(
      {
        pane.spawnBackgroundInstallJob();
        host.serve();
      },
      "InstallDataPane: a text does not fit its buffer of 128 bytes; stopping");
}

// ---- Staying awake, and the thread ----

TEST_F(InstallJobStart, BothHoldsAreTakenFirstAndKept) {
  setAttributes("Mode = DataUpdater\n");
  platform().nextAssertion = 41;
  std::vector<std::string> callsAtStart;
  host.onLine = [&](const std::string& line) {
    if (line == "thread.started doEntireInstall") {
      callsAtStart = platform().calls();
    }
  };
  pane.spawnBackgroundInstallJob();
  host.serve();
  EXPECT_THAT(callsAtStart, ElementsAre(kDisplayHold, kIdleHold, "thread doEntireInstall"));
  EXPECT_EQ(assertionIDDisplay, 41U);
  EXPECT_EQ(assertionIDNoIdle, 42U);
}

TEST_F(InstallJobStart, TheInstallGivesEachHoldBackOnce) {
  setAttributes("Mode = DataUpdater\n");
  pane.spawnBackgroundInstallJob();
  host.serve();
  EXPECT_THAT(platform().callsThatBegin("assertion.release"),
              ElementsAre("assertion.release 101", "assertion.release 102"));
  EXPECT_THAT(host.linesThatBegin("assertion.release"), ElementsAre("assertion.release NoDisplaySleepAssertion",
                                                                    "assertion.release NoIdleSleepAssertion"));
}

TEST_F(InstallJobStart, AHoldThatIsNotGrantedDoesNotStopTheJob) {
  setAttributes("Mode = DataUpdater\n");
  platform().nextAssertion = 0;
  pane.spawnBackgroundInstallJob();
  host.serve();
  EXPECT_EQ(host.linesThatBegin("thread.started doEntireInstall").size(), 1U);
  EXPECT_THAT(host.linesThatBegin("sheet "), Not(Contains("sheet OK|The installation has not finished.")));
}

TEST_F(InstallJobStart, OneThreadIsStarted) {
  setAttributes("Mode = DataUpdater\n");
  pane.spawnBackgroundInstallJob();
  host.serve();
  EXPECT_THAT(host.linesThatBegin("thread."),
              ElementsAre("thread.started doEntireInstall", "thread.ended doEntireInstall"));
}

TEST_F(InstallJobStart, AThreadThatCannotStartGivesTheHoldsBackLogsAndShowsInstallError) {
  setAttributes("Mode = DataUpdater\n");
  platform().canStartThreads = false;
  platform().strings["InstallError"] = "Could not install.";

  pane.spawnBackgroundInstallJob();

  EXPECT_EQ(logMessages().back(), kNoThreadLine);
  EXPECT_THAT(platform().callsThatBegin("assertion"),
              ElementsAre(kDisplayHold, kIdleHold, "assertion.release 101", "assertion.release 102"));
  EXPECT_THAT(host.lines(),
              ElementsAre(kDisplayHold, kIdleHold, "assertion.release NoDisplaySleepAssertion",
                          "assertion.release NoIdleSleepAssertion", "sheet OK|Could not install."));
  EXPECT_EQ(host.dispatches(), 0);
}

TEST_F(InstallJobStart, AfterAThreadThatCouldNotStartThePageCanBeEnteredAgain) {
  setAttributes("Mode = DataUpdater\nRelativePath = Data\n");
  writeFile(std::string(kSet) + "/Data/TANVO/one.dat", "one");
  makeFolder(kTanvo);
  platform().canStartThreads = false;
  pane.didEnterPane(0);
  EXPECT_FALSE(pane.shouldExitPane(0));

  platform().canStartThreads = true;
  pane.didEnterPane(0);
  host.serve();
  EXPECT_TRUE(pane.shouldExitPane(0));
}

}  // namespace

}  // namespace tavenhall::test
