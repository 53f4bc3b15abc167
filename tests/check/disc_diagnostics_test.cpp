#include "tests/check/sets.h"

#include <cstdlib>

namespace tavenhall::test {

namespace {

void renameDisc(const std::string& from, const std::string& to) {
  std::filesystem::rename(inSet("discs/" + from), inSet("discs/" + to));
}

// Turns a disc's folder into an image.
void makeImage(const std::string& name, const std::string& extension) {
  const std::string folder = inSet("discs/" + name);
  const std::string command =
      "mksquashfs '" + folder + "' '" + folder + extension + "' -quiet -no-progress >/dev/null 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0);
  std::filesystem::remove_all(folder);
}

}  // namespace

TEST(DiscDiagnostic, ADiscIsMissing) {
  makeDiscSet();
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"disc-missing", "error", "discs"}}, 1);
  EXPECT_EQ(sentenceOf(result, "disc-missing"),
            "There is no disc 2, so the page asks for \"Tavenhall Lumaweave\" forever.");
}

TEST(DiscDiagnostic, ADiscHasAnotherName) {
  makeDiscSet();
  renameDisc("2 Tavenhall Lumaweave", "2 Lumaweave B");
  expectDiagnostics(checkFor("Lumaweave"), {{"disc-name", "error", "discs/2 Lumaweave B"}}, 1);
}

TEST(DiscDiagnostic, ADiscThatIsNeverAskedFor) {
  makeDiscSet();
  writeFile(inSet("discs/3 Tavenhall Lumaweave/DOVA/three"), "three");
  expectDiagnostics(checkFor("Lumaweave"), {{"disc-surplus", "warning", "discs/3 Tavenhall Lumaweave"}}, 3);
}

TEST(DiscDiagnostic, SomethingThatIsNoDisc) {
  makeDiscSet();
  writeFile(inSet("discs/readme.txt"), "text");
  makeFolder(inSet("discs/Tavenhall Lumaweave"));
  makeFolder(inSet("discs/02 Tavenhall Lumaweave"));
  expectDiagnostics(checkFor("Lumaweave"),
                    {{"disc-not-numbered", "warning", "discs/readme.txt"},
                     {"disc-not-numbered", "warning", "discs/Tavenhall Lumaweave"},
                     {"disc-not-numbered", "warning", "discs/2 Tavenhall Lumaweave"},
                     {"data-folder-missing", "error", "discs/02 Tavenhall Lumaweave"}},
                    1);
}

TEST(DiscDiagnostic, DiscsThatNobodyAsksFor) {
  makeDataUpdateSet();
  writeFile(inSet("discs/1 Tavenhall Tessaphon A/TANVO/a"), "a");
  expectDiagnostics(checkFor("Tessaphon"), {{"discs-unused", "warning", "discs"}}, 3);
}

TEST(DiscDiagnostic, AnOptionalDiscThatNoPromptReaches) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 3\nTotalSizeMillionsBytes = 1\n" + kTexts);
  renameDisc("1 Tavenhall Lumaweave", "1 Tavenhall Tempora QX");
  renameDisc("2 Tavenhall Lumaweave", "2 Tavenhall Tempora QX");
  writeFile(inSet("discs/3 Northfield DOVA Outrider/DOVA/three"), "three");
  writeFile(inSet("discs/4 Tin Parade DOVA Outrider/DOVA/four"), "four");
  const CheckResult result = checkFor("TemporaQX");
  expectDiagnostics(result,
                    {{"optional-disc-unreachable", "error", "discs/3 Northfield DOVA Outrider"},
                     {"optional-disc-unreachable", "error", "discs/4 Tin Parade DOVA Outrider"}},
                    1);
}

TEST(DiscDiagnostic, AnImageIsLookedInto) {
  makeDiscSet();
  makeFolder(inSet("discs/2 Tavenhall Lumaweave/Mac OSX/DOVA"));
  makeImage("2 Tavenhall Lumaweave", ".squashfs");
  expectDiagnostics(checkFor("Lumaweave"),
                    {{"both-folders", "warning", "discs/2 Tavenhall Lumaweave.squashfs/Mac OSX/DOVA"}}, 3);
}

