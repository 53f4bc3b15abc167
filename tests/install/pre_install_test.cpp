#include "tests/install/case_files.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

// What a run leaves besides the install: the files in /tmp before it, the summary after it.
namespace tavenhall::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::MatchesRegex;

TEST(PreInstall, ThePackageAndTheEditionAreWrittenAndTheHomeGetsItsFoldersButNoDataFolder) {
  layTree(kSet, {textFile("Installer.pkg", "")});

  JsonInstaller installer({"--package", kPackage, "--install-type", "lITE"});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/tester/Downloads/Set/Installer.pkg\n");
  EXPECT_EQ(readFile("/tmp/TavInstallType"), "Lite\n");
  EXPECT_EQ(treeOf("/Users/tester/Library"), (std::vector<std::string>{"Application Support/", "Caches/"}));
}

// The example package's own step runs as root, and /tmp is everybody's.
TEST(PreInstall, OfTheExamplePackageDoesNotFollowALinkThatSomebodyPlanted) {
  makeFolder("/tmp/bin");
  for (const char* tool : {"stat", "dscl", "sudo"}) {
    const std::string path = std::string("/tmp/bin/") + tool;
    writeFile(path, "#!/bin/sh\necho tester\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }
  writeFile("/Users/tester/mine", "mine\n");
  std::filesystem::create_symlink("/Users/tester/mine", "/tmp/TavInstallLoc");

  const Outcome outcome = runThrough({"sh", "-c",
                                      "PATH=/tmp/bin:$PATH exec sh '" TAVINSTALL_SOURCE_DIR
                                      "/resources/installer-example/preinstall' /Users/tester/A.pkg"});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(readFile("/Users/tester/mine"), "mine\n");
  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/tester/A.pkg\n");
  EXPECT_FALSE(std::filesystem::is_symlink("/tmp/TavInstallLoc"));
}

TEST(PreInstall, LeftOutItTakesTheFilesThatAreThere) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "InstallDataTitle = By hand\n")});
  setPackage(kPackage);
  writeFile("/tmp/TavInstallType", "Full\n");

  JsonInstaller installer({"--no-preinstall"});
  installer.send(kTitle);

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(installer.events(), ElementsAre(R"({"event":"title","text":"By hand"})"));
  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/tester/Downloads/Set/Installer.pkg\n");
  EXPECT_EQ(readFile("/tmp/TavInstallType"), "Full\n");
}

TEST(PreInstall, SkippedWithoutAFileThePageLogsItAndContinues) {
  std::filesystem::create_directories("/Users/tester/Library/Caches");

  JsonInstaller installer({"--no-preinstall"});
  installer.send({kTitle, kTitle});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(logMessages(),
            (std::vector<std::string>{
                "getFolderContainingPKGfile: could not open preinstall file  /tmp/TavInstallLoc",
                "getFolderContainingPKGfile: preinstall file is empty",
                "Did not find Installation Attribute File.", "Could not find title string in attributes file ",
                "getFolderContainingPKGfile: preinstall file is empty",
                "getFolderContainingPKGfile: preinstall file is empty",
                "Could not find title string in attributes file "}));
}

TEST(PreInstall, WhereTheHomeIsMissingThereIsNoLogAndThePageGoesOn) {
  layTree(kSet, {textFile("Installer.pkg", "")});
  setPackage(kPackage);

  JsonInstaller installer({"--no-preinstall", "--without-attributes"}, {{"HOME", "/nowhere"}});
  installer.send(kTitle);

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(installer.events(), ElementsAre(R"({"event":"title","text":"Installing Data"})"));
  EXPECT_FALSE(exists("/nowhere"));
  EXPECT_FALSE(exists("/tmp/installationLog.txt"));
}

