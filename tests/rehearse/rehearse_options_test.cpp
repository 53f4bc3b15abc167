#include "tests/rehearse/rehearsals.h"

#include "tests/support/private_root.h"

#include <filesystem>
#include <sys/mount.h>

// What steers a rehearsal, and what cannot be used.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* kHad = "/Users/tester/had";
const std::string kGlassophone =
    "TANVO/Tessaphon/Soundsources/Factory/Tessaphon Library/Keyboards/Glassophone.db";
const std::string kOneDisc =
    "Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n" + kTexts;

// ---- What the user has ----

std::vector<std::string> librariesReported() {
  std::vector<std::string> libraries;
  const auto told = report();
  for (const auto& library : told["plan"]["libraries"]) {
    libraries.push_back(library["folder"].get<std::string>() + ": " + library["edition"].get<std::string>());
  }
  return libraries;
}

TEST(RehearseInstalled, ASandboxWithoutAnythingHasALiteTessaphon) {
  makeUpdateSet();
  EXPECT_EQ(rehearse().status, 0);
  EXPECT_THAT(librariesReported(),
              testing::UnorderedElementsAre("Mirel Packs/Velmora: Full", "Tessaphon: Lite"));
}

TEST(RehearseInstalled, AFolderOfDataFoldersIsWhatTheUserHas) {
  makeUpdateSet();
  writeFile(std::string(kHad) + "/" + kGlassophone, "x");
  makeFolder(std::string(kHad) + "/DOVA");
  EXPECT_EQ(rehearse({"--installed", kHad}).status, 0);
  EXPECT_THAT(librariesReported(), Contains("Tessaphon: Full"));
}

TEST(RehearseInstalled, OfAHomeOnlyTheDataFoldersAreLookedAt) {
  makeUpdateSet();
  const std::string data = std::string(kHad) + "/Library/Application Support/Tavenhall/";
  writeFile(data + kGlassophone, "x");
  makeFolder(data + "DOVA");
  writeFile(std::string(kHad) + "/Pictures/cat.jpg", "x");
  EXPECT_EQ(rehearse({"--installed", kHad, "--keep", "/Users/tester/kept"}).status, 0);
  EXPECT_THAT(librariesReported(), Contains("Tessaphon: Full"));
  EXPECT_THAT(treeOf("/Users/tester/kept"), Not(Contains(HasSubstr("cat.jpg"))));
}

TEST(RehearseInstalled, WhatTheUserHasIsCopiedAndNeverChanged) {
  makeDownloadSet();
  writeFile(std::string(kHad) + "/TANVO/Tessaphon/one.db", "older");
  EXPECT_EQ(rehearse({"--installed", kHad}).status, 0);
  EXPECT_EQ(readFile(std::string(kHad) + "/TANVO/Tessaphon/one.db"), "older");
}

TEST(RehearseInstalled, ADataFolderThatIsALinkElsewhereIsCopiedToo) {
  makeDownloadSet();
  writeFile("/Users/tester/big disk/TANVO/Tessaphon/one.db", "older");
  makeFolder(kHad);
  std::filesystem::create_symlink("/Users/tester/big disk/TANVO", std::string(kHad) + "/TANVO");
  EXPECT_EQ(rehearse({"--installed", kHad}).status, 0);
  EXPECT_EQ(readFile("/Users/tester/big disk/TANVO/Tessaphon/one.db"), "older");
}

TEST(RehearseInstalled, WithoutADataFolderThePageBeginsNothing) {
  makeDownloadSet();
  makeFolder(kHad);
  const Outcome outcome = rehearse({"--installed", kHad});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, HasSubstr("FAILED: the data folder did not exist, so nothing was installed\n"));
}

TEST(RehearseInstalled, WhatOneRehearsalKeptIsWhatTheNextOneFinds) {
  makeUpdateSet();
  EXPECT_EQ(rehearse({"--keep", "/Users/tester/first"}).status, 0);
  writeFile("/Users/tester/first/Library/Audio/Plug-Ins/Components/Tessaphon.component/Contents/old part", "x");
  const Outcome second = rehearse({"--installed", "/Users/tester/first", "--keep", "/Users/tester/second"});
  EXPECT_EQ(second.status, 3) << second.output;
  EXPECT_THAT(report()["remarks"], ElementsAre("tavinstall check has 1 warning for this set"))
      << "the pack that was installed has no database";
  EXPECT_THAT(treeOf("/Users/tester/second/Library/Audio/Plug-Ins/Components"),
              ElementsAre("Tessaphon.component/", "Tessaphon.component/Contents/",
                          "Tessaphon.component/Contents/Tessaphon"))
      << "the older plug-in is replaced as a whole";
  EXPECT_THAT(report()["log"].get<std::string>(), HasSubstr("Successfully deleted existing p/w/a at "));
}

