#include "tests/check/sets.h"

namespace tavenhall::test {

// ---- How the settings go together ----

TEST(SettingRemark, TwoComponentsAndNoSecondPath) {
  makeDataUpdateSet(
      "Mode = DataUpdater\nRelativePath = First\nInstallDataTitle = Second\nNumberOfVolumes = 2\n"
      "TotalSizeMillionsBytes = 1\nComponent1SizeMillionsBytes = 1\n");
  const CheckResult result = checkFor("Tessaphon");
  expectRemarks(result,
                {{"second-path-missing", "error", kAttributes, 4}, {"data-folder-missing", "error", "1/TANVO"}},
                1);
  EXPECT_EQ(sentenceOf(result, "second-path-missing"),
            "There is a second component and no RelativePath2, so the page looks for it in the folder \"1\" "
            "beside the "
            "package, which is another line's value.");
}

TEST(SettingRemark, ThreeVolumesBesideThePackage) {
  makeDataUpdateSet(
      "Mode = DataUpdater\nRelativePath = First\nNumberOfVolumes = 3\nTotalSizeMillionsBytes = 1\n");
  expectRemarks(checkFor("Tessaphon"), {{"volumes-without-prompt", "error", kAttributes, 3}}, 1);
}

TEST(SettingRemark, ThePackagesPathHasABackslash) {
  makeDiscSet();
  std::filesystem::rename(inSet("Installer.pkg"), inSet("My\\Installer.pkg"));
  EXPECT_THAT(foundIn(checkFor("Lumaweave")),
              testing::Contains(Found{"package-path", "error", "My\\Installer.pkg"}));
}

TEST(SettingRemark, ThePackagesPathIsTooLong) {
  const std::string name(250, 'x');
  const std::string deep = kSetFolder + "/" + name + "/" + name + "/" + name + "/" + name;
  writeFile(deep + "/Installer.pkg", "package");
  const CheckResult result = checkSet({deep, "Lumaweave", "", ""});
  EXPECT_THAT(foundIn(result), testing::Contains(Found{"package-path", "error", "Installer.pkg"}));
}

TEST(SettingRemark, NobodyNamesTheProduct) {
  makeDataUpdateSet();
  expectRemarks(checkFor(""), {{"product-assumed", "note", "Installer.pkg"}}, 0);
}

// ---- Sizes ----

namespace {

// `millions` of bytes that take no room on the disk.
void makeLargeFile(const std::string& path, int millions) {
  writeFile(path, "");
  std::filesystem::resize_file(path, static_cast<std::uintmax_t>(millions) * 1000000);
}

std::string withSizes(std::string lines, int total, int component) {
  lines = lines.substr(0, lines.find("TotalSize"));
  return lines + "TotalSizeMillionsBytes = " + std::to_string(total) +
         "\nComponent1SizeMillionsBytes = " + std::to_string(component) + "\n";
}

}  // namespace

TEST(SizeRemark, NoSizeIsAnnounced) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 2\n");
  expectRemarks(checkFor("Lumaweave"), {{"size-missing", "warning", kAttributes}}, 3);
}

TEST(SizeRemark, ASizeOfNothingIsAnnounced) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 0\n");
  expectRemarks(checkFor("Lumaweave"), {{"size-missing", "warning", kAttributes, 3}}, 3);
}

TEST(SizeRemark, NoSizeIsAnnouncedForTheLiteEdition) {
  makeDiscSet(kDiscLines + "LiteVsFullPrompt = Yes\n");
  const CheckResult result = checkFor("Lumaweave");
  expectRemarks(result, {{"size-missing", "warning", kAttributes}}, 3);
  EXPECT_THAT(sentenceOf(result, "size-missing"), testing::HasSubstr("as Component1SizeMillionsBytes, so"));
}

TEST(SizeRemark, TooMuchIsAnnounced) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 120, 60));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  const CheckResult result = checkFor("Tessaphon");
  expectRemarks(result, {{"size-total", "warning", kAttributes, 6}}, 3);
  EXPECT_EQ(sentenceOf(result, "size-total"),
            "TotalSizeMillionsBytes announces 120.0 MB and there are 100.0 MB, so the bar stops at 83 % and "
            "then jumps "
            "to its end.");
}

TEST(SizeRemark, TooLittleIsAnnounced) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 80, 60));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  const CheckResult result = checkFor("Tessaphon");
  expectRemarks(result, {{"size-total", "warning", kAttributes, 6}}, 3);
  EXPECT_THAT(sentenceOf(result, "size-total"), testing::HasSubstr("full when 79 % of the data is copied"));
}

TEST(SizeRemark, TheFirstComponentIsAnotherSize) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 100, 100));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  expectRemarks(checkFor("Tessaphon"), {{"size-component", "warning", kAttributes, 7}}, 3);
}

TEST(SizeRemark, SizesWithinTheRoundingAreSound) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 103, 58));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  expectRemarks(checkFor("Tessaphon"), {}, 0);
}

TEST(SizeRemark, HiddenFilesDoNotCount) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 100, 60));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  makeLargeFile(inSet("Second/TANVO/.hidden"), 40);
  expectRemarks(checkFor("Tessaphon"), {{"hidden-file", "warning", "Second/TANVO/.hidden"}}, 3);
}

TEST(SizeRemark, AnUpdateMayCountItsSystemFoldersOrNot) {
  makeLargeFile(inSet("Library/Audio/large.wav"), 50);
  makeLargeFile(inSet("First/TANVO/Tessaphon/large.db"), 50);
  for (const int announced : {50, 100}) {
    makeUpdateSet(withSizes(kUpdateLines, announced, 50));
    expectRemarks(checkFor("Tessaphon"), {}, 0);
  }
  makeUpdateSet(withSizes(kUpdateLines, 130, 50));
  expectRemarks(checkFor("Tessaphon"), {{"size-total", "warning", kAttributes, 5}}, 3);
}

// ---- What lies on the machine ----

TEST(MachineRemark, AChoiceThatAnEarlierInstallLeft) {
  makeDataUpdateSet();
  writeFile("/tmp/TavInstallType", "Lite\n");
  const CheckResult result = checkFor("Tessaphon", "");
  expectRemarks(result, {{"choice-file-stale", "warning", "/tmp/TavInstallType"}}, 3);
  EXPECT_TRUE(result.checked.plan.editions.allAreLite);
  expectRemarks(checkFor("Tessaphon", "Full"), {}, 0);
}

TEST(MachineRemark, AChoiceThatNobodyAsksForIsSound) {
  makeDiscSet();
  writeFile("/tmp/TavInstallType", "Lite\n");
  expectRemarks(checkFor("Lumaweave", ""), {}, 0);
}

TEST(MachineRemark, TheUserLacksTheDataFolder) {
  makeDataUpdateSet();
  makeFolder("/Users/tester/Has/DOVA");
  expectRemarks(checkFor("Tessaphon", "Full", "/Users/tester/Has"),
                {{"central-folder-missing", "error", "/Users/tester/Has/TANVO"}}, 1);
}

TEST(MachineRemark, TheUserLacksOneOfTheUpdatesDataFolders) {
  makeUpdateSet();
  writeFile(inSet("First/DOVA/Lumaweave/one.db"), "one");
  makeFolder("/Users/tester/Library/Application Support/Tavenhall/TANVO");
  expectRemarks(
      checkFor("Tessaphon", "", "/Users/tester"),
      {{"central-folder-missing", "error", "/Users/tester/Library/Application Support/Tavenhall/DOVA"}}, 1);
}

}  // namespace tavenhall::test
