#include "tests/check/sets.h"

#include <fstream>

namespace tavenhall::test {

namespace {

// A sample set with files that are as large as they say, and take no room.
void laySample(const std::string& name) {
  namespace fs = std::filesystem;
  const fs::path source = fs::path(TAVINSTALL_SOURCE_DIR) / "samples" / name;
  fs::create_directories(kSetFolder);
  fs::copy(source, kSetFolder, fs::copy_options::recursive);
  fs::remove(inSet("data.list"));
  std::ifstream list(source / "data.list");
  std::uintmax_t kilobytes = 0;
  int count = 0;
  std::string path;
  while (list >> kilobytes >> count && std::getline(list >> std::ws, path)) {
    for (int number = 1; number <= count; ++number) {
      std::string file = path;
      if (const std::size_t place = file.find('#'); place != std::string::npos) {
        file.replace(place, 1, std::to_string(number));
      }
      writeFile(inSet(file), "");
      fs::resize_file(inSet(file), kilobytes * 1024);
    }
  }
}

class Sample : public testing::TestWithParam<const char*> {};

}  // namespace

TEST_P(Sample, GivesNothing) {
  laySample(GetParam());
  const CheckResult result = checkSet({kSetFolder, "", "", ""});
  expectDiagnostics(result, {}, 0);
  EXPECT_GT(result.checked.realSizes().whole.value_or(0), 20000000);
}

INSTANTIATE_TEST_SUITE_P(Each, Sample,
                         testing::Values("two-discs", "data-update", "download", "product-update"),
                         [](const auto& tested) {
                           std::string name = tested.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

// What the whole installs of tests/install install, laid out as sets.
TEST(SoundSet, OfTheWholeInstallFromTwoDiscsGivesNothing) {
  writeAttributes(
      "Mode = InstallFromVolumes\nLiteVsFullPrompt = yES\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n"
      "Component1SizeMillionsBytes = 1\n");
  writeFile(inSet("Installer.pkg"), "");
  writeFile(inSet("discs/1 Tavenhall Tessaphon A/TANVO/Tessaphon/lite.db"), someBytes(4096));
  writeFile(inSet("discs/2 Tessaphon B/Mac OSX/TANVO/Tessaphon/full.db"), someBytes(4096));
  expectDiagnostics(checkFor("Tessaphon", "Lite"), {}, 0);
  expectDiagnostics(checkFor("Tessaphon", "Full"), {}, 0);
}

TEST(SoundSet, OfTheWholeInstallOfADownloadGivesNothing) {
  writeAttributes(
      "mode = Downloaded\ninstalldatatitle = Tessaphon\nTotalSizeMillionsBytes = 1\nNumberOfVolumes = 1\n");
  writeFile(inSet("Packages/Installer.pkg"), "");
  writeFile(inSet("TANVO/Tessaphon/a.db"), someBytes(1024));
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, OfTheWholeInstallOfAnUpdateGivesNothing) {
  writeAttributes(
      "Mode = SupportHub\nRelativePath = Part 1\nRelativePath2 = Part 2\nTotalSizeMillionsBytes = 1\n"
      "Component1SizeMillionsBytes = 1\n");
  for (const char* path : {"Installer.pkg", "Part 1/DOVA/Engine/patch.db", "Part 1/TANVO/Tessaphon/lite.db",
                           "Part 2/TANVO/Mirel Packs/Quorra/quorra.db",
                           "Part 2/TANVO/Mirel Packs/Velmora/velmora.db", "Part 2/TANVO/Tessaphon/full.db"}) {
    writeFile(inSet(path), someBytes(1024));
  }
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, OnDiscsGivesNothing) {
  makeDiscSet();
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(SoundSet, OnDiscsWithTwoEditionsGivesNothing) {
  makeDiscSet(kDiscLines + "LiteVsFullPrompt = Yes\nComponent1SizeMillionsBytes = 1\n");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
  expectDiagnostics(checkFor("Lumaweave", "Lite"), {}, 0);
}

TEST(SoundSet, OnThreeDiscsOfTessaphonGivesNothing) {
  makeDiscSet("Mode = InstallFromVolumes\r\nNumberOfVolumes = 3\r\nTotalSizeMillionsBytes = 1\r\n");
  std::filesystem::remove_all(inSet("discs"));
  writeFile(inSet("discs/1 Tavenhall Tessaphon A/TANVO/a"), "a");
  writeFile(inSet("discs/2 Tessaphon B/TANVO/b"), "b");
  writeFile(inSet("discs/3 Tessaphon C/Mac OSX/TANVO/c"), "c");
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, OfADataUpdateGivesNothing) {
  makeDataUpdateSet();
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
  expectDiagnostics(checkFor("Tessaphon", "Lite"), {}, 0);
}

TEST(SoundSet, OfADownloadedInstallerGivesNothing) {
  makeDownloadSet();
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, OfAProductUpdateGivesNothing) {
  makeUpdateSet();
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, OfAProductUpdateForAKnownUserGivesNothing) {
  makeUpdateSet();
  writeFile("/Users/tester/Has/TANVO/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Keys/a.db",
            "stub");
  makeFolder("/Users/tester/Has/DOVA");
  const CheckResult result = checkFor("Tessaphon", "", "/Users/tester/Has");
  expectDiagnostics(result, {}, 0);
  EXPECT_TRUE(result.checked.plan.editions.allAreLite);
}

TEST(SoundSet, WithoutLibrariesOrDataOfItsOwnGivesNothing) {
  makeUpdateSet("Mode = SupportHub\nInstalledData = %s\nTotalSizeMillionsBytes = 1\n");
  std::filesystem::remove_all(inSet("First"));
  std::filesystem::remove_all(inSet("Second"));
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(SoundSet, MayHaveCommentsAndEmptyLines) {
  makeDiscSet(kDiscLines + "\n# Made for the second edition\n; and so on\n// and on\n");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(SoundSet, MayWriteTextKeysInAnyCase) {
  makeDiscSet(
      "MODE = InstallFromVolumes\ninstalleddata = In %s\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(SoundSet, MayNameItsProductAndTypeItself) {
  makeDataUpdateSet();
  writeFile(inSet("rehearsal.json"),
            R"({"product": "Tessaphon", "package": "Installer.pkg", "installType": "Lite"})");
  const CheckResult result = checkFor("", "");
  expectDiagnostics(result, {}, 0);
  EXPECT_EQ(result.checked.plan.editions.source, EditionSource::request);
  EXPECT_TRUE(result.checked.plan.editions.allAreLite);
}

}  // namespace tavenhall::test