TEST(RehearseInstalled, AFolderThatIsNotThereIsBadUsage) {
  makeDownloadSet();
  const Outcome outcome = rehearse({"--installed", "/Users/tester/none"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: no folder at /Users/tester/none; --installed needs a folder that holds the user's "
            "data folders\n");
}

// ---- The edition ----

TEST(RehearseInstallType, IsWhatThePageReadsAsTheUsersChoice) {
  makeDataUpdateSet();
  EXPECT_EQ(rehearse({"--install-type", "Lite"}).status, 0);
  EXPECT_THAT(report()["log"].get<std::string>(), HasSubstr(": Install Type = Lite\n"));
  EXPECT_EQ(rehearse({"--install-type", "Full"}).status, 0);
  EXPECT_THAT(report()["log"].get<std::string>(), HasSubstr(": Install Type = Full\n"));
}

TEST(RehearseInstallType, TheSetsOwnCountsUnlessAnotherIsAskedFor) {
  makeDataUpdateSet();
  writeFile(inSet("rehearsal.json"), R"({"product": "Tessaphon", "installType": "Lite"})");
  EXPECT_EQ(rehearse().status, 0);
  EXPECT_THAT(fatesReported(), ElementsAre("Tessaphon/one.db same"));
  EXPECT_EQ(rehearse({"--install-type", "Full"}).status, 0);
  EXPECT_THAT(fatesReported(), ElementsAre("Tessaphon/one.db same", "Tessaphon/two.db same"));
}

// ---- Discs that come late ----

TEST(RehearseLate, ADiscIsAskedForInVainFirst) {
  makeDiscSet(kOneDisc);
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  EXPECT_EQ(rehearse({"--product", "Lumaweave", "--late", "1"}).status, 0);
  EXPECT_THAT(
      report()["prompts"].dump(),
      R"([{"reply":"late","volume":"Tavenhall Lumaweave"},{"reply":"inserted","volume":"Tavenhall Lumaweave"}])");
}

TEST(RehearseLate, IsANumberFromNought) {
  makeDiscSet(kOneDisc);
  for (const char* number : {"-1", "often"}) {
    const Outcome outcome = rehearse({"--late", number});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.error, StartsWith("tavinstall: --late: "));
  }
}

// ---- What is kept ----

TEST(RehearseKeep, TheFolderHasTheInstalledFilesAndTheLog) {
  makeDownloadSet();
  const Outcome outcome = rehearse({"--keep", "/Users/tester/deep/kept"});
  EXPECT_EQ(outcome.status, 0);
  const std::string log =
      "/Users/tester/deep/kept/Users/rehearsal/Library/Caches/Tavenhall/installationLog.txt";
  EXPECT_THAT(outcome.output, HasSubstr("  log          " + log + "\n"));
  EXPECT_EQ(report()["logFile"], log);
  EXPECT_EQ(report()["log"], readFile(log));
  EXPECT_THAT(treeOf("/Users/tester/deep/kept"), Contains(EndsWith("/TANVO/Tessaphon/one.db")));
}

