#include "host/engine/pre_install.h"

#include "context/first_line.h"
#include "host/base/exit_status.h"
#include "platform/installer_pane.h"
#include "tests/support/files.h"
#include "tests/support/private_root.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr uid_t kOtherUser = 54321;

// What is wrong with a package, in one line.
std::string refusal(const fs::path& package) {
  try {
    return "taken as " + packageLocation(package).string();
  } catch (const UsageError& error) {
    return error.what();
  }
}

TEST(PackageLocation, AnAbsolutePathIsTakenAsItIs) {
  writeFile("/Users/tester/Set/Installer.pkg", "");
  EXPECT_EQ(packageLocation("/Users/tester/Set/../Set/Installer.pkg").native(),
            "/Users/tester/Set/../Set/Installer.pkg");
}

TEST(PackageLocation, ARelativePathIsMadeAbsolute) {
  writeFile("/Users/tester/Set/Installer.pkg", "");
  fs::current_path("/Users/tester/Set");
  EXPECT_EQ(packageLocation("Installer.pkg").native(), "/Users/tester/Set/Installer.pkg");
  EXPECT_EQ(packageLocation("./Installer.pkg").native(), "/Users/tester/Set/Installer.pkg");
  EXPECT_EQ(packageLocation("../Set/Installer.pkg").native(), "/Users/tester/Set/Installer.pkg");
}

TEST(PackageLocation, APackageThatIsAFolderIsTaken) {
  makeFolder("/Users/tester/Set/Installer.pkg/Contents");
  fs::current_path("/Users/tester");
  EXPECT_EQ(packageLocation("Set/Installer.pkg").native(), "/Users/tester/Set/Installer.pkg");
}

TEST(PackageLocation, APackageThatIsALinkKeepsItsOwnPlace) {
  writeFile("/Users/tester/Store/Real.pkg", "");
  makeFolder("/Users/tester/Set");
  fs::create_symlink("/Users/tester/Store/Real.pkg", "/Users/tester/Set/Installer.pkg");
  fs::current_path("/Users/tester/Set");
  EXPECT_EQ(packageLocation("Installer.pkg").native(), "/Users/tester/Set/Installer.pkg");
}

TEST(PackageLocation, AMissingPackageIsRefused) {
  EXPECT_THAT(refusal("/Users/tester/Gone.pkg"), HasSubstr("no package at /Users/tester/Gone.pkg"));
}

TEST(PackageLocation, AnEmptyPathIsRefused) { EXPECT_THAT(refusal(""), HasSubstr("no package")); }

TEST(PackageLocation, ALineBreakInThePathIsRefused) {
  writeFile("/Users/tester/A\nB/Installer.pkg", "");
  EXPECT_THAT(refusal("/Users/tester/A\nB/Installer.pkg"), HasSubstr("line break"));
}

// A folder below the home whose path has exactly so many bytes.
std::string deepFolder(std::size_t length) {
  std::string path = "/Users/tester";
  while (length - path.size() > 200) {
    path += "/" + std::string(100, 'd');
  }
  path += "/" + std::string(length - path.size() - 1, 'e');
  return path;
}

TEST(PackageLocation, ThePageReadsAThousandAndTwentyTwoBytes) {
  const std::string longest = deepFolder(1022 - 4) + "/P.p";
  const std::string tooLong = deepFolder(1023 - 4) + "/P.p";
  ASSERT_EQ(longest.size(), 1022U);
  ASSERT_EQ(tooLong.size(), 1023U);
  writeFile(longest, "");
  writeFile(tooLong, "");
  EXPECT_EQ(packageLocation(longest).native(), longest);
  EXPECT_THAT(refusal(tooLong), HasSubstr("longer than 1022 bytes"));
}

TEST(PreInstallStep, WritesThePackageOnALineOfItsOwnAndMakesTheHomesFolders) {
  writeFile("/Users/tester/Installer.pkg", "");
  runPreInstallStep("/Users/tester/Installer.pkg", "");

  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/tester/Installer.pkg\n");
  EXPECT_EQ(treeOf("/tmp"), std::vector<std::string>{"TavInstallLoc"});
  EXPECT_EQ(treeOf("/Users/tester/Library"), (std::vector<std::string>{"Application Support/", "Caches/"}));
}

