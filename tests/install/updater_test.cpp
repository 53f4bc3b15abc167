#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

// Updates of a whole product: plug-ins, applications, and the libraries that the user has.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::Not;

TEST(Updater, PluginsAndApplicationsAreReplacedThenBothDataFoldersAreUpdated) {
  const std::string aax = "Library/Application Support/Avid/Audio/Plug-Ins/Tessaphon.aaxplugin/Contents";
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = TavenhallUpdater\nRelativePath = Data\nTotalSizeMillionsBytes = 1\n"),
                 textFile("Installer.pkg", ""), file(aax + "/MacOS/Tessaphon", 2048),
                 file(aax + "/Resources/__Pace_Eden/Signatures/codesign.dsig", 3000),
                 file("Library/Audio/Plug-Ins/Components/Tessaphon.component/Contents/MacOS/Tessaphon", 153600),
                 file("Library/Audio/Plug-Ins/VST/Another.vst/Contents/plugin", 1024),
                 file("Library/Audio/Plug-Ins/VST/Tessaphon.vst/Contents/plugin", 1024),
                 file("Library/Audio/Plug-Ins/VST3/Tessaphon.vst3/Contents/plugin", 1024),
                 file("Applications/Tessaphon.app/Contents/MacOS/Tessaphon", 1024),
                 file("Applications/Tessaphon.app/Contents/Info.plist", 1024),
                 file("Data/TANVO/Tessaphon/patch.db", 10240), file("Data/DOVA/Engine/patch.db", 10240)});
  layTree(kMakersFolder, {folder("TANVO"), folder("DOVA")});
  layTree("/Library", {file("Application Support/Avid/Audio/Plug-Ins/Tessaphon.aaxplugin/Contents/stale", 10),
                       file("Audio/Plug-Ins/Components/Tessaphon.component/Contents/stale", 10),
                       file("Audio/Plug-Ins/VST/Another.vst/Contents/stale", 10),
                       file("Audio/Plug-Ins/VST/Tessaphon.vst/stale", 10), folder("Audio/Plug-Ins/VST3")});
  layTree("/Applications", {file("Tessaphon.app/Contents/stale", 10)});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("updater_plugins", installer);
}

// A Tessaphon library in full, a Mirel Pack in full and one of which the user has only the effects.
void layEditions() {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = SupportHub\nRelativePath = Part 1\nRelativePath2 = Part 2\n"
                          "TotalSizeMillionsBytes = 1\nComponent1SizeMillionsBytes = 2\n"),
                 textFile("Installer.pkg", ""), file("Part 1/DOVA/Engine/patch.db", 1024),
                 file("Part 1/TANVO/Tessaphon/lite.db", 1024), file("Part 2/TANVO/.DS_Store", 100),
                 file("Part 2/TANVO/Mirel Packs/Quorra/quorra.db", 1024),
                 file("Part 2/TANVO/Mirel Packs/Velmora/velmora.db", 1024),
                 file("Part 2/TANVO/Tessaphon/full.db", 1024)});
}

constexpr const char* kGlassophone =
    "Tessaphon/Soundsources/Factory/Tessaphon Library/Keyboards/Glassophone.db";
constexpr const char* kQuorra = "Mirel Packs/Quorra/Soundsources/Factory/Quorra Library/Pads/q.db";
constexpr const char* kVelmora = "Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Pads/v.db";

TEST(Updater, TheSecondComponentIsCopiedOnlyForLibrariesThatTheUserHasInFull) {
  layEditions();
  layTree(kDova, {});
  layTree(kTanvo, {file(kQuorra, 1000), file(kVelmora, 999), file(kGlassophone, 10)});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});
  for (int alert = 0; alert < 3; ++alert) {
    installer.await("alert");
    installer.send(kFirstButton);
  }

  EXPECT_EQ(installer.finish(), 0);
  expectCase("updater_editions", installer);
}

TEST(Updater, WhereEveryLibraryIsLiteOnlyTheFirstComponentIsCopied) {
  layEditions();
  layTree(kDova, {});
  layTree(kTanvo, {file(kQuorra, 999), file(kVelmora, 0)});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kFirstButton, kFirstButton, kFirstButton, kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("updater_all_lite", installer);
}

TEST(Updater, DataForAFolderThatTheUserDoesNotHaveIsNotCopiedAnywhere) {
  layTree(kSet,
          {textFile(".InstallationAttributes.dat",
                    "Mode = TavenhallUpdater\nRelativePath = Data\nTotalSizeMillionsBytes = 1\n"),
           textFile("Installer.pkg", ""), file("Data/TANVO/patch.db", 1024), file("Data/DOVA/patch.db", 1024)});
  layTree(kTanvo, {});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("updater_without_dova_folder", installer);
}

TEST(Updater, WithNothingToCopyThePageIsStillLeftForwards) {
  layPackage("Mode = TavenhallUpdater\n");

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("updater_without_data", installer);
}

// The page would remove the installed plug-ins before it "copies" them onto themselves.
TEST(Updater, IsRefusedWhereItsOwnFoldersAreTheSystems) {
  layTree("/Library", {file("Audio/Plug-Ins/VST/Tessaphon.vst/Contents/plugin", 10)});
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = TavenhallUpdater\nRelativePath = Data\n"),
                 textFile("Installer.pkg", "")});
  std::filesystem::create_directory_symlink("/Library", std::string(kSet) + "/Library");
  layTree(kTanvo, {});
  const std::string complaint =
      "tavinstall: the update would copy /Users/tester/Downloads/Set/Library onto itself; move the package "
      "into its own folder\n";

  const Outcome outcome = runThrough({kTavinstall, "run", "--ui", "quiet", "--package", kPackage});
  EXPECT_EQ(outcome.status, 6);
  EXPECT_EQ(outcome.error, complaint);
  EXPECT_TRUE(exists("/Library/Audio/Plug-Ins/VST/Tessaphon.vst/Contents/plugin"));
  EXPECT_FALSE(exists(kLog));

  JsonInstaller installer({"--package", kPackage});
  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(installer.program().standardError(), complaint);
}

TEST(Updater, AnApplicationWithABlankInItsNameIsOpenedUpItemByItemAllTheSame) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = TavenhallUpdater\n"),
                 textFile("Installer.pkg", ""), file("Applications/Sound Check.app/Contents/program", 1024)});
  layTree(kTanvo, {});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  // The shell sees two names, of which there is neither; then the item itself is opened up.
  EXPECT_THAT(
      logMessages(),
      Contains("sudo chmod -R 777 /Applications//Sound Check.app/Contents/program   ... result = 256\n"));
  EXPECT_THAT(logMessages(), Not(Contains("Deleting pre-existing plugin/wrapper/application at "
                                          "/Applications//Sound Check.app")));
  EXPECT_EQ(describeTree({"/Applications"}),
            (std::vector<std::string>{
                "drwxrwxrwx /Applications/Sound Check.app", "drwxrwxrwx /Applications/Sound Check.app/Contents",
                "-rwxrwxrwx /Applications/Sound Check.app/Contents/program = "
                "/Users/tester/Downloads/Set/Applications/Sound Check.app/Contents/program"}));
}

}  // namespace
}  // namespace tavenhall::test