TEST(RehearseKeep, AFolderThatIsNotEmptyIsRefused) {
  makeDownloadSet();
  writeFile("/Users/tester/kept/mine", "x");
  const Outcome outcome = rehearse({"--keep", "/Users/tester/kept"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: the folder /Users/tester/kept is not empty; --keep needs a new or empty folder\n");
  EXPECT_THAT(treeOf("/Users/tester/kept"), ElementsAre("mine"));
}

TEST(RehearseKeep, AFolderThatCannotBeMadeIsBadUsage) {
  makeDownloadSet();
  writeFile("/Users/tester/file", "x");
  const Outcome outcome = rehearse({"--keep", "/Users/tester/file/kept"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: cannot create the folder /Users/tester/file/kept; --keep needs a writable folder\n");
}

// ---- What cannot be used ----

TEST(RehearseBadUsage, ASetThatIsNotThere) {
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(
      outcome.error,
      "tavinstall: no installer set at /Users/tester/Installer; a set is a folder with an installer package\n");
}

TEST(RehearseBadUsage, AnUnknownProduct) {
  makeDownloadSet();
  const Outcome outcome = rehearse({"--product", "Nosuch"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: --product: Nosuch not in {Tessaphon,Lumaweave,Bassoria,TemporaQX}; see tavinstall "
            "rehearse --help\n");
}

TEST(RehearseBadUsage, RefusesAReportThatCannotBeWritten) {
  makeDownloadSet();
  const Outcome outcome = runThrough({kTavinstall, "rehearse", kSetFolder, "--ui", "quiet", "--report",
                                      "/Users/tester/none/report.json", "--keep", "/Users/tester/kept"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: cannot write /Users/tester/none/report.json: No such file or directory\n");
  EXPECT_FALSE(exists("/Users/tester/kept"));
}

TEST(RehearseBadUsage, WithoutBubblewrapItIsNamed) {
  makeDownloadSet();
  makeFolder("/tmp/bin");
  std::filesystem::create_symlink("/usr/bin/setpriv", "/tmp/bin/setpriv");
  const Outcome outcome = runThrough(rehearseCommand(), {{"PATH", "/tmp/bin"}});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: rehearsing needs Linux and bubblewrap; install the package bubblewrap\n");
  expectNothingLeft();
}

TEST(RehearseBadUsage, AReadOnlyFolderToKeep) {
  makeDownloadSet();
  makeFolder("/Users/tester/kept");
  ASSERT_EQ(mount("tmpfs", "/Users/tester/kept", "tmpfs", MS_RDONLY, nullptr), 0);
  const Outcome outcome = rehearse({"--keep", "/Users/tester/kept"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "tavinstall: cannot use /Users/tester/kept/tmp: Read-only file system\n");
}

TEST(RehearseBadUsage, NoPlaceForATemporaryFolder) {
  makeDownloadSet();
  const Outcome outcome = runThrough(rehearseCommand(), {{"TMPDIR", "/Users/tester/none"}});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(
      outcome.error,
      "tavinstall: cannot create a temporary folder in /Users/tester/none; set TMPDIR to another folder\n");
}

// A set that says it is larger than any disk: sparse, so that it takes none here.
TEST(RehearseBadUsage, RefusesTooLittleRoom) {
  makeDownloadSet();
  writeFile(inSet("TANVO/Tessaphon/huge.db"), "x");
  std::filesystem::resize_file(inSet("TANVO/Tessaphon/huge.db"), 8'000'000'000'000);
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, StartsWith("tavinstall: the installation needs 8.0 TB, but "));
  EXPECT_THAT(outcome.error, EndsWith("; use --keep DIR for another place\n"));
  expectNothingLeft();
}

// ---- The user's own folders ----

TEST(Rehearse, TheUsersOwnFoldersAreNotTouched) {
  makeUpdateSet();
  const auto everything = [] {
    std::vector<std::string> all;
    for (const char* folder : {"/tmp", "/Users", "/Library", "/Applications", "/Volumes"}) {
      for (const std::string& path : treeOf(folder)) {
        all.push_back(std::string(folder) + "/" + path);
      }
    }
    return all;
  };
  const std::vector<std::string> before = everything();
  EXPECT_EQ(runThrough({kTavinstall, "rehearse", kSetFolder, "--ui", "quiet"}).status, 0);
  EXPECT_EQ(runThrough({kTavinstall, "rehearse", kSetFolder, "--product", "Nosuch"}).status, 2);
  EXPECT_EQ(everything(), before);
}

TEST(RehearseBadUsage, ASetThatLeadsOutOfItsFolder) {
  makeDownloadSet();
  writeFile("/Users/tester/outside.db", "outside");
  std::filesystem::create_symlink("/Users/tester/outside.db", inSet("TANVO/Tessaphon/two.db"));
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(
      outcome.error,
      "tavinstall: /Users/tester/Installer/TANVO/Tessaphon/two.db leads out of the set, to "
      "/Users/tester/outside.db; put that into the set, or use --allow-outside. tavinstall check names every "
      "such path\n");
  EXPECT_EQ(rehearse({"--allow-outside"}).status, 1);  // in the sandbox the link leads nowhere
}

TEST(RehearseBadUsage, APackageOutsideTheSet) {
  makeDownloadSet();
  writeFile(inSet("rehearsal.json"), R"({"package": "../../../etc/hostname"})");
  const Outcome outcome = rehearse();
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("/etc/hostname leads out of the set"));
}

TEST(Rehearse, ADiscMayBeALinkWhereThatIsAllowed) {
  makeDiscSet();
  std::filesystem::rename(inSet("discs/2 Tavenhall Lumaweave"), "/Users/tester/disc");
  std::filesystem::create_symlink("/Users/tester/disc", inSet("discs/2 Tavenhall Lumaweave"));
  const Outcome outcome = rehearse({"--product", "Lumaweave", "--allow-outside"});
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  EXPECT_THAT(fatesReported(), testing::ElementsAre("Factory/one.db same", "Factory/two.db same"));

  const std::string board = "/tmp/board.html";
  EXPECT_EQ(runThrough({kTavinstall, "rehearse", kSetFolder, "--product", "Lumaweave", "--allow-outside",
                        "--storyboard", board, "--language", "en"})
                .status,
            0);
  EXPECT_THAT(readFile(board), HasSubstr("No problems found."));
}

TEST(Rehearse, AnOrdinaryUserNeedsNoRights) {
  makeUpdateSet();
  const Outcome outcome = runThrough(asOrdinaryUser(rehearseCommand({"--ui", "quiet"})));
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  expectNothingLeft();
}

TEST(Rehearse, ASetMayBeCalledAsAFolderInAHomeIs) {
  makeDownloadSet();
  std::filesystem::rename(kSetFolder, "/Users/tester/Library");
  const Outcome outcome = runThrough({kTavinstall, "rehearse", "/Users/tester/Library", "--ui", "quiet"});
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
}

}  // namespace
}  // namespace tavenhall::test