TEST(PreInstallStep, WritesTheEditionOnlyWhenItIsAskedTo) {
  writeFile("/Users/tester/Installer.pkg", "");
  runPreInstallStep("/Users/tester/Installer.pkg", "Full");
  EXPECT_EQ(readFile("/tmp/TavInstallType"), "Full\n");
}

TEST(PreInstallStep, ReplacesLongerContentsOfAnEarlierRun) {
  writeFile("/Users/tester/Installer.pkg", "");
  writeFile("/tmp/TavInstallLoc", std::string(500, 'x') + "\n");
  writeFile("/tmp/TavInstallType", "Something\n");
  runPreInstallStep("/Users/tester/Installer.pkg", "Lite");

  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/tester/Installer.pkg\n");
  EXPECT_EQ(readFile("/tmp/TavInstallType"), "Lite\n");
}

TEST(PreInstallStep, DoesNotFollowALinkThatSomebodyPutIntoTmp) {
  writeFile("/Users/tester/Installer.pkg", "");
  writeFile("/Users/tester/precious", "contents");
  fs::create_symlink("/Users/tester/precious", "/tmp/TavInstallLoc");
  fs::create_symlink("/Users/tester/precious", "/tmp/TavInstallType");

  runPreInstallStep("/Users/tester/Installer.pkg", "Lite");

  EXPECT_EQ(readFile("/Users/tester/precious"), "contents");
  EXPECT_FALSE(fs::is_symlink("/tmp/TavInstallLoc"));
  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/tester/Installer.pkg\n");
  EXPECT_EQ(readFile("/tmp/TavInstallType"), "Lite\n");
}

TEST(PreInstallStep, DoesNotWriteIntoAFileThatHasAnotherNameElsewhere) {
  writeFile("/Users/tester/Installer.pkg", "");
  writeFile("/tmp/precious", "contents");
  fs::create_hard_link("/tmp/precious", "/tmp/TavInstallLoc");

  runPreInstallStep("/Users/tester/Installer.pkg", "");

  EXPECT_EQ(readFile("/tmp/precious"), "contents");
  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/tester/Installer.pkg\n");
}

TEST(PreInstallStep, DoesNotWaitAtAPipeThatSomebodyPutIntoTmp) {
  writeFile("/Users/tester/Installer.pkg", "");
  ASSERT_EQ(mkfifo("/tmp/TavInstallLoc", 0666), 0);

  runPreInstallStep("/Users/tester/Installer.pkg", "");

  EXPECT_TRUE(fs::is_regular_file("/tmp/TavInstallLoc"));
}

TEST(PreInstallStep, TheFilesBelongToTheUser) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may give a file away";
  }
  writeFile("/Users/tester/Installer.pkg", "");
  writeFile("/tmp/TavInstallLoc", "/Users/other/Evil.pkg\n");
  ASSERT_EQ(chown("/tmp/TavInstallLoc", kOtherUser, kOtherUser), 0);
  ASSERT_EQ(chmod("/tmp/TavInstallLoc", 0666), 0);

  runPreInstallStep("/Users/tester/Installer.pkg", "");

  struct stat found {};
  ASSERT_EQ(stat("/tmp/TavInstallLoc", &found), 0);
  EXPECT_EQ(found.st_uid, geteuid());
  EXPECT_EQ(modeOf("/tmp/TavInstallLoc"), 0644U);
}

TEST(PreInstallStep, WhatCannotBeReplacedSinceItIsAnotherUsersIsRefused) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may become another user";
  }
  writeFile("/Users/tester/Installer.pkg", "");
  writeFile("/tmp/TavInstallLoc", "/Users/other/Evil.pkg\n");
  ASSERT_EQ(chmod("/tmp/TavInstallLoc", 0666), 0);
  ASSERT_EQ(chown(kHome, kOtherUser, kOtherUser), 0);

  EXPECT_EXIT(
      {
        if (setgid(kOtherUser) != 0 || setuid(kOtherUser) != 0) {
          std::exit(3);
        }
        try {
          runPreInstallStep("/Users/tester/Installer.pkg", "");
        } catch (const UsageError& error) {
          showError(error);
          std::exit(2);
        }
        std::exit(0);
      },
      testing::ExitedWithCode(2),
      "^tavinstall: cannot write /tmp/TavInstallLoc: another user's file is in its place\n$");
  EXPECT_EQ(readFile("/tmp/TavInstallLoc"), "/Users/other/Evil.pkg\n");
}

