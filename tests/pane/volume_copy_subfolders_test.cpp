#include "pane/install_data_pane.h"
#include "tests/pane/event_trace.h"
#include "tests/pane/execution_fixtures.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavenhall::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSecond = "/tmp/Second/TANVO";

struct ChosenLibrary {
  const char* name;
  std::int32_t isLite;
};

// An update that is at its second component, whose three libraries have a file each.
struct SecondVolume {
  RecordingHost host;
  InstallDataPane pane{host};

  explicit SecondVolume(const std::vector<ChosenLibrary>& libraries = {
                            {"Aria", 0}, {"Borealis", 1}, {"Cinder", 0}}) {
    pane.gInstallMode = 4;
    pane.gCurrentVolumeNumber = 1;
    pane.copySrcPath = kSecond;
    pane.copyDstPath = "/tmp/to";
    pane.gTANVOorDOVAnameOnly.assign("TANVO");
    pane.copySingleVolumeRunning = 1;
    for (const ChosenLibrary& library : libraries) {
      const auto i = static_cast<std::size_t>(pane.gNumTwoComponentInstallFolders++);
      pane.gTwoComponentInstallFolderNames[i].assign(library.name);
      pane.gTwoComponentInstallChoicesAreLite[i] = library.isLite;
      writeFile(std::string(kSecond) + "/" + library.name + "/full.dat", library.name);
    }
    writeFile(std::string(kSecond) + "/unlisted.dat", "x");
    makeFolder("/tmp/to");
  }

  // From now on the library's copy fails.
  static void breakLibrary(const std::string& name) {
    std::filesystem::create_symlink("/tmp/nowhere", std::string(kSecond) + "/" + name + "/broken");
  }
};

std::vector<std::string> begins() { return thoseThatBegin(logMessages(), "Begin copySingleVolume"); }

TEST_F(VolumeCopy, TheSecondVolumeOfAnUpdateCopiesOnlyTheLibrariesChosenInFull) {
  SecondVolume update;
  update.pane.copySingleVolume();
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("Aria/", "Aria/full.dat", "Cinder/", "Cinder/full.dat"));
  EXPECT_EQ(update.pane.readyToProceed, 1);
  EXPECT_EQ(update.pane.copySingleVolumeRunning, 0);
}

TEST_F(VolumeCopy, EverySubFolderCopyIsLoggedBeforeTheEnginesLines) {
  SecondVolume update;
  EventTrace trace(update.host);
  update.pane.copySingleVolume();
  EXPECT_THAT(
      trace.eventsButProgress(),
      ElementsAre("log Begin copySingleVolume for copySrcPathWithSubFolder /tmp/Second/TANVO/Aria\n",
                  "log Copying folder /tmp/Second/TANVO/Aria /tmp/to/Aria\n", "log mkdir 0 2 /tmp/to/Aria",
                  "log Begin copySingleVolume for copySrcPathWithSubFolder /tmp/Second/TANVO/Cinder\n",
                  "log Copying folder /tmp/Second/TANVO/Cinder /tmp/to/Cinder\n",
                  "log mkdir 0 2 /tmp/to/Cinder", "status  ",
                  "log End copySingleVolume: copySrcPath /tmp/Second/TANVO\n"));
}

TEST_F(VolumeCopy, TheLastSubFoldersFailureCounts) {
  SecondVolume update;
  SecondVolume::breakLibrary("Cinder");
  update.pane.copySingleVolume();
  EXPECT_EQ(update.pane.readyToProceed, 0);
}

TEST_F(VolumeCopy, AnEarlierSubFoldersFailureIsForgotten) {
  SecondVolume update;
  SecondVolume::breakLibrary("Aria");
  update.pane.copySingleVolume();
  EXPECT_EQ(update.pane.readyToProceed, 1);
  EXPECT_EQ(begins().size(), 2U);
}

TEST_F(VolumeCopy, EveryValueButZeroMeansLite) {
  SecondVolume update({{"Aria", -1}, {"Borealis", 0}, {"Cinder", 2}});
  update.pane.copySingleVolume();
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("Borealis/", "Borealis/full.dat"));
}

TEST_F(VolumeCopy, WithoutLibrariesNothingIsCopiedAndReadyToProceedStays) {
  for (const std::int32_t count : {0, -1}) {
    SecondVolume update(std::vector<ChosenLibrary>{});
    update.pane.gNumTwoComponentInstallFolders = count;
    update.pane.readyToProceed = 7;
    update.pane.copySingleVolume();
    EXPECT_EQ(update.pane.readyToProceed, 7);
    EXPECT_EQ(update.pane.copySingleVolumeRunning, 0);
    EXPECT_THAT(update.host.lines(), ElementsAre("status  "));
  }
  EXPECT_THAT(treeOf("/tmp/to"), IsEmpty());
  EXPECT_THAT(logMessages(), ElementsAre("End copySingleVolume: copySrcPath /tmp/Second/TANVO\n",
                                         "End copySingleVolume: copySrcPath /tmp/Second/TANVO\n"));
}

TEST_F(VolumeCopy, WithLiteLibrariesOnlyNothingIsCopiedAndReadyToProceedStays) {
  SecondVolume update({{"Aria", 1}, {"Borealis", 1}});
  update.pane.readyToProceed = 1;
  update.pane.copySingleVolume();
  EXPECT_THAT(treeOf("/tmp/to"), IsEmpty());
  EXPECT_EQ(update.pane.readyToProceed, 1);
}

