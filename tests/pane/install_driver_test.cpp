#include "pane/process_wide.h"
#include "tests/pane/execution_fixtures.h"
#include "tests/pane/volume_pass.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* kComplete =
    "Installation complete\n*********************************************************\n";

// An install thread at work while the main thread serves.
struct Install : VolumePass {
  explicit Install(std::int32_t mode, const std::string& root = "/tmp/Start") : VolumePass(mode, root) {
    assertionIDDisplay = 7;
    assertionIDNoIdle = 9;
  }

  void run() {
    host.serve([this] { pane.doEntireInstall(); });
  }

  std::vector<std::string> eventsFrom(const std::string& first) {
    const auto events = trace.events();
    return {std::find(events.begin(), events.end(), first), events.end()};
  }
};

// What every install ends with, whatever it found.
std::vector<std::string> closing(const std::string& nextAtFirst, const std::string& instructions) {
  return {"log Finished with all TANVO/DOVA data",
          "main: animation.begin",
          "main: animation.duration 0",
          "main: progress.min 0",
          "main: progress.max 1",
          "main: progress.value 1",
          "main: progress.display",
          "main: animation.end",
          "previous 0",
          nextAtFirst,
          "instructions " + instructions,
          "next 1",
          "log Enabling Next button 1",
          "log Re-enabling sleep",
          "assertion.release 7",
          "assertion.release NoDisplaySleepAssertion",
          "assertion.release 9",
          "assertion.release NoIdleSleepAssertion",
          "next 1",
          "previous 0",
          "log Enabling Next button 2",
          std::string("log ") + kComplete};
}

TEST_F(InstallDriver, AWholeInstallOfOnePassRunsInThisOrder) {
  setTexts("");
  makeFolder("/tmp/Start/TANVO");
  Install install(0);
  install.run();
  std::vector<std::string> expected = {
      "main: progress.value 0",
      "main: progress.display",
      "log Found Installation Attribute File at  /Users/tester/Downloads/Set/.InstallationAttributes.dat",
      "log Data from attributes file::   num Vol=0 ",
      "log Volume 0 /tmp/Start/TANVO\n",
      "status  ",
      "log Data from attributes file::  InstalledData=Done in %s ",
      "log Data from attributes file::  InstallingData=Copying to %s ",
      "instructions Copying to " + kTo,
      "log Data from attributes file:   data size=1000000 (bytes)",
      "animation.begin",
      "animation.duration 0",
      "progress.min 0",
      "progress.max 976.562",
      "animation.end",
      "log Volume count: 1",
      "log Using primary folder /tmp/Start /tmp/Start/TANVO /tmp/Start/Mac OSX/TANVO",
      "thread copySingleVolume",
      "log Begin copySingleVolume: copySrcPath /tmp/Start/TANVO\n",
      "log Copying folder /tmp/Start/TANVO " + kTo + "\n",
      "status  ",
      "log End copySingleVolume: copySrcPath /tmp/Start/TANVO\n"};
  for (const std::string& line : closing("next 1", "Done in " + kTo)) {
    expected.push_back(line);
  }
  EXPECT_THAT(install.trace.events(), ElementsAreArray(expected));
}

TEST_F(InstallDriver, TheInstallThreadHandsTheBarToTheMainThreadTwice) {
  setTexts("");
  makeFolder("/tmp/Start/TANVO");
  Install install(0);
  install.run();
  EXPECT_EQ(install.host.dispatches(), 2);
  EXPECT_EQ(install.host.barValue(), 1.0);
  EXPECT_EQ(install.host.barMaximum, 1.0);
}

TEST_F(InstallDriver, NextIsEnabledOnceBeforeAndOnceAfterTheHoldsAreReleased) {
  setTexts("");
  makeFolder("/tmp/Start/TANVO");
  Install install(0);
  install.run();
  auto lines = install.eventsFrom("log Finished with all TANVO/DOVA data");
  std::erase_if(lines, [](std::string_view line) {
    return !line.starts_with("next") && !line.starts_with("assertion.release N");
  });
  EXPECT_THAT(lines, ElementsAre("next 1",  // as the result says
                                 "next 1", "assertion.release NoDisplaySleepAssertion",
                                 "assertion.release NoIdleSleepAssertion", "next 1"));
}

TEST_F(InstallDriver, TheHoldsAreReleasedOnce) {
  setTexts("");
  Install install(3);
  install.run();
  EXPECT_THAT(platform().callsThatBegin("assertion"),
              ElementsAre("assertion.release 7", "assertion.release 9"));
}

// ---- Whatever the pass found ----

TEST_F(InstallDriver, APassThatEndsOnTheNotFoundSheetIsCompletedTheSame) {
  setTexts("");
  Install install(3);
  install.run();
  EXPECT_THAT(install.host.linesThatBegin("sheet "), ElementsAre("sheet OK|Files to be installed not found."));
  EXPECT_THAT(install.eventsFrom("log Finished with all TANVO/DOVA data"),
              ElementsAreArray(closing("next 0", "Done in " + kTo)));
  EXPECT_EQ(install.pane.readyToProceed, 0);
}