TEST(PreInstallStep, AHomeThatCannotHoldTheFoldersIsRefused) {
  writeFile("/Users/tester/Installer.pkg", "");
  writeFile("/Users/tester/Library", "a file");
  EXPECT_THROW(runPreInstallStep("/Users/tester/Installer.pkg", ""), UsageError);
  EXPECT_FALSE(exists("/tmp/TavInstallLoc"));
}

// Two homes whose data folders are links to one folder, as on a machine whose users share a library.
TEST(InstallLock, IsAlsoOnADataFolderThatTwoHomesShare) {
  const std::string support = "/Library/Application Support/Tavenhall";
  makeFolder("/Volumes/Data/TANVO");
  for (const char* home : {"/Users/tester", "/Users/other"}) {
    makeFolder(home + support);
    fs::create_symlink("/Volumes/Data/TANVO", home + support + "/TANVO");
  }
  std::optional<InstallLock> first(std::in_place, false);
  setenv("HOME", "/Users/other", 1);
  try {
    const InstallLock second(false);
    FAIL() << "two installs to one folder";
  } catch (const UsageError& error) {
    EXPECT_STREQ(
        error.what(),
        "another installation to /Users/other/Library/Application Support/Tavenhall/TANVO is running; start "
        "this one after it has ended");
  }
  first.reset();
  const InstallLock third(false);
}

TEST(InstallLock, AnybodyWhoCanReadTheDataFolderCanHoldIt) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may become another user";
  }
  const std::string folder = "/Users/tester/Library/Application Support/Tavenhall/TANVO";
  makeFolder(folder);
  std::array<int, 2> ready{};
  ASSERT_EQ(pipe2(ready.data(), O_CLOEXEC), 0);
  const pid_t other = fork();
  if (other == 0) {
    const bool isHeld = setuid(54321) == 0 && flock(open(folder.c_str(), O_RDONLY | O_CLOEXEC), LOCK_EX) == 0 &&
                        write(ready[1], "x", 1) == 1;
    _exit(isHeld ? pause() : 1);
  }
  close(ready[1]);
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  EXPECT_THROW(InstallLock(false), UsageError);
  kill(other, SIGKILL);
  waitpid(other, nullptr, 0);
  EXPECT_NO_THROW(InstallLock(false));
  close(ready[0]);
}

TEST(InstallLock, OneFolderMayBeBothDataFolders) {
  const std::string support = "/Users/tester/Library/Application Support/Tavenhall";
  makeFolder("/Volumes/Data");
  makeFolder(support);
  for (const char* name : {"/TANVO", "/DOVA"}) {
    fs::create_symlink("/Volumes/Data", support + name);
  }
  EXPECT_NO_THROW(InstallLock(false));
}

TEST(InstallTypePlace, NobodyElseCanPutAChoiceThereAndThePageFindsNone) {
  {
    const InstallTypePlace place;
    EXPECT_EQ(open(kInstallTypeFile, O_WRONLY | O_CREAT, 0644), -1);
    EXPECT_EQ(errno, ELOOP);
    BoundedText<kFirstLineSize> line;
    EXPECT_FALSE(readFirstLine(kInstallTypeFile, line));
    const InstallTypePlace again;
  }
  EXPECT_FALSE(fs::is_symlink(kInstallTypeFile));
}

TEST(InstallTypePlace, LeavesAFileAndAnotherLinkAlone) {
  writeFile(kInstallTypeFile, "Lite\n");
  { const InstallTypePlace place; }
  EXPECT_EQ(readFile(kInstallTypeFile), "Lite\n");
  fs::remove(kInstallTypeFile);
  fs::create_symlink("/Users/tester/elsewhere", kInstallTypeFile);
  { const InstallTypePlace place; }
  EXPECT_TRUE(fs::is_symlink(kInstallTypeFile));
}

}  // namespace
}  // namespace tavenhall::test
