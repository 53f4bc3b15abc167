#include "tests/check/sets.h"

namespace tavenhall::test {

// ---- How the settings go together ----

TEST(SettingDiagnostic, TwoComponentsAndNoSecondPath) {
  makeDataUpdateSet(
      "Mode = DataUpdater\nRelativePath = First\nInstallDataTitle = Second\nNumberOfVolumes = 2\n"
      "TotalSizeMillionsBytes = 1\nComponent1SizeMillionsBytes = 1\n");
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(
      result, {{"second-path-missing", "error", kAttributes, 4}, {"data-folder-missing", "error", "1/TANVO"}},
      1);
  EXPECT_EQ(sentenceOf(result, "second-path-missing"),
            "There is a second component but no RelativePath2, so the page looks for it in the folder \"1\" "
            "beside the package, which is the value of another line.");
}

TEST(SettingDiagnostic, ThreeVolumesBesideThePackage) {
  makeDataUpdateSet(
      "Mode = DataUpdater\nRelativePath = First\nNumberOfVolumes = 3\nTotalSizeMillionsBytes = 1\n");
  expectDiagnostics(checkFor("Tessaphon"), {{"volumes-without-prompt", "error", kAttributes, 3}}, 1);
}

TEST(SettingDiagnostic, ThePackagesPathHasABackslash) {
  makeDiscSet();
  std::filesystem::rename(inSet("Installer.pkg"), inSet("My\\Installer.pkg"));
  EXPECT_THAT(foundIn(checkFor("Lumaweave")),
              testing::Contains(Found{"package-path", "error", "My\\Installer.pkg"}));
}

TEST(SettingDiagnostic, ThePackagesPathIsTooLong) {
  const std::string name(250, 'x');
  const std::string deep = kSetFolder + "/" + name + "/" + name + "/" + name + "/" + name;
  writeFile(deep + "/Installer.pkg", "package");
  const CheckResult result = checkSet({deep, "Lumaweave", "", ""});
  EXPECT_THAT(foundIn(result), testing::Contains(Found{"package-path", "error", "Installer.pkg"}));
}

TEST(SettingDiagnostic, NobodyNamesTheProduct) {
  makeDataUpdateSet();
  expectDiagnostics(checkFor(""), {{"product-assumed", "note", "Installer.pkg"}}, 0);
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

TEST(SizeDiagnostic, NoSizeIsAnnounced) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 2\n");
  expectDiagnostics(checkFor("Lumaweave"), {{"size-missing", "warning", kAttributes}}, 3);
}

TEST(SizeDiagnostic, ASizeOfNothingIsAnnounced) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 0\n");
  expectDiagnostics(checkFor("Lumaweave"), {{"size-missing", "warning", kAttributes, 3}}, 3);
}

TEST(SizeDiagnostic, NoSizeIsAnnouncedForTheLiteEdition) {
  makeDiscSet(kDiscLines + "LiteVsFullPrompt = Yes\n");
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"size-missing", "warning", kAttributes}}, 3);
  EXPECT_THAT(sentenceOf(result, "size-missing"),
              testing::HasSubstr("The key Component1SizeMillionsBytes is missing, so"));
}

TEST(SizeDiagnostic, TooMuchIsAnnounced) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 120, 60));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result, {{"size-total", "warning", kAttributes, 6}}, 3);
  EXPECT_EQ(sentenceOf(result, "size-total"),
            "TotalSizeMillionsBytes announces 120.0 MB, but there are 100.0 MB, so the bar stops at 83 % and "
            "then jumps to the end.");
}

TEST(SizeDiagnostic, TooLittleIsAnnounced) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 80, 60));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result, {{"size-total", "warning", kAttributes, 6}}, 3);
  EXPECT_THAT(sentenceOf(result, "size-total"), testing::HasSubstr("full when 79 % of the data is copied"));
}

TEST(SizeDiagnostic, TheFirstComponentIsAnotherSize) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 100, 100));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  expectDiagnostics(checkFor("Tessaphon"), {{"size-component", "warning", kAttributes, 7}}, 3);
}

TEST(SizeDiagnostic, SizesWithinTheRoundingAreSound) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 103, 58));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(SizeDiagnostic, HiddenFilesDoNotCount) {
  makeDataUpdateSet(withSizes(kDataUpdateLines, 100, 60));
  makeLargeFile(inSet("First/TANVO/large.db"), 60);
  makeLargeFile(inSet("Second/TANVO/large.db"), 40);
  makeLargeFile(inSet("Second/TANVO/.hidden"), 40);
  expectDiagnostics(checkFor("Tessaphon"), {{"hidden-file", "warning", "Second/TANVO/.hidden"}}, 3);
}

TEST(SizeDiagnostic, AnUpdateMayCountItsSystemFoldersOrNot) {
  makeLargeFile(inSet("Library/Audio/large.wav"), 50);
  makeLargeFile(inSet("First/TANVO/Tessaphon/large.db"), 50);
  for (const int announced : {50, 100}) {
    makeUpdateSet(withSizes(kUpdateLines, announced, 50));
    expectDiagnostics(checkFor("Tessaphon"), {}, 0);
  }
  makeUpdateSet(withSizes(kUpdateLines, 130, 50));
  expectDiagnostics(checkFor("Tessaphon"), {{"size-total", "warning", kAttributes, 5}}, 3);
}

// ---- What lies on the machine ----

TEST(MachineDiagnostic, AChoiceThatAnEarlierInstallLeft) {
  makeDataUpdateSet();
  writeFile("/tmp/TavInstallType", "Lite\n");
  const CheckResult result = checkFor("Tessaphon", "");
  expectDiagnostics(result, {{"choice-file-stale", "warning", "/tmp/TavInstallType"}}, 3);
  EXPECT_TRUE(result.checked.plan.editions.allAreLite);
  expectDiagnostics(checkFor("Tessaphon", "Full"), {}, 0);
}

TEST(MachineDiagnostic, AChoiceThatNobodyAsksForIsSound) {
  makeDiscSet();
  writeFile("/tmp/TavInstallType", "Lite\n");
  expectDiagnostics(checkFor("Lumaweave", ""), {}, 0);
}

TEST(MachineDiagnostic, TheUserLacksTheDataFolder) {
  makeDataUpdateSet();
  makeFolder("/Users/tester/Has/DOVA");
  expectDiagnostics(checkFor("Tessaphon", "Full", "/Users/tester/Has"),
                    {{"central-folder-missing", "error", "/Users/tester/Has/TANVO"}}, 1);
}

TEST(MachineDiagnostic, TheUserLacksOneOfTheUpdatesDataFolders) {
  makeUpdateSet();
  writeFile(inSet("First/DOVA/Lumaweave/one.db"), "one");
  makeFolder("/Users/tester/Library/Application Support/Tavenhall/TANVO");
  expectDiagnostics(
      checkFor("Tessaphon", "", "/Users/tester"),
      {{"central-folder-missing", "error", "/Users/tester/Library/Application Support/Tavenhall/DOVA"}}, 1);
}

}  // namespace tavenhall::test
