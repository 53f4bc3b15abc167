#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "platform/system.h"
#include "tests/support/files.h"

namespace tavenhall::test {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

void expectNoError(const RemovalError& error) {
  EXPECT_FALSE(error.failed);
  EXPECT_EQ(error.localizedDescription, "");
  EXPECT_EQ(error.localizedFailureReason, "");
}

void expectError(const RemovalError& error, const std::string& description) {
  EXPECT_TRUE(error.failed);
  EXPECT_EQ(error.localizedDescription, description);
  EXPECT_EQ(error.localizedFailureReason, "");
}

}  // namespace

// ---- Removal ----

TEST(RemoveItem, RemovesAFile) {
  writeFile("/tmp/place/file", "text");
  expectNoError(removeItem("/tmp/place/file"));
  EXPECT_THAT(treeOf("/tmp/place"), ElementsAre());
}

TEST(RemoveItem, RemovesAWholeTree) {
  writeFile("/tmp/place/A.component/Contents/MacOS/A", "text");
  writeFile("/tmp/place/A.component/Contents/.hidden", "text");
  makeFolder("/tmp/place/A.component/Empty");
  writeFile("/tmp/place/B.component/Contents/MacOS/B", "text");
  expectNoError(removeItem("/tmp/place/A.component"));
  EXPECT_THAT(treeOf("/tmp/place"), ElementsAre("B.component/", "B.component/Contents/",
                                                "B.component/Contents/MacOS/", "B.component/Contents/MacOS/B"));
}

TEST(RemoveItem, RemovesAReadOnlyTree) {
  writeFile("/tmp/place/A.vst/file", "text");
  ASSERT_EQ(chmod("/tmp/place/A.vst/file", 0), 0);
  ASSERT_EQ(chmod("/tmp/place/A.vst", 0555), 0);
  expectNoError(removeItem("/tmp/place/A.vst"));
  EXPECT_FALSE(exists("/tmp/place/A.vst"));
}

TEST(RemoveItem, RemovesALinkAndNotItsTarget) {
  writeFile("/tmp/place/target/file", "text");
  fs::create_symlink("target", "/tmp/place/link");
  expectNoError(removeItem("/tmp/place/link"));
  EXPECT_THAT(treeOf("/tmp/place"), ElementsAre("target/", "target/file"));
}

TEST(RemoveItem, RemovesALinkToNothing) {
  makeFolder("/tmp/place");
  fs::create_symlink("not there", "/tmp/place/link");
  expectNoError(removeItem("/tmp/place/link"));
  EXPECT_THAT(treeOf("/tmp/place"), ElementsAre());
}

TEST(RemoveItem, FollowsNoLinkInsideATree) {
  writeFile("/tmp/place/target/file", "text");
  makeFolder("/tmp/place/A.vst");
  fs::create_symlink("/tmp/place/target", "/tmp/place/A.vst/link");
  expectNoError(removeItem("/tmp/place/A.vst"));
  EXPECT_THAT(treeOf("/tmp/place"), ElementsAre("target/", "target/file"));
}

TEST(RemoveItem, FailsWhereNothingIs) {
  expectError(removeItem("/tmp/not there"), "No such file or directory");
  expectError(removeItem("/tmp/not there/deeper"), "No such file or directory");
}

