#include "tests/check/sets.h"

namespace tavenhall::test {

TEST(SoundSet, OnDiscsGivesNothing) {
  makeDiscSet();
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(SoundSet, OnDiscsWithTwoEditionsGivesNothing) {
  makeDiscSet(kDiscLines + "LiteVsFullPrompt = Yes\nComponent1SizeMillionsBytes = 1\n");
  expectRemarks(checkFor("Lumaweave"), {}, 0);
  expectRemarks(checkFor("Lumaweave", "Lite"), {}, 0);
}

TEST(SoundSet, OnThreeDiscsOfTessaphonGivesNothing) {
  makeDiscSet("Mode = InstallFromVolumes\r\nNumberOfVolumes = 3\r\nTotalSizeMillionsBytes = 1\r\n");
  std::filesystem::remove_all(inSet("discs"));
  writeFile(inSet("discs/1 Tavenhall Tessaphon A/TANVO/a"), "a");
  writeFile(inSet("discs/2 Tessaphon B/TANVO/b"), "b");
  writeFile(inSet("discs/3 Tessaphon C/Mac OSX/TANVO/c"), "c");
  expectRemarks(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, OfADataUpdateGivesNothing) {
  makeDataUpdateSet();
  expectRemarks(checkFor("Tessaphon"), {}, 0);
  expectRemarks(checkFor("Tessaphon", "Lite"), {}, 0);
}

TEST(SoundSet, OfADownloadedInstallerGivesNothing) {
  makeDownloadSet();
  expectRemarks(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, OfAProductUpdateGivesNothing) {
  makeUpdateSet();
  expectRemarks(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, OfAProductUpdateForAKnownUserGivesNothing) {
  makeUpdateSet();
  writeFile("/Users/tester/Has/TANVO/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Keys/a.db",
            "stub");
  makeFolder("/Users/tester/Has/DOVA");
  const CheckResult result = checkFor("Tessaphon", "", "/Users/tester/Has");
  expectRemarks(result, {}, 0);
  EXPECT_TRUE(result.checked.plan.editions.allAreLite);
}

TEST(SoundSet, WithoutLibrariesOrDataOfItsOwnGivesNothing) {
  makeUpdateSet("Mode = SupportHub\nInstalledData = %s\nTotalSizeMillionsBytes = 1\n");
  std::filesystem::remove_all(inSet("First"));
  std::filesystem::remove_all(inSet("Second"));
  expectRemarks(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, MayHaveCommentsAndEmptyLines) {
  makeDiscSet(kDiscLines + "\n# Made for the second edition\n; and so on\n// and on\n");
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(SoundSet, MayWriteTextKeysInAnyCase) {
  makeDiscSet(
      "MODE = InstallFromVolumes\ninstalleddata = In %s\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
  expectRemarks(checkFor("Lumaweave"), {}, 0);
}

TEST(SoundSet, MayNameItsProductAndTypeItself) {
  makeDataUpdateSet();
  writeFile(inSet("rehearsal.json"),
            R"({"product": "Tessaphon", "package": "Installer.pkg", "installType": "Lite"})");
  const CheckResult result = checkFor("", "");
  expectRemarks(result, {}, 0);
  EXPECT_EQ(result.checked.plan.editions.source, EditionSource::request);
  EXPECT_TRUE(result.checked.plan.editions.allAreLite);
}

}  // namespace tavenhall::test
