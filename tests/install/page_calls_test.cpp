#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The installer's calls in other orders than enter, wait and leave.
namespace tavenhall::test {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(PageCalls, ThePageIsLeftForwardsOnlyAfterTheInstallAndBackwardsAtAnyTime) {
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n");

  JsonInstaller installer({"--package", kPackage});
  installer.send({kForward, kBack, kEnter});
  installer.await("alert");
  // The install thread sleeps ten seconds once this is answered, so what comes next has its place.
  installer.send({kFirstButton, kTitle, kForward, kBack});
  installer.await("exit");
  installer.await("exit");
  layTree(kDiscA, {file("TANVO/a.db", 1024)});
  installer.send({kWait, kForward, kBack});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("forward_and_back", installer);
}

TEST(PageCalls, EnteringAgainInstallsAgainFromTheStart) {
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\nRelativePath = .\nTotalSizeMillionsBytes = 1\n"),
                 textFile("Installer.pkg", ""), file("TANVO/Tessaphon/a.db", 2048)});
  layTree(kTanvo, {});

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward, kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  expectCase("entered_twice", installer);
}

// When the title is asked for and what the install does then are two threads' business, so their order is
// not compared; that nothing is lost and nothing is torn is.
TEST(PageCalls, TheTitleMayBeAskedForWhileTheInstallRuns) {
  constexpr std::size_t kTimes = 300;
  layTree(kSet, {textFile(".InstallationAttributes.dat",
                          "Mode = DataUpdater\nInstallDataTitle = Tessaphon\nRelativePath = .\n"
                          "TotalSizeMillionsBytes = 1\n"),
                 textFile("Installer.pkg", ""), file("TANVO/Tessaphon/a.db", 500000),
                 file("TANVO/Tessaphon/b.db", 500000)});
  layTree(kTanvo, {});

  JsonInstaller installer({"--package", kPackage});
  std::string lines = std::string(kEnter) + "\n";
  for (std::size_t i = 0; i < kTimes; ++i) {
    lines += std::string(kTitle) + "\n";
  }
  installer.send(lines + kWait);
  installer.send(kForward);

  EXPECT_EQ(installer.finish(), 0);
  std::vector<std::string> events = installer.events();
  EXPECT_EQ(std::erase(events, R"({"event":"title","text":"Tessaphon"})"), kTimes);
  EXPECT_THAT(events, testing::Each(Not(HasSubstr("title"))));
  EXPECT_EQ(std::ranges::count(events, R"({"event":"status","text":"Installing... Tessaphon"})"), 2);
  EXPECT_EQ(events.back(), R"({"event":"exit","direction":0,"allowed":true})");
  const auto log = logMessages();
  EXPECT_EQ(std::ranges::count(log, "Data from attributes file::  InstallData title=Tessaphon "), kTimes);
  EXPECT_EQ(std::ranges::count(log, "Finished with all TANVO/DOVA data"), 1);
}

}  // namespace
}  // namespace tavenhall::test