TEST(DiscDiagnostic, AnImageThatNothingHereCanRead) {
  makeDiscSet();
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  writeFile(inSet("discs/2 Tavenhall Lumaweave.iso"), "an image");
  const CheckResult result = checkFor("Lumaweave");
  expectDiagnostics(result, {{"image-not-read", "note", "discs/2 Tavenhall Lumaweave.iso"}}, 0);
  EXPECT_FALSE(result.checked.realSizes().whole.has_value());
}

TEST(DiscDiagnostic, AnImageThatIsNone) {
  makeDiscSet();
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  writeFile(inSet("discs/2 Tavenhall Lumaweave.squashfs"), "no image");
  expectDiagnostics(checkFor("Lumaweave"), {{"image-not-read", "note", "discs/2 Tavenhall Lumaweave.squashfs"}},
                    0);
}

// ---- Data folders ----

TEST(FolderDiagnostic, ADiscWithoutItsDataFolder) {
  makeDiscSet();
  renameDisc("2 Tavenhall Lumaweave/DOVA", "2 Tavenhall Lumaweave/dova");
  expectDiagnostics(checkFor("Lumaweave"), {{"data-folder-missing", "error", "discs/2 Tavenhall Lumaweave"}},
                    1);
}

TEST(FolderDiagnostic, APackageWithoutItsDataFolder) {
  makeDownloadSet();
  std::filesystem::remove_all(inSet("TANVO"));
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result, {{"data-folder-missing", "error", "TANVO"}}, 1);
  EXPECT_THAT(sentenceOf(result, "data-folder-missing"),
              testing::HasSubstr("shows \"Files to be installed not found.\" and ends"));
}

TEST(FolderDiagnostic, AnUpdateWithoutTheFolderOfItsSecondPath) {
  makeUpdateSet();
  std::filesystem::remove_all(inSet("Second"));
  expectDiagnostics(checkFor("Tessaphon"), {{"data-folder-missing", "error", kAttributes, 3}}, 1);
}

TEST(FolderDiagnostic, AnEmptyDataFolder) {
  makeDiscSet();
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave/DOVA/Factory"));
  expectDiagnostics(checkFor("Lumaweave"),
                    {{"data-folder-empty", "warning", "discs/2 Tavenhall Lumaweave/DOVA"}}, 3);
}

TEST(FolderDiagnostic, BothDataFolders) {
  makeDownloadSet();
  writeFile(inSet("Mac OSX/TANVO/never.db"), "never");
  expectDiagnostics(checkFor("Tessaphon"), {{"both-folders", "warning", "Mac OSX/TANVO"}}, 3);
}

TEST(FolderDiagnostic, TheAlternateFolderAloneIsSound) {
  makeDiscSet();
  makeFolder(inSet("discs/2 Tavenhall Lumaweave/Mac OSX"));
  renameDisc("2 Tavenhall Lumaweave/DOVA", "2 Tavenhall Lumaweave/Mac OSX/DOVA");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(FolderDiagnostic, AnUpdateWithNothingInIt) {
  writeFile(inSet("Installer.pkg"), "package");
  writeAttributes("Mode = SupportHub\nRelativePath = First\nTotalSizeMillionsBytes = 1\n" + kTexts);
  expectDiagnostics(checkFor("Tessaphon"), {{"nothing-to-install", "error", "Installer.pkg"}}, 1);
}

TEST(DiscDiagnostic, ADiscThatIsLargerThanItsMedium) {
  makeDiscSet();
  writeFile(inSet("rehearsal.json"), R"({"product": "Lumaweave", "discSize": "10m"})");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
  writeFile(inSet("discs/2 Tavenhall Lumaweave/Manual.pdf"), "x");
  std::filesystem::resize_file(inSet("discs/2 Tavenhall Lumaweave/Manual.pdf"), 9'500'000);
  expectDiagnostics(checkFor("Lumaweave"), {{"disc-too-large", "error", "discs/2 Tavenhall Lumaweave"}}, 1);
}

}  // namespace tavenhall::test