TEST(RemoveItem, FailsOnAReadOnlyVolume) {
  makeFolder("/Volumes/Disc");
  ASSERT_EQ(mount("tmpfs", "/Volumes/Disc", "tmpfs", 0, nullptr), 0) << std::strerror(errno);
  writeFile("/Volumes/Disc/file", "text");
  ASSERT_EQ(mount(nullptr, "/Volumes/Disc", nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0)
      << std::strerror(errno);
  expectError(removeItem("/Volumes/Disc/file"), "Read-only file system");
  EXPECT_TRUE(exists("/Volumes/Disc/file"));
}

TEST(RemoveItem, FailsOnAnItemThatIsInUse) {
  makeFolder("/tmp/place/A.vst/mounted");
  ASSERT_EQ(mount("tmpfs", "/tmp/place/A.vst/mounted", "tmpfs", 0, nullptr), 0) << std::strerror(errno);
  expectError(removeItem("/tmp/place/A.vst"), "Device or resource busy");
  EXPECT_TRUE(exists("/tmp/place/A.vst/mounted"));
}

// ---- Permissions ----

TEST(SetPosixPermissions, SetsThoseOfAFile) {
  writeFile("/tmp/file", "text");
  ASSERT_EQ(chmod("/tmp/file", 0640), 0);
  setPosixPermissions("/tmp/file", 0777);
  EXPECT_EQ(modeOf("/tmp/file"), 0777U);
}

TEST(SetPosixPermissions, AreNotCutByTheMask) {
  writeFile("/tmp/file", "text");
  umask(0077);
  setPosixPermissions("/tmp/file", 0777);
  EXPECT_EQ(modeOf("/tmp/file"), 0777U);
}

TEST(SetPosixPermissions, LeaveWhatIsInAFolderAsItIs) {
  writeFile("/tmp/folder/file", "text");
  ASSERT_EQ(chmod("/tmp/folder", 0700), 0);
  ASSERT_EQ(chmod("/tmp/folder/file", 0600), 0);
  setPosixPermissions("/tmp/folder", 0777);
  EXPECT_EQ(modeOf("/tmp/folder"), 0777U);
  EXPECT_EQ(modeOf("/tmp/folder/file"), 0600U);
}

TEST(SetPosixPermissions, GoThroughALink) {
  writeFile("/tmp/file", "text");
  ASSERT_EQ(chmod("/tmp/file", 0600), 0);
  fs::create_symlink("file", "/tmp/link");
  setPosixPermissions("/tmp/link", 0777);
  EXPECT_EQ(modeOf("/tmp/file"), 0777U);
}

TEST(SetPosixPermissions, MakeNothingWhereNothingIs) {
  setPosixPermissions("/tmp/not there", 0777);
  EXPECT_FALSE(exists("/tmp/not there"));
}

// ---- Commands ----

TEST(RunShellCommand, GivesNothingForSuccess) { EXPECT_EQ(runShellCommand("true"), 0); }

TEST(RunShellCommand, GivesTheStatusAsSystemDoes) {
  EXPECT_EQ(runShellCommand("exit 3"), 768);
  EXPECT_EQ(runShellCommand("exec 2>/dev/null; /not/there"), 32512);
}

TEST(RunShellCommand, GivesTheSignalThatEndedTheShell) { EXPECT_EQ(runShellCommand("kill -9 $$"), 9); }

TEST(RunShellCommand, WaitsForTheCommand) {
  EXPECT_EQ(runShellCommand("sleep 0.3; echo \"two  blanks\" > /tmp/said"), 0);
  EXPECT_EQ(readFile("/tmp/said"), "two  blanks\n");
}

// ---- Texts of errors ----

TEST(ErrorText, DescribesTheError) {
  std::array<char, 128> text{};
  errorText(ENOENT, text.data(), text.size());
  EXPECT_STREQ(text.data(), "No such file or directory");
  errorText(ENOSPC, text.data(), text.size());
  EXPECT_STREQ(text.data(), "No space left on device");
}

TEST(ErrorText, HasATextForAnUnknownError) {
  std::array<char, 128> text{};
  errorText(9999, text.data(), text.size());
  EXPECT_STREQ(text.data(), "Unknown error 9999");
}

TEST(ErrorText, IsCutToItsRoomAndTerminated) {
  std::string text(40, '#');
  errorText(ENOENT, text.data(), 8);
  EXPECT_EQ(text, std::string("No such\0", 8) + std::string(32, '#'));
}

TEST(ErrorText, FillsItsRoomExactly) {
  std::string text(40, '#');
  errorText(ENOENT, text.data(), 26);
  EXPECT_EQ(text, std::string("No such file or directory\0", 26) + std::string(14, '#'));
}

TEST(ErrorText, IsEmptyInARoomOfOne) {
  std::string text(4, '#');
  errorText(ENOENT, text.data(), 1);
  EXPECT_EQ(text, std::string("\0###", 4));
}

}  // namespace tavenhall::test
