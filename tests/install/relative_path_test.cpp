#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

// Installs from a folder that lies beside the package, and packages that say little or nothing.
namespace tavenhall::test {
namespace {

TEST(RelativePath, ADataUpdaterReplacesOlderFilesAndLeavesHiddenOnesWhereTheyAre) {
  layTree(kSet,
          {textFile(".InstallationAttributes.dat",
                    "Mode = Tessaphon DataUpdater\n"
                    "RelativePath = Update Data\n"
                    "InstalledData = The update is installed.\n"
                    "TotalSizeMillionsBytes = 1\n"),
           textFile("Installer.pkg", ""), file("Update Data/TANVO/.DS_Store", 600),
           file("Update Data/TANVO/.Trashes/t.db", 2048), file("Update Data/TANVO/Empty/.keep", 1),
           file("Update Data/TANVO/Tessaphon/.hidden.db", 2048),
           file("Update Data/TANVO/Tessaphon/new.db", 2048), file("Update Data/TANVO/Tessaphon/old.db", 3072)});
  layTree(kTanvo, {file(".DS_Store", 700), file("Tessaphon/kept.db", 5000), file("Tessaphon/old.db", 9000)});
  ASSERT_EQ(chmod((std::string(kTanvo) + "/Tessaphon/old.db").c_str(), 0600), 0);

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("data_updater", installer);
}

TEST(RelativePath, ADownloadedInstallerFindsItsAttributesFileAndItsDataOneFolderAbove) {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "mode = Downloaded\n"
                          "installdatatitle = Tessaphon\n"
                          "TotalSizeMillionsBytes = 1\n"
                          "NumberOfVolumes = 1\n"),
                 textFile("Packages/Installer.pkg", ""), file("TANVO/Tessaphon/a.db", 1024)});
  layTree(kTanvo, {});

  JsonInstaller installer({"--package", std::string(kSet) + "/Packages/Installer.pkg"});
  installer.send({kTitle, kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("downloaded_installer", installer);
}

TEST(RelativePath, MissingDataIsReportedAndThePageCannotBeLeftForwards) {
  layPackage("Mode = DataUpdater\nRelativePath = Nowhere\n");

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("missing_data_folder", installer);
}

TEST(RelativePath, WithoutAnAttributesFileASingleDiscIsInstalled) {
  layTree(kSet, {textFile("Installer.pkg", "")});
  layTree(kTanvo, {});
  layTree(kDiscA, {file("TANVO/a.db", 1024)});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kTitle, kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("no_attributes_file", installer);
}

TEST(RelativePath, TextsAndNamesThatAreNotUtf8AreShownWithReplacementCharacters) {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\n"
                          "InstallDataTitle = Caf\xE9\n"
                          "InstallingData = Installing \xFF into %s\n"
                          "InstalledData = 100%% d\xF6ne, %d %s %s\n"
                          "RelativePath = .\n"
                          "TotalSizeMillionsBytes = 1\n"),
                 textFile("Installer.pkg", ""), file("TANVO/B\xE4nke/\xFC.db", 1024)});
  layTree(kTanvo, {});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kTitle, kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase(
      "not_utf8", installer,
      {.masks = {{"\xE9", "<E9>"}, {"\xFF", "<FF>"}, {"\xF6", "<F6>"}, {"\xE4", "<E4>"}, {"\xFC", "<FC>"}}});
}

}  // namespace
}  // namespace tavenhall::test
