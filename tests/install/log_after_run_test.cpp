#include "tests/install/case_files.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <array>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

// What `tavinstall log` tells of runs of this program, which notes how each of them ended.
namespace tavenhall::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kCaches = "/Users/tester/Library/Caches/Tavenhall";
constexpr const char* kBundle = "/tmp/bundle.zip";

void layOneDisc() {
  layPackage(
      "Mode = InstallFromVolumes\nInstallDataTitle = Tessaphon\nInstallingData = Installing into:\\n%s\n"
      "InstalledData = All is in:\\n%s\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
  layTree(kDiscA, {file("TANVO/Tessaphon/a.db", 12288)});
}

void layDiscs() {
  layOneDisc();
  layTree(kDiscB, {file("TANVO/Tessaphon/b.db", 10240)});
}

std::vector<std::string> runCommand() {
  return {kTavinstall, "run", "--package", kPackage, "--unattended", "--disc-timeout", "600"};
}

Outcome log(std::vector<std::string> more = {}) {
  more.insert(more.begin(), {kTavinstall, "log"});
  return runThrough(more);
}

// Starts an install that waits for a disc that never comes, ends it by a signal, and returns the headline.
std::string headlineAfter(int signal) {
  layOneDisc();
  std::filesystem::remove_all(kCaches);
  ChildProgram run({kTavinstall, "run", "--package", kPackage, "--ui", "quiet", "--disc-timeout", "600"});
  const std::string path = std::string(kCaches) + "/installationLog.txt";
  while (!exists(path) || readFile(path).find("insert mandatory volume 2") == std::string::npos) {
    usleep(10000);
  }
  EXPECT_THAT(log().output, StartsWith("The last run has not ended. It waits for disc Tessaphon B."));
  EXPECT_EQ(log({"--check"}).status, 3);
  kill(run.pid(), signal);
  run.waitForEnd();
  EXPECT_EQ(log({"--check"}).status, 1);
  return log().output;
}

TEST(LogAfterRun, AStoppedRunIsToldFromAKilledOne) {
  EXPECT_THAT(headlineAfter(SIGTERM),
              StartsWith("The last run was stopped while it waited for disc Tessaphon B."));
  EXPECT_THAT(headlineAfter(SIGKILL),
              StartsWith("The last run was killed, or the computer was switched off, while it waited for\n"
                         "disc Tessaphon B."));
}

TEST(LogAfterRun, AGoodRunIsOneThatWasAudited) {
  layDiscs();
  EXPECT_EQ(runThrough(runCommand()).status, 0);
  EXPECT_THAT(log().output,
              StartsWith("The last run has ended: 2 files were found installed, and nothing failed."));
  EXPECT_EQ(log({"--check"}).status, 0);
}

// The page logs nothing of a folder that is in a file's place.
TEST(LogAfterRun, WhatTheLogDoesNotKnowIsSaid) {
  layDiscs();
  std::filesystem::create_directories(std::string(kMakersFolder) + "/TANVO/Tessaphon/b.db");
  EXPECT_EQ(runThrough(runCommand()).status, 1);
  const Outcome outcome = log({"--check"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, Not(HasSubstr("nothing failed.\n\n")));
  EXPECT_THAT(outcome.output, HasSubstr("b.db"));
}

TEST(LogAfterRun, AFullDiskIsTheReasonWhyTheEndIsMissing) {
  layDiscs();
  std::filesystem::create_directories(kCaches);
  ASSERT_EQ(mount("log", kCaches, "tmpfs", MS_NOSUID, "size=256k,mode=755"), 0);
  ASSERT_EQ(runThrough(runCommand()).status, 0);  // so that there is a log
  // A few lines of the second run still fit into the log's last block, and its record in the place of the
  // first's.
  const std::string filler = std::string(kCaches) + "/filler";
  writeFile(filler, "");
  static_cast<void>(runThrough({"dd", "if=/dev/zero", "of=" + filler, "bs=4096"}));

  EXPECT_EQ(runThrough(runCommand()).status, 0) << "the data is on another disk";
  EXPECT_THAT(log().output, HasSubstr("the disk was full"));
  umount2(kCaches, MNT_DETACH);
}

TEST(LogAfterRun, ARecordThatOthersCanWriteIsNotBelieved) {
  layDiscs();
  EXPECT_EQ(runThrough(runCommand()).status, 0);
  chmod(kCaches, 0777);
  EXPECT_THAT(log().output,
              StartsWith("The last run has ended, and the log records no failure. It does not prove"));
}

TEST(LogAfterRun, ABundleHoldsWhatSupportNeedsAndIsListedFirst) {
  layDiscs();
  EXPECT_EQ(runThrough(runCommand()).status, 0);

  const Outcome outcome = log({"--bundle", kBundle});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.output, StartsWith("/tmp/bundle.zip gets:\n  installationLog.txt, "));
  const std::string unpack =
      "import zipfile\nz = zipfile.ZipFile('/tmp/bundle.zip')\nprint(z.testzip())\n"
      "for n in z.namelist(): print(n)\nz.extractall('/tmp/unpacked')";
  EXPECT_EQ(runThrough({"/usr/bin/python3", "-c", unpack}).output,
            "None\ninstallationLog.txt\nsystem.txt\nInstallationAttributes.dat\nlastRun.json\n");
  std::array<char, 256> host{};
  ASSERT_EQ(gethostname(host.data(), host.size() - 1), 0);
  std::string expected = readFile(std::string(kCaches) + "/installationLog.txt");
  const std::string name = std::string(" ") + host.data() + ": ";
  ASSERT_NE(expected.find(name), std::string::npos);
  std::size_t at = 0;
  while ((at = expected.find(name, at)) != std::string::npos) {
    expected.replace(at, name.size(), " host: ");
    at += 2;
  }
  EXPECT_EQ(readFile("/tmp/unpacked/installationLog.txt"), expected) << "nothing personal but paths";
  EXPECT_EQ(readFile("/tmp/unpacked/InstallationAttributes.dat"),
            readFile("/Users/tester/Downloads/Set/.InstallationAttributes.dat"));
  EXPECT_THAT(readFile("/tmp/unpacked/lastRun.json"), HasSubstr(R"("status":0)"));
  EXPECT_THAT(readFile("/tmp/unpacked/system.txt"), HasSubstr("page: Version 7.7\n"));
  struct stat found {};
  ASSERT_EQ(stat(kBundle, &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0600U);

  const Outcome again = log({"--bundle", kBundle});
  EXPECT_EQ(again.status, 2);
  EXPECT_EQ(again.error, "tavinstall: cannot write /tmp/bundle.zip: File exists\n");
}

TEST(LogAfterRun, ALogFromElsewhereChoosesNoFilesOfThisMachine) {
  layDiscs();
  EXPECT_EQ(runThrough(runCommand()).status, 0);
  const std::string copy = "/tmp/customers.txt";
  writeFile(copy, readFile(std::string(kCaches) + "/installationLog.txt"));
  EXPECT_EQ(log({"--bundle", kBundle, copy}).output.find("InstallationAttributes"), std::string::npos);
}

}  // namespace
}  // namespace tavenhall::test
