#include "tests/faults/gated_install.h"
#include "tests/install/case_files.h"
#include "tests/support/files.h"
#include "tests/support/private_root.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

// What somebody can reach who writes where the page reads.
namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr uid_t kOtherUser = 54321;
constexpr const char* kSharedLine =
    "tavinstall: other users can change /Users/tester/Downloads/Set and thereby what is installed; use "
    "--trusted to install anyway\n";

void layUpdate(const std::string& attributes = "") {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = DataUpdater\nRelativePath = .\n" + attributes),
                 textFile("Installer.pkg", ""), file("TANVO/a.db", 100)});
  makeFolder(kTanvo);
}

void openToAll(const std::string& path) { ASSERT_EQ(chmod(path.c_str(), 0777), 0) << path; }

TEST(SharedPackageFolder, IsRefusedInOneLineAndNothingIsBegun) {
  layUpdate();
  openToAll(kSet);
  for (const char* frontend : {"plain", "quiet"}) {
    const Outcome outcome = runThrough({kTavinstall, "run", "--ui", frontend, "--package", kPackage});
    EXPECT_EQ(outcome.status, 6);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, kSharedLine);
  }
  EXPECT_FALSE(exists("/tmp/TavInstallLoc"));
  EXPECT_FALSE(exists(kLog));
}

TEST(SharedPackageFolder, IsRefusedWhereOthersCanAddAnAttributesFileOrASource) {
  layUpdate();
  for (const char* folder : {"/Users/tester/Downloads", "/Users/tester/Downloads/Set/TANVO"}) {
    ASSERT_EQ(chmod(folder, 01777), 0);
    const Outcome outcome = runThrough({kTavinstall, "run", "--ui", "plain", "--package", kPackage});
    EXPECT_EQ(outcome.status, 6);
    EXPECT_EQ(outcome.error, "tavinstall: other users can change " + std::string(folder) +
                                 " and thereby what is installed; use --trusted to install anyway\n");
    ASSERT_EQ(chmod(folder, 0755), 0);
  }
  EXPECT_FALSE(exists(kLog));
}

TEST(SharedPackageFolder, IsRefusedWhereOthersCanWriteInAnApplication) {
  layTree(kSet, {textFile(".InstallationAttributes.dat", "Mode = TavenhallUpdater\nRelativePath = .\n"),
                 textFile("Installer.pkg", ""), file("Applications/Tool.app/Contents/program", 100)});
  openToAll(std::string(kSet) + "/Applications/Tool.app/Contents");
  const Outcome outcome = runThrough({kTavinstall, "run", "--ui", "quiet", "--package", kPackage});
  EXPECT_EQ(outcome.status, 6);
  EXPECT_THAT(outcome.error,
              HasSubstr("other users can change " + std::string(kSet) + "/Applications/Tool.app/Contents"));
}

TEST(SharedPackageFolder, IsInstalledFromWhenItIsTrusted) {
  layUpdate();
  openToAll(kSet);
  const GatedRun run = install({"--trusted"});
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_EQ(run.error, "");
  EXPECT_TRUE(exists(std::string(kTanvo) + "/a.db"));
}

TEST(SharedPackageFolder, WarnsOnlyWithUiJson) {
  layUpdate();
  openToAll(kSet);
  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});
  EXPECT_EQ(installer.finish(), 0);
  EXPECT_TRUE(exists(std::string(kTanvo) + "/a.db"));
  EXPECT_EQ(installer.program().standardError(), kSharedLine);
}

TEST(FilesInTmp, AnotherUsersAreRefusedUnlessTheyAreTrusted) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may give a file away";
  }
  layUpdate();
  setPackage(kPackage);
  ASSERT_EQ(chown("/tmp/TavInstallLoc", kOtherUser, kOtherUser), 0);
  const Outcome refused = runThrough({kTavinstall, "run", "--ui", "quiet", "--no-preinstall"});
  EXPECT_EQ(refused.status, 6);
  EXPECT_EQ(refused.error,
            "tavinstall: /tmp/TavInstallLoc was written by another user; use --trusted to install anyway\n");

  const Outcome trusted = runThrough({kTavinstall, "run", "--ui", "quiet", "--no-preinstall", "--trusted"});
  EXPECT_EQ(trusted.status, 0) << trusted.error;
}

TEST(FilesInTmp, AnotherUsersChoiceOfEditionIsRefusedUnlessTheUserChooses) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may give a file away";
  }
  layUpdate();
  writeFile("/tmp/TavInstallType", "Lite\n");
  ASSERT_EQ(chown("/tmp/TavInstallType", kOtherUser, kOtherUser), 0);
  const GatedRun refused = install();
  EXPECT_EQ(refused.status, 6);
  EXPECT_EQ(refused.error,
            "tavinstall: /tmp/TavInstallType was written by another user; use --trusted to install anyway\n");

  const GatedRun chosen = install({"--install-type", "Full"});
  EXPECT_EQ(chosen.status, 0) << chosen.error;
}

