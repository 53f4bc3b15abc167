#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Where the data goes: the user's central folder, or what stands in its place.
namespace tavenhall::test {
namespace {

using testing::Contains;

void layUpdate() {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 1\n"),
                 textFile("Installer.pkg", ""), file("TANVO/Tessaphon/a.db", 1024)});
}

TEST(CentralFolder, WhereItIsMissingNothingIsStartedAndThePageCanOnlyBeLeftBackwards) {
  layUpdate();
  layTree(kMakersFolder, {});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward, kBack});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("no_central_folder", installer);
}

TEST(CentralFolder, ALinkIntoAFolderBesideItIsFollowed) {
  layUpdate();
  layTree(kMakersFolder, {folder("Store/TANVO"), link("TANVO", "Store/TANVO")});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("central_folder_link_beside", installer);
}

TEST(CentralFolder, ALinkToAnotherVolumeIsFollowed) {
  layUpdate();
  layTree("/Volumes/Data", {folder("Sounds/TANVO")});
  layTree(kMakersFolder, {link("TANVO", "/Volumes/Data/Sounds/TANVO")});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("central_folder_link_absolute", installer, {.folders = {"/Volumes/Data"}});
}

TEST(CentralFolder, ALinkToNothingCountsAsMissing) {
  layUpdate();
  layTree(kMakersFolder, {link("TANVO", "/Volumes/Data/TANVO")});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter});
  installer.await("sheet");

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(logMessages(), Contains("After resolve 1 /Volumes/Data/TANVO"));
  EXPECT_THAT(logMessages(), Contains("InstallData fatal error: TANVO or DOVA folder not found."));
  EXPECT_FALSE(exists("/Volumes/Data"));
}

}  // namespace
}  // namespace tavenhall::test
