#include "tests/check/sets.h"

namespace tavenhall::test {

// ---- Libraries ----

TEST(LibraryDiagnostic, MoreLibrariesThanThePageHasRoomFor) {
  makeUpdateSet();
  for (int i = 0; i < 49; ++i) {
    makeFolder(inSet("Second/TANVO/Library " + std::to_string(i)));
  }
  expectDiagnostics(checkFor("Tessaphon"), {{"too-many-libraries", "error", "Second/TANVO"}}, 1);
}

TEST(LibraryDiagnostic, FiftyLibrariesAreSound) {
  makeUpdateSet();
  for (int i = 0; i < 48; ++i) {
    makeFolder(inSet("Second/TANVO/Library " + std::to_string(i)));
  }
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(LibraryDiagnostic, ALibraryThatIsNotListed) {
  makeUpdateSet();
  writeFile(inSet("First/TANVO/Granulate/one.db"), "one");
  writeFile(inSet("First/TANVO/Mirel Packs/Quorra/one.db"), "one");
  expectDiagnostics(checkFor("Tessaphon"),
                    {{"library-not-listed", "warning", "First/TANVO/Granulate"},
                     {"library-not-listed", "warning", "First/TANVO/Mirel Packs/Quorra"}},
                    3);
}

TEST(LibraryDiagnostic, AFolderOfTheSecondComponentThatIsNoLibrary) {
  makeUpdateSet();
  writeFile(inSet("First/DOVA/Lumaweave/one.db"), "one");
  writeFile(inSet("Second/DOVA/Lumaweave/two.db"), "two");
  expectDiagnostics(checkFor("Tessaphon"), {{"folder-left-out", "warning", "Second/DOVA/Lumaweave"}}, 3);
}

TEST(LibraryDiagnostic, AFileAmongTheLibraries) {
  makeUpdateSet();
  writeFile(inSet("Second/TANVO/readme.txt"), "text");
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result, {{"library-not-a-folder", "warning", "Second/TANVO/readme.txt"}}, 3);
  EXPECT_THAT(sentenceOf(result, "library-not-a-folder"),
              testing::HasSubstr("shows \"Full installation detected for readme.txt\""));
}

TEST(LibraryDiagnostic, AFolderThatIsNotQuiteCalledMirelPacks) {
  makeUpdateSet();
  std::filesystem::rename(inSet("Second/TANVO/Mirel Packs"), inSet("Second/TANVO/Mirel packs"));
  std::filesystem::rename(inSet("First/TANVO/Mirel Packs"), inSet("First/TANVO/Mirel packs"));
  expectDiagnostics(checkFor("Tessaphon"), {{"mirel-pack-unseen", "warning", "Second/TANVO/Mirel packs"}}, 3);
}

namespace {

const std::string kFactory = "First/TANVO/Mirel Packs/Velmora/Soundsources/Factory";

}  // namespace

TEST(LibraryDiagnostic, APackWithoutTheFolderThatIsLookedAt) {
  makeUpdateSet();
  writeFile(inSet(kFactory + "/Velmora/Keys/a.db"), "a");
  expectDiagnostics(checkFor("Tessaphon"), {{"mirel-pack-unseen", "warning", kFactory}}, 3);
}

TEST(LibraryDiagnostic, APackWithAFolderThatHasNoDatabase) {
  makeUpdateSet();
  writeFile(inSet(kFactory + "/Velmora Library/Bells/deeper/a.db"), "a");
  writeFile(inSet(kFactory + "/Velmora Library/Keys/a.db"), "a");
  expectDiagnostics(checkFor("Tessaphon"),
                    {{"mirel-pack-unseen", "warning", kFactory + "/Velmora Library/Bells"}}, 3);
}

TEST(LibraryDiagnostic, APackWhoseDatabasesComeWithTheSecondComponentIsSound) {
  makeUpdateSet();
  writeFile(inSet(kFactory + "/Velmora Library/Keys/a.txt"), "a");
  writeFile(inSet("Second/TANVO/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Keys/a.db"), "a");
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(LibraryDiagnostic, AnInstalledPackThatTheDetectionCannotSee) {
  makeUpdateSet();
  makeFolder("/Users/tester/Has/DOVA");
  writeFile("/Users/tester/Has/TANVO/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Keys/a.DB",
            "stub");
  expectDiagnostics(checkFor("Tessaphon", "", "/Users/tester/Has"),
                    {{"mirel-pack-unseen", "warning", "/Users/tester/Has/TANVO/Mirel Packs/Velmora"}}, 3);
}

// ---- Plug-ins and applications ----

namespace {

void makeProgram(const std::string& path) {
  writeFile(inSet(path), "program");
  std::filesystem::permissions(inSet(path), std::filesystem::perms(0755));
}

}  // namespace

TEST(BundleDiagnostic, APlugInOfNoProduct) {
  makeUpdateSet();
  writeFile(inSet("Library/Audio/Plug-Ins/VST/Echoes.vst/Contents/Echoes"), "program");
  expectDiagnostics(checkFor("Tessaphon"),
                    {{"plugin-unknown", "warning", "Library/Audio/Plug-Ins/VST/Echoes.vst"}}, 3);
}

TEST(BundleDiagnostic, AProductsNameInThePackagesOwnPath) {
  makeUpdateSet();
  const std::string folder = "/Users/tester/Lumaweave Installer";
  std::filesystem::rename(kSetFolder, folder);
  const CheckResult result = checkSet({folder, "Tessaphon", "", ""});
  expectDiagnostics(result,
                    {{"product-in-path", "warning", kComponent},
                     {"product-in-path", "warning", "Library/Audio/Plug-Ins/VST3/Tessaphon.vst3"},
                     {"product-in-path", "warning", "Applications/Tessaphon.app"}},
                    3);
}

TEST(BundleDiagnostic, TheProductsOwnNameInThePackagesPathIsSound) {
  makeUpdateSet();
  const std::string folder = "/Users/tester/Tessaphon Installer";
  std::filesystem::rename(kSetFolder, folder);
  expectDiagnostics(checkSet({folder, "Tessaphon", "", ""}), {}, 0);
}

TEST(BundleDiagnostic, ABlankInAnApplicationsName) {
  makeUpdateSet();
  makeProgram("Applications/Tessaphon Player.app/Contents/Player");
  expectDiagnostics(checkFor("Tessaphon"),
                    {{"app-path-blank", "warning", "Applications/Tessaphon Player.app"},
                     {"bundle-permissions", "note", "Applications/Tessaphon Player.app"}},
                    3);
}

TEST(BundleDiagnostic, ABlankInsideAnApplication) {
  makeUpdateSet();
  writeFile(inSet("Applications/Tessaphon.app/Contents/Read me.txt"), "text");
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result, {{"app-path-blank", "warning", "Applications/Tessaphon.app"}}, 3);
  EXPECT_THAT(sentenceOf(result, "app-path-blank"), testing::HasSubstr("compensates"));
}

TEST(BundleDiagnostic, ACharacterForTheShellInAnApplication) {
  makeUpdateSet();
  writeFile(inSet("Applications/Tessaphon.app/Contents/R&D.txt"), "text");
  expectDiagnostics(checkFor("Tessaphon"), {{"app-path-shell", "error", "Applications/Tessaphon.app"}}, 1);
}

TEST(BundleDiagnostic, ACharacterForTheShellInAnApplicationAmongTheData) {
  makeUpdateSet();
  const std::string file = "First/TANVO/Tessaphon/Applications/Tool.app/$(id).db";
  writeFile(inSet(file), "data");
  expectDiagnostics(checkFor("Tessaphon"), {{"app-path-shell", "error", file}}, 1);
}

TEST(BundleDiagnostic, ACharacterForTheShellInADataFolderIsSound) {
  makeUpdateSet();
  writeFile(inSet("First/TANVO/Tessaphon/Strings & Brass/a.db"), "data");
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

const std::string kAaxSignature = "/Contents/Resources/__Pace_Eden/Signatures/codesign.dsig";

TEST(BundleDiagnostic, ACharacterForTheShellInTheNameOfAPlugInWithASignature) {
  makeUpdateSet();
  const std::string plugIn = "Library/Audio/Plug-Ins/VST3/Tessaphon $(id).vst3";
  writeFile(inSet(plugIn + "/Contents/program"), "program");
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);  // no command has its name yet
  writeFile(inSet(plugIn + kAaxSignature), "signature");
  expectDiagnostics(checkFor("Tessaphon"), {{"signature-path-shell", "error", plugIn + kAaxSignature}}, 1);
}

TEST(BundleDiagnostic, ABlankAndAnAmpersandInTheNameOfAPlugInWithASignatureAreSound) {
  makeUpdateSet();
  writeFile(inSet("Library/Audio/Plug-Ins/VST3/Tessaphon & Co.vst3" + kAaxSignature), "signature");
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(BundleDiagnostic, ACharacterForTheShellInThePackagesPathAboveASignature) {
  makeUpdateSet();
  writeFile(inSet("Library/Audio/Plug-Ins/VST3/Tessaphon.vst3" + kAaxSignature), "signature");
  writeFile(inSet("Library/Audio/Plug-Ins/VST3/Other Tessaphon.vst3" + kAaxSignature), "signature");
  const std::string folder = "/Users/tester/a `b`";
  std::filesystem::rename(kSetFolder, folder);
  const CheckResult result = checkSet({folder, "Tessaphon", "Full", {}});
  EXPECT_EQ(foundIn(result),
            (std::vector<Found>{{"signature-path-shell", "error", folder + "/Installer.pkg"}}));
}

TEST(BundleDiagnostic, ProgramsInAPlugIn) {
  makeUpdateSet();
  makeProgram(kComponent + "/Contents/Tessaphon");
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result, {{"bundle-permissions", "note", kComponent}}, 0);
  EXPECT_THAT(sentenceOf(result, "bundle-permissions"), testing::StartsWith("1 program file in the bundle"));
}

TEST(BundleDiagnostic, ProgramsInAnApplicationAreSound) {
  makeUpdateSet();
  makeProgram("Applications/Tessaphon.app/Contents/Tessaphon");
  expectDiagnostics(checkFor("Tessaphon"), {}, 0);
}

TEST(BundleDiagnostic, LinksInABundle) {
  makeUpdateSet();
  std::filesystem::create_symlink("Tessaphon", inSet(kComponent + "/Contents/Current"));
  expectDiagnostics(checkFor("Tessaphon"), {{"bundle-link", "warning", kComponent}}, 3);
}

TEST(BundleDiagnostic, ALinkToAFolderInABundle) {
  makeUpdateSet();
  makeFolder(inSet(kComponent + "/Versions/A"));
  std::filesystem::create_symlink("A", inSet(kComponent + "/Versions/Current"));
  expectDiagnostics(checkFor("Tessaphon"), {{"link-to-folder", "error", kComponent + "/Versions/Current"}}, 1);
}

}  // namespace tavenhall::test
