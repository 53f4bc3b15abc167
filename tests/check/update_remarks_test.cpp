#include "tests/check/sets.h"

namespace tavenhall::test {

// ---- Libraries ----

TEST(LibraryRemark, MoreLibrariesThanThePageHasRoomFor) {
  makeUpdateSet();
  for (int i = 0; i < 49; ++i) {
    makeFolder(inSet("Second/TANVO/Library " + std::to_string(i)));
  }
  expectRemarks(checkFor("Tessaphon"), {{"too-many-libraries", "error", "Second/TANVO"}}, 1);
}

TEST(LibraryRemark, FiftyLibrariesAreSound) {
  makeUpdateSet();
  for (int i = 0; i < 48; ++i) {
    makeFolder(inSet("Second/TANVO/Library " + std::to_string(i)));
  }
  expectRemarks(checkFor("Tessaphon"), {}, 0);
}

TEST(LibraryRemark, ALibraryThatIsNotListed) {
  makeUpdateSet();
  writeFile(inSet("First/TANVO/Granulate/one.db"), "one");
  writeFile(inSet("First/TANVO/Mirel Packs/Quorra/one.db"), "one");
  expectRemarks(checkFor("Tessaphon"),
                {{"library-not-listed", "warning", "First/TANVO/Granulate"},
                 {"library-not-listed", "warning", "First/TANVO/Mirel Packs/Quorra"}},
                3);
}

TEST(LibraryRemark, AFolderOfTheSecondComponentThatIsNoLibrary) {
  makeUpdateSet();
  writeFile(inSet("First/DOVA/Lumaweave/one.db"), "one");
  writeFile(inSet("Second/DOVA/Lumaweave/two.db"), "two");
  expectRemarks(checkFor("Tessaphon"), {{"folder-left-out", "warning", "Second/DOVA/Lumaweave"}}, 3);
}

TEST(LibraryRemark, AFileAmongTheLibraries) {
  makeUpdateSet();
  writeFile(inSet("Second/TANVO/readme.txt"), "text");
  const CheckResult result = checkFor("Tessaphon");
  expectRemarks(result, {{"library-not-a-folder", "warning", "Second/TANVO/readme.txt"}}, 3);
  EXPECT_THAT(sentenceOf(result, "library-not-a-folder"),
              testing::HasSubstr("reads \"Full installation detected for readme.txt\""));
}

TEST(LibraryRemark, AFolderThatIsNotQuiteCalledMirelPacks) {
  makeUpdateSet();
  std::filesystem::rename(inSet("Second/TANVO/Mirel Packs"), inSet("Second/TANVO/Mirel packs"));
  std::filesystem::rename(inSet("First/TANVO/Mirel Packs"), inSet("First/TANVO/Mirel packs"));
  expectRemarks(checkFor("Tessaphon"), {{"mirel-pack-unseen", "warning", "Second/TANVO/Mirel packs"}}, 3);
}

namespace {

const std::string kFactory = "First/TANVO/Mirel Packs/Velmora/Soundsources/Factory";

}  // namespace

TEST(LibraryRemark, APackWithoutTheFolderThatIsLookedAt) {
  makeUpdateSet();
  writeFile(inSet(kFactory + "/Velmora/Keys/a.db"), "a");
  expectRemarks(checkFor("Tessaphon"), {{"mirel-pack-unseen", "warning", kFactory}}, 3);
}

TEST(LibraryRemark, APackWithAFolderThatHasNoDatabase) {
  makeUpdateSet();
  writeFile(inSet(kFactory + "/Velmora Library/Bells/deeper/a.db"), "a");
  writeFile(inSet(kFactory + "/Velmora Library/Keys/a.db"), "a");
  expectRemarks(checkFor("Tessaphon"), {{"mirel-pack-unseen", "warning", kFactory + "/Velmora Library/Bells"}},
                3);
}

TEST(LibraryRemark, APackWhoseDatabasesComeWithTheSecondComponentIsSound) {
  makeUpdateSet();
  writeFile(inSet(kFactory + "/Velmora Library/Keys/a.txt"), "a");
  writeFile(inSet("Second/TANVO/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Keys/a.db"), "a");
  expectRemarks(checkFor("Tessaphon"), {}, 0);
}

TEST(LibraryRemark, AnInstalledPackThatTheDetectionCannotSee) {
  makeUpdateSet();
  makeFolder("/Users/tester/Has/DOVA");
  writeFile("/Users/tester/Has/TANVO/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Keys/a.DB",
            "stub");
  expectRemarks(checkFor("Tessaphon", "", "/Users/tester/Has"),
                {{"mirel-pack-unseen", "warning", "/Users/tester/Has/TANVO/Mirel Packs/Velmora"}}, 3);
}

// ---- Plug-ins and applications ----

namespace {

void makeProgram(const std::string& path) {
  writeFile(inSet(path), "program");
  std::filesystem::permissions(inSet(path), std::filesystem::perms(0755));
}

}  // namespace

TEST(BundleRemark, APlugInOfNoProduct) {
  makeUpdateSet();
  writeFile(inSet("Library/Audio/Plug-Ins/VST/Echoes.vst/Contents/Echoes"), "program");
  expectRemarks(checkFor("Tessaphon"), {{"plugin-unknown", "warning", "Library/Audio/Plug-Ins/VST/Echoes.vst"}},
                3);
}

TEST(BundleRemark, AProductsNameInThePackagesOwnPath) {
  makeUpdateSet();
  const std::string folder = "/Users/tester/Lumaweave Installer";
  std::filesystem::rename(kSetFolder, folder);
  const CheckResult result = checkSet({folder, "Tessaphon", "", ""});
  expectRemarks(result,
                {{"product-in-path", "warning", kComponent},
                 {"product-in-path", "warning", "Library/Audio/Plug-Ins/VST3/Tessaphon.vst3"},
                 {"product-in-path", "warning", "Applications/Tessaphon.app"}},
                3);
}

TEST(BundleRemark, TheProductsOwnNameInThePackagesPathIsSound) {
  makeUpdateSet();
  const std::string folder = "/Users/tester/Tessaphon Installer";
  std::filesystem::rename(kSetFolder, folder);
  expectRemarks(checkSet({folder, "Tessaphon", "", ""}), {}, 0);
}

TEST(BundleRemark, ABlankInAnApplicationsName) {
  makeUpdateSet();
  makeProgram("Applications/Tessaphon Player.app/Contents/Player");
  expectRemarks(checkFor("Tessaphon"),
                {{"app-path-blank", "warning", "Applications/Tessaphon Player.app"},
                 {"bundle-permissions", "note", "Applications/Tessaphon Player.app"}},
                3);
}

TEST(BundleRemark, ABlankInsideAnApplication) {
  makeUpdateSet();
  writeFile(inSet("Applications/Tessaphon.app/Contents/Read me.txt"), "text");
  const CheckResult result = checkFor("Tessaphon");
  expectRemarks(result, {{"app-path-blank", "warning", "Applications/Tessaphon.app"}}, 3);
  EXPECT_THAT(sentenceOf(result, "app-path-blank"), testing::HasSubstr("makes up for it"));
}

TEST(BundleRemark, ACharacterForTheShellInAnApplication) {
  makeUpdateSet();
  writeFile(inSet("Applications/Tessaphon.app/Contents/R&D.txt"), "text");
  expectRemarks(checkFor("Tessaphon"), {{"app-path-shell", "error", "Applications/Tessaphon.app"}}, 1);
}

TEST(BundleRemark, ProgramsInAPlugIn) {
  makeUpdateSet();
  makeProgram(kComponent + "/Contents/Tessaphon");
  const CheckResult result = checkFor("Tessaphon");
  expectRemarks(result, {{"bundle-permissions", "note", kComponent}}, 0);
  EXPECT_THAT(sentenceOf(result, "bundle-permissions"), testing::StartsWith("1 program file in the bundle"));
}

TEST(BundleRemark, ProgramsInAnApplicationAreSound) {
  makeUpdateSet();
  makeProgram("Applications/Tessaphon.app/Contents/Tessaphon");
  expectRemarks(checkFor("Tessaphon"), {}, 0);
}

TEST(BundleRemark, LinksInABundle) {
  makeUpdateSet();
  std::filesystem::create_symlink("Tessaphon", inSet(kComponent + "/Contents/Current"));
  expectRemarks(checkFor("Tessaphon"), {{"bundle-link", "warning", kComponent}}, 3);
}

TEST(BundleRemark, ALinkToAFolderInABundle) {
  makeUpdateSet();
  makeFolder(inSet(kComponent + "/Versions/A"));
  std::filesystem::create_symlink("A", inSet(kComponent + "/Versions/Current"));
  expectRemarks(checkFor("Tessaphon"), {{"link-to-folder", "error", kComponent + "/Versions/Current"}}, 1);
}

}  // namespace tavenhall::test
