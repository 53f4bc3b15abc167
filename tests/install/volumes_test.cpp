#include "tests/install/case_files.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Installs from discs that are folders in /Volumes.
namespace tavenhall::test {
namespace {

TEST(Volumes, TwoDiscsAreInstalledAndTheSecondIsAskedForUntilItIsThere) {
  layPackage(
      "Mode = InstallFromVolumes\n"
      "InstallDataTitle = Installing Tessaphon Data\n"
      "InstallingData = Installing to:\\n\\n%s\\n\\nPlease wait.\n"
      "InstalledData = All is in %s.\n"
      "NumberOfVolumes = 2\n"
      "TotalSizeMillionsBytes = 3\n");
  layTree(kDiscA, {file("TANVO/Settings/a.db", 30000), file("TANVO/Tessaphon/Patches/one.prt", 500),
                   file("TANVO/Tessaphon/Patches/two.prt", 10241), file("TANVO/Tessaphon/big.db", 1100000)});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kTitle, kEnter, kWait, kForward});
  installer.await("alert");
  installer.send(kFirstButton);  // without a disc
  installer.await("alert");
  layTree(kDiscB, {file("TANVO/Voices/v.db", 20480)});
  installer.send(kFirstButton);

  EXPECT_EQ(installer.finish(), 0);
  expectCase("two_discs", installer);
}

TEST(Volumes, ASingleVolumeIsInstalledWithTheBuiltInTextsWhereTheFileHasNone) {
  layPackage("Mode = InstallFromVolumes\r\n");
  layTree(kDiscA, {file("TANVO/Tessaphon/a.db", 10240)});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kTitle, kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("single_volume", installer);
}

TEST(Volumes, TheFolderBelowMacOsxIsTakenWhereADiscHasNoOther) {
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n");
  layTree(kDiscA, {file("Mac OSX/TANVO/Tessaphon/a.db", 4096), file("TANVO-readme.txt", 10)});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("alternate_folder", installer);
}

TEST(Volumes, TheFolderAtTheTopOfADiscGoesBeforeTheOneBelowMacOsx) {
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n");
  layTree(kDiscA, {file("Mac OSX/TANVO/below.db", 2048), file("TANVO/top.db", 2048)});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(treeOf(kTanvo), std::vector<std::string>{"top.db"});
}

// Three attempts of five seconds each before the copy goes ahead.
TEST(Volumes, ADiscWhoseFolderHoldsOnlyHiddenFilesIsWaitedForAndThenCountsAsInstalled) {
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n");
  layTree(kDiscA, {file("TANVO/.DS_Store", 100)});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("empty_disc", installer);
}

TEST(Volumes, AnotherProductHasItsOwnVolumeNameAndDataFolder) {
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n", {"DOVA"});
  layTree("/Volumes/Tavenhall Lumaweave", {file("DOVA/Lumaweave/a.db", 2048)});

  JsonInstaller installer({"--package", kPackage, "--product", "Lumaweave"});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("lumaweave_disc", installer);
}

TEST(Volumes, ADiscSetTakesItsFurtherDiscsFromTheTableOfOptionalDiscs) {
  const std::string discOne = "/Volumes/Tempora QX Disc 1";
  layTree(kDova, {});
  layTree(discOne,
          {textFile(".InstallationAttributes.dat",
                    "Mode = DiscSet\nRelativePath = .\nNumberOfVolumes = 4\nTotalSizeMillionsBytes = 1\n"),
           file("DOVA/a.db", 1024), textFile("Installer.pkg", "")});
  layTree("/Volumes/Tavenhall Tempora QX", {file("DOVA/b.db", 1024)});
  layTree("/Volumes/Northfield DOVA Outrider", {file("DOVA/c.db", 1024)});
  layTree("/Volumes/Copper Lanes DOVA Outrider", {file("DOVA/d.db", 1024)});

  JsonInstaller installer({"--package", discOne + "/Installer.pkg", "--product", "TemporaQX"});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("tempora_disc_set", installer);
}

// The discs of this product share one name. When disc 1 stays in, the page takes it for disc 2 and never asks.
TEST(Volumes, ADiscThatStaysInIsReportedInsteadOfBeingTakenForTheNext) {
  layPackage("Mode = InstallFromVolumes\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n", {"DOVA"});
  writeFile("/Volumes/Tavenhall Lumaweave/DOVA/one.db", "one");
  const Outcome outcome =
      runThrough({kTavinstall, "run", "--ui", "plain", "--product", "Lumaweave", "--package", kPackage});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(
      outcome.output,
      testing::HasSubstr("\n! Copied again instead of the next disc: /Volumes/Tavenhall Lumaweave/DOVA\n"));
}

}  // namespace
}  // namespace tavenhall::test