TEST(APipe, InThePlaceOfTheAttributesFileIsAFileWithoutKeys) {
  layUpdate();
  ASSERT_EQ(unlink((std::string(kSet) + "/.InstallationAttributes.dat").c_str()), 0);
  ASSERT_EQ(mkfifo((std::string(kSet) + "/.InstallationAttributes.dat").c_str(), 0644), 0);
  layTree(kDiscA, {file("TANVO/disc.db", 100)});
  const GatedRun refused = install();
  EXPECT_EQ(refused.status, 6);
  EXPECT_THAT(refused.error, HasSubstr(".InstallationAttributes.dat is a pipe, a socket or a device"));
  const GatedRun run = install({"--without-attributes"});  // as from discs, since nothing says otherwise
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_THAT(
      logMessages(),
      Contains(
          "Found Installation Attribute File at  /Users/tester/Downloads/Set/.InstallationAttributes.dat"));
  EXPECT_TRUE(exists(std::string(kTanvo) + "/disc.db"));
}

TEST(APipe, InThePlaceOfAFileInTmpIsAnEmptyFile) {
  layUpdate("NumberOfVolumes = 2\nRelativePath2 = Second\n");
  writeFile(std::string(kSet) + "/Second/TANVO/b.db", "b");
  ASSERT_EQ(mkfifo("/tmp/TavInstallLoc", 0644), 0);
  ASSERT_EQ(mkfifo("/tmp/TavInstallType", 0644), 0);
  const GatedRun run = install();
  EXPECT_EQ(run.status, 0) << run.output;
  EXPECT_THAT(logMessages(), Contains("contentsOfTavInstallTypeFile = "));
}

TEST(APipe, InThePlaceOfTheLocationFileIsAnEmptyFile) {
  layUpdate();
  makeFolder("/Users/tester/Library/Caches");
  ASSERT_EQ(mkfifo("/tmp/TavInstallLoc", 0644), 0);
  JsonInstaller installer({"--no-preinstall", "--without-attributes"});
  installer.send(kTitle);
  EXPECT_EQ(installer.finish(), 0);
  EXPECT_THAT(installer.events(), ElementsAre(R"({"event":"title","text":"Installing Data"})"));
  EXPECT_THAT(logMessages(), Contains("getFolderContainingPKGfile: preinstall file is empty"));
}

// ---- What cannot be helped: the page's formats are required ----

TEST(AttributesFile, MayNameAnyFolderThatTheUserCanReadAsTheSource) {
  layUpdate();
  writeFile("/Users/tester/Private/TANVO/diary.txt", "dear diary");
  writeFile(std::string(kSet) + "/.InstallationAttributes.dat",
            "Mode = DataUpdater\nRelativePath = ../../Private\n");
  EXPECT_EQ(install().status, 0);
  EXPECT_EQ(readFile(std::string(kTanvo) + "/diary.txt"), "dear diary");
}

TEST(AttributesFile, CannotSendTheDataElsewhereThanToTheCentralFolder) {
  layUpdate("FolderName = ../../evil\nDestination = /evil\nInstallingData = %n%n%s%s%1000d\n");
  EXPECT_EQ(install().status, 0);
  EXPECT_TRUE(exists(std::string(kTanvo) + "/a.db"));
  EXPECT_FALSE(exists("/evil"));
}

TEST(CentralFolder, ALinkInItIsWrittenThrough) {
  layUpdate();
  writeFile("/Users/tester/precious", "contents");
  fs::create_symlink("/Users/tester/precious", std::string(kTanvo) + "/a.db");
  EXPECT_EQ(install().status, 0);
  EXPECT_EQ(readFile("/Users/tester/precious"), readFile(std::string(kSet) + "/TANVO/a.db"));
}

TEST(CentralFolder, ALinkInItToTheSourceIsWrittenThroughAndTheInstallFails) {
  layUpdate();
  writeFile(std::string(kSet) + "/TANVO/b.db", "another file of the source");
  fs::create_symlink(std::string(kSet) + "/TANVO/b.db", std::string(kTanvo) + "/a.db");
  EXPECT_EQ(install().status, 1);
  EXPECT_EQ(readFile(std::string(kSet) + "/TANVO/b.db"), readFile(std::string(kSet) + "/TANVO/a.db"));
}

}  // namespace
}  // namespace tavenhall::test