TEST(PreInstall, TheLogsFolderIsTheUsersAlone) {
  layPackage("Mode = DataUpdater\n");

  JsonInstaller installer({"--package", kPackage});
  installer.send(kTitle);

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(describeTree({"/Users/tester/Library/Caches"}),
              Contains("drwx------ /Users/tester/Library/Caches/Tavenhall"));
}

// The facts of the run have tests of their own.
void eraseFacts(nlohmann::ordered_json& summary) {
  for (const char* fact :
       {"package", "product", "edition", "destination", "volumes", "log", "started", "version"}) {
    EXPECT_EQ(summary.erase(fact), 1U) << fact;
  }
}

// Seconds are the machine's.
std::string withoutSeconds(const std::string& path) {
  auto summary = nlohmann::ordered_json::parse(readFile(path));
  EXPECT_GE(summary["seconds"], 1.0);
  summary["seconds"] = 0;
  for (auto& copy : summary["copies"]) {
    EXPECT_GE(copy["seconds"], 0.0);
    copy["seconds"] = 0;
  }
  for (const char* part : {"copyingSeconds", "waitingSeconds", "checkingSeconds"}) {
    EXPECT_GE(summary[part], 0.0);
    summary[part] = 0;
  }
  eraseFacts(summary);
  return summary.dump();
}

TEST(Summary, ListsTheCopiesAndTheAlerts) {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = SupportHub\nRelativePath = .\nRelativePath2 = Full\n"),
                 file("DOVA/b.db", 2048), folder("Full/TANVO/Tessaphon"), textFile("Installer.pkg", ""),
                 file("TANVO/a.db", 4096)});
  layTree(kMakersFolder, {folder("TANVO"), folder("DOVA")});

  JsonInstaller installer({"--package", kPackage, "--summary", "/tmp/summary.json"});
  installer.send({kFirstButton, kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(readFile("/tmp/summary.json"), MatchesRegex("\\{[^\n]+\\}\n"));
  EXPECT_EQ(
      withoutSeconds("/tmp/summary.json"),
      R"({"left":true,"ready":1,"mode":4,"seconds":0,"kBytesCopied":6,)"
      R"("copies":[{"seconds":0},{"seconds":0}],)"
      R"("alerts":[{"message":"Detected Installation Type","informative":)"
      R"("Lite installation detected for Tessaphon. Performing a Lite data update.",)"
      R"("buttons":["Continue"],"answer":1000}],"sheets":[],"bytes":6144,"files":2,)"
      R"("installed":true,"audit":{"files":2,"folders":2,"bytes":6144,"skipped":0,"failures":0},)"
      R"("copyingSeconds":0,"waitingSeconds":0,"checkingSeconds":0,"status":0,"reason":"","failedFiles":[],"remaining":[]})");
}

TEST(Summary, ListsTheSheets) {
  layPackage("Mode = DataUpdater\nRelativePath = Nowhere\n");

  JsonInstaller installer({"--package", kPackage, "--summary", "/tmp/summary.json"});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  // Nothing is copied, so nothing takes a second.
  auto summary = nlohmann::ordered_json::parse(readFile("/tmp/summary.json"));
  summary["seconds"] = 0;
  eraseFacts(summary);
  EXPECT_EQ(
      summary.dump(),
      R"({"left":false,"ready":0,"mode":0,"seconds":0,"kBytesCopied":0,"copies":[],"alerts":[],)"
      R"("sheets":[{"button":"OK","message":"Files to be installed not found.","file":""},)"
      R"({"button":"OK","message":"The installation of the Tessaphon data has not finished.","file":""}],"bytes":0,"files":0,)"
      R"("installed":false,"audit":{"files":0,"folders":0,"bytes":0,"skipped":0,"failures":0},)"
      R"("copyingSeconds":0.0,"waitingSeconds":0.0,"checkingSeconds":0.0,"status":1,)"
      R"("reason":"Files to be installed not found.","failedFiles":[],"remaining":[]})");
}

}  // namespace
}  // namespace tavenhall::test