TEST_F(VolumeCopy, TheNumberOfLibrariesIsReadAnewAfterEachCopy) {
  SecondVolume update({{"Aria", 0}, {"Borealis", 0}, {"Cinder", 0}});
  update.host.onLine = [&](const std::string&) { update.pane.gNumTwoComponentInstallFolders = 1; };
  update.pane.copySingleVolume();
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("Aria/", "Aria/full.dat"));
}

TEST_F(VolumeCopy, ALibraryThatTheVolumeDoesNotHaveIsMadeEmptyAndCountsAsCopied) {
  SecondVolume update({{"Aria", 0}});
  update.pane.gTwoComponentInstallFolderNames[0].assign("Missing");
  update.pane.copySingleVolume();
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("Missing/"));
  EXPECT_EQ(update.pane.readyToProceed, 1);
}

TEST_F(VolumeCopy, APackInASubFolderIsCopiedBelowItsGroup) {
  SecondVolume update({{"Mirel Packs/Dusk", 0}});
  makeFolder("/tmp/to/Mirel Packs");
  update.pane.copySingleVolume();
  EXPECT_THAT(treeOf("/tmp/to"), ElementsAre("Mirel Packs/", "Mirel Packs/Dusk/", "Mirel Packs/Dusk/full.dat"));
}

TEST_F(VolumeCopy, TheDataFoldersNameIsTheTailNameOfASubFolderToo) {
  SecondVolume update({{"Aria", 0}});
  update.pane.copySingleVolume();
  EXPECT_EQ(update.pane.gItemCurrentlyBeingInstalled.view(), "TANVO");
}

TEST_F(VolumeCopy, TheFirstVolumeOfAnUpdateIsCopiedWhole) {
  SecondVolume update;
  update.pane.gCurrentVolumeNumber = 0;
  update.pane.copySingleVolume();
  EXPECT_THAT(begins(), ElementsAre("Begin copySingleVolume: copySrcPath /tmp/Second/TANVO\n"));
  EXPECT_EQ(treeOf("/tmp/to"), treeOf(kSecond));
}

TEST_F(VolumeCopy, TheThirdVolumeOfAnUpdateIsCopiedWhole) {
  SecondVolume update;
  update.pane.gCurrentVolumeNumber = 2;
  update.pane.copySingleVolume();
  EXPECT_THAT(begins(), ElementsAre("Begin copySingleVolume: copySrcPath /tmp/Second/TANVO\n"));
}

TEST_F(VolumeCopy, TheSecondVolumeOfOtherModesIsCopiedWhole) {
  for (const std::int32_t mode : {0, 2, 3}) {
    SecondVolume update;
    update.pane.gInstallMode = mode;
    update.pane.copySingleVolume();
  }
  EXPECT_THAT(begins(), ElementsAre("Begin copySingleVolume: copySrcPath /tmp/Second/TANVO\n",
                                    "Begin copySingleVolume: copySrcPath /tmp/Second/TANVO\n",
                                    "Begin copySingleVolume: copySrcPath /tmp/Second/TANVO\n"));
}

TEST_F(VolumeCopy, NoDestinationIsNoneForTheSubFoldersEither) {
  SecondVolume update;
  update.pane.copyDstPath = nullptr;
  update.pane.readyToProceed = 1;
  update.pane.copySingleVolume();
  EXPECT_THAT(logMessages(),
              ElementsAre("Begin copySingleVolume for copySrcPathWithSubFolder /tmp/Second/TANVO/Aria\n",
                          "copyDirectoryOrFile: no destination for /tmp/Second/TANVO/Aria",
                          "Begin copySingleVolume for copySrcPathWithSubFolder /tmp/Second/TANVO/Cinder\n",
                          "copyDirectoryOrFile: no destination for /tmp/Second/TANVO/Cinder",
                          "End copySingleVolume: copySrcPath /tmp/Second/TANVO\n"));
  EXPECT_EQ(update.pane.readyToProceed, 0);
}

// ---- Limits ----

TEST_F(VolumeCopy, SubFolderPathsOf2047BytesAreUsedWhole) {
  SecondVolume update({{"Aria", 0}});
  const std::string source = pathOfLength(2042, "/tmp", 's');
  const std::string dest = pathOfLength(2042, "/tmp", 'd');
  makeFolder(dest + "/Aria");
  update.pane.copySrcPath = source.c_str();
  update.pane.copyDstPath = dest.c_str();
  update.pane.copySingleVolume();
  EXPECT_THAT(begins(),
              ElementsAre("Begin copySingleVolume for copySrcPathWithSubFolder " + source + "/Aria\n"));
}

TEST_F(VolumeCopy, ASubFoldersSourcePathOf2048BytesEndsTheProcess) {
  SecondVolume update({{"Aria", 0}});
  const std::string source = pathOfLength(2043, "/tmp", 's');
  update.pane.copySrcPath = source.c_str();
  EXPECT_DEATH(update.pane.copySingleVolume(), "does not fit its buffer of 2048 bytes");
}

TEST_F(VolumeCopy, ASubFoldersDestinationPathOf2048BytesEndsTheProcess) {
  SecondVolume update({{"Aria", 0}});
  const std::string dest = pathOfLength(2043, "/tmp", 'd');
  makeFolder(dest + "/Aria");
  update.pane.copyDstPath = dest.c_str();
  EXPECT_DEATH(update.pane.copySingleVolume(), "does not fit its buffer of 2048 bytes");
}

}  // namespace

}  // namespace tavenhall::test
