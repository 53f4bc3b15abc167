#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Installs that come in a Lite and a Full edition, as the user chose before the page.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::IsSupersetOf;
using testing::Not;

constexpr const char* kDiscs =
    "Mode = InstallFromVolumes\n"
    "LiteVsFullPrompt = yES\n"
    "NumberOfVolumes = 2\n"
    "TotalSizeMillionsBytes = 5\n"
    "Component1SizeMillionsBytes = 2\n";

TEST(Editions, LiteFromDiscsIsTheFirstDiscAlone) {
  layPackage(kDiscs);
  layTree(kDiscA, {file("TANVO/Tessaphon/lite.db", 4096)});
  layTree(kDiscB, {file("TANVO/Tessaphon/full.db", 4096)});

  JsonInstaller installer({"--package", kPackage, "--install-type", "Lite"});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("discs_lite", installer);
}

TEST(Editions, FullFromDiscsIsEveryDisc) {
  layPackage(kDiscs);
  layTree(kDiscA, {file("TANVO/Tessaphon/lite.db", 4096)});
  layTree(kDiscB, {file("TANVO/Tessaphon/full.db", 4096)});

  JsonInstaller installer({"--package", kPackage, "--install-type", "Full"});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("discs_full", installer);
}

void layTwoComponents(const std::string& mode) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = " + mode +
                                                             "\n"
                                                             "RelativePath = Component 1\n"
                                                             "RelativePath2 = Component 2\n"
                                                             "NumberOfVolumes = 2\n"
                                                             "TotalSizeMillionsBytes = 5\n"
                                                             "Component1SizeMillionsBytes = 2\n"),
                 file("Component 1/TANVO/Tessaphon/lite.db", 4096),
                 file("Component 2/TANVO/Tessaphon/full.db", 4096), textFile("Installer.pkg", "")});
  layTree(kTanvo, {});
}

TEST(Editions, LiteFromADataUpdaterIsTheFirstComponentAlone) {
  layTwoComponents("DataUpdater");

  JsonInstaller installer({"--package", kPackage, "--install-type", "Lite"});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("components_lite", installer);
}

TEST(Editions, FullFromADownloadedInstallerIsBothComponents) {
  layTwoComponents("Downloaded");

  JsonInstaller installer({"--package", kPackage, "--install-type", "Full"});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("components_full", installer);
}

TEST(Editions, WithoutAChoiceFileTheEditionIsFull) {
  layTwoComponents("DataUpdater");

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(logMessages(), Contains("Could not open install type file  /tmp/TavInstallType"));
  EXPECT_EQ(treeOf(kTanvo), (std::vector<std::string>{"Tessaphon/", "Tessaphon/full.db", "Tessaphon/lite.db"}));
}

TEST(Editions, WithoutThePromptDiscsAreAllInstalledWhateverTheChoiceFileSays) {
  layPackage(
      "Mode = InstallFromVolumes\nLiteVsFullPrompt = No\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 5\n");
  layTree(kDiscA, {file("TANVO/Tessaphon/lite.db", 4096)});
  layTree(kDiscB, {file("TANVO/Tessaphon/full.db", 4096)});

  JsonInstaller installer({"--package", kPackage, "--install-type", "Lite"});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(logMessages(), Contains("Data from attributes file::  LiteVsFullPrompt =No "));
  EXPECT_THAT(logMessages(), Not(Contains("contentsOfTavInstallTypeFile = Lite")));
  EXPECT_EQ(treeOf(kTanvo), (std::vector<std::string>{"Tessaphon/", "Tessaphon/full.db", "Tessaphon/lite.db"}));
}

}  // namespace
}  // namespace tavenhall::test