TEST_F(InstallDriver, AFailedCopyIsCompletedTheSame) {
  setTexts("");
  makeFolder("/tmp/Start/TANVO");
  std::filesystem::create_symlink("/tmp/nowhere", "/tmp/Start/TANVO/broken");
  Install install(3);
  install.run();
  EXPECT_THAT(install.eventsFrom("log Finished with all TANVO/DOVA data"),
              ElementsAreArray(closing("next 0", "Done in " + kTo)));
  EXPECT_EQ(install.pane.readyToProceed, 0);
}

TEST_F(InstallDriver, SkippedDiscsAreCompletedTheSame) {
  setTexts("NumberOfVolumes = 3\n");
  makeFolder("/Volumes/Tempora QX Disc 1/TANVO/Samples");
  makeFolder("/Volumes/Tavenhall Tempora QX/TANVO/Samples");
  Install install(2, "/Volumes/Tempora QX Disc 1");
  install.pane.gPluginNameChar.assign("TemporaQX");
  install.host.answers = {1001};
  install.run();
  EXPECT_THAT(install.eventsFrom("log Finished with all TANVO/DOVA data"),
              ElementsAreArray(closing("next 1", "Done in " + kTo)));
}

TEST_F(InstallDriver, APassWithoutVolumesStillShowsTheFullBarTheMessageAndTheEnd) {
  setTexts("NumberOfVolumes = 4294967296\n");
  makeFolder("/tmp/Start/TANVO");
  Install install(0);
  install.run();
  auto expected = closing("next 0", "Done in " + kTo);
  expected.insert(expected.begin() + 10, "log Data from attributes file::  InstalledData=Done in %s ");
  EXPECT_THAT(install.eventsFrom("log Finished with all TANVO/DOVA data"), ElementsAreArray(expected));
  EXPECT_THAT(platform().callsThatBegin("thread "), IsEmpty());
}

// ---- The data folder's name ----

TEST_F(InstallDriver, TheLocalisedFolderNameIsTheDataFoldersName) {
  platform().strings["FolderName"] = "Données";
  setTexts("");
  writeFile("/tmp/Start/Données/one.dat", "one");
  for (const std::int32_t mode : {0, 2, 3}) {
    Install install(mode);
    install.run();
    EXPECT_EQ(install.pane.gTANVOorDOVAnameOnly.view(), "Données");
    EXPECT_EQ(readFile(kTo + "/one.dat"), "one");
  }
}

TEST_F(InstallDriver, OnePassKeepsTheDestinationAndTheRootThatWereSet) {
  setTexts("RelativePath = Elsewhere\n");
  makeFolder("/tmp/Start/TANVO");
  makeFolder("/tmp/to");
  Install install(3);
  install.pane.gTANVOorDOVA_destinationPath = "/tmp/to";
  install.run();
  EXPECT_STREQ(install.pane.gTANVOorDOVA_destinationPath, "/tmp/to");
  EXPECT_EQ(install.root(), "/tmp/Start");
  EXPECT_THAT(install.messages("After resolve"), IsEmpty());
  EXPECT_THAT(install.messages("Data from attributes file::    RelativePath"), IsEmpty());
}

TEST_F(InstallDriver, AFolderNameOf127BytesIsUsedWhole) {
  const std::string name(127, 'f');
  platform().strings["FolderName"] = name;
  setTexts("");
  writeFile("/tmp/Start/" + name + "/one.dat", "one");
  Install install(0);
  install.run();
  EXPECT_EQ(install.pane.gTANVOorDOVAnameOnly.view(), name);
  EXPECT_EQ(readFile(kTo + "/one.dat"), "one");
}

TEST_F(InstallDriver, AFolderNameOf128BytesEndsTheProcess) {
  platform().strings["FolderName"] = std::string(128, 'f');
  setTexts("");
  Install install(0);
  EXPECT_DEATH(install.pane.doEntireInstall(), "does not fit its buffer of 128 bytes");
}

TEST_F(InstallDriver, FoldersBesideThePackageAreForMode4Only) {
  setTexts("");
  writeFile("/Users/tester/Downloads/Set/Library/one.txt", "one");
  writeFile("/Users/tester/Downloads/Set/Applications/two.txt", "two");
  makeFolder("/tmp/Start/TANVO/Samples");
  for (const std::int32_t mode : {0, 2, 3}) {
    Install install(mode);
    install.run();
  }
  EXPECT_THAT(treeOf("/Library"), IsEmpty());
  EXPECT_THAT(treeOf("/Applications"), IsEmpty());
}

}  // namespace

}  // namespace tavenhall::test
