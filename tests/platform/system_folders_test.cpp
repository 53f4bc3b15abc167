#include <gtest/gtest.h>

#include <stdlib.h>
#include <string>
#include <sys/mount.h>

#include "platform/system.h"
#include "tests/support/files.h"

namespace tavenhall::test {

namespace {

std::string searchPath(SearchPath which) {
  std::string path = "untouched";
  return firstUserSearchPath(which, path) ? path : "none, and " + path;
}

// The password database of this test alone.
void setPasswordDatabase(const std::string& text) {
  writeFile("/tmp/passwd", text);
  ASSERT_EQ(mount("/tmp/passwd", "/etc/passwd", nullptr, MS_BIND, nullptr), 0);
  if (exists("/etc/nsswitch.conf")) {
    writeFile("/tmp/nsswitch.conf", "passwd: files\n");
    ASSERT_EQ(mount("/tmp/nsswitch.conf", "/etc/nsswitch.conf", nullptr, MS_BIND, nullptr), 0);
  }
}

}  // namespace

TEST(SearchPaths, LieInTheHomeFolder) {
  setenv("HOME", "/Users/somebody", 1);
  EXPECT_EQ(searchPath(SearchPath::caches), "/Users/somebody/Library/Caches");
  EXPECT_EQ(searchPath(SearchPath::applicationSupport), "/Users/somebody/Library/Application Support");
}

TEST(SearchPaths, NeedNotExist) {
  setenv("HOME", "/Users/nobody at all", 1);
  EXPECT_EQ(searchPath(SearchPath::caches), "/Users/nobody at all/Library/Caches");
  EXPECT_FALSE(exists("/Users/nobody at all"));
}

TEST(SearchPaths, ComeFromThePasswordDatabaseWithoutHome) {
  setPasswordDatabase("root:x:0:0:root:/Users/of the database:/bin/sh\n");
  unsetenv("HOME");
  EXPECT_EQ(searchPath(SearchPath::caches), "/Users/of the database/Library/Caches");
  EXPECT_EQ(searchPath(SearchPath::applicationSupport), "/Users/of the database/Library/Application Support");
}

TEST(SearchPaths, ComeFromThePasswordDatabaseWithAnEmptyHome) {
  setPasswordDatabase("root:x:0:0:root:/Users/of the database:/bin/sh\n");
  setenv("HOME", "", 1);
  EXPECT_EQ(searchPath(SearchPath::caches), "/Users/of the database/Library/Caches");
}

TEST(SearchPaths, AreEmptyForAnUnknownUser) {
  setPasswordDatabase("daemon:x:1:1:daemon:/usr/sbin:/bin/sh\n");
  unsetenv("HOME");
  EXPECT_EQ(searchPath(SearchPath::caches), "none, and untouched");
  EXPECT_EQ(searchPath(SearchPath::applicationSupport), "none, and untouched");
}

TEST(SearchPaths, AreNoneForAUserWithoutAHome) {
  setPasswordDatabase("root:x:0:0:root::/bin/sh\n");
  unsetenv("HOME");
  EXPECT_EQ(searchPath(SearchPath::caches), "none, and untouched");
}

TEST(Aliases, AreUnknownHere) {
  writeFile("/tmp/file", "text");
  std::string target = "untouched";
  EXPECT_FALSE(resolveAlias("/tmp/file", target));
  EXPECT_FALSE(resolveAlias("/tmp", target));
  EXPECT_FALSE(resolveAlias("/tmp/not there", target));
  EXPECT_EQ(target, "untouched");
}

TEST(FileSystemTest, SucceedsForFilesAndFolders) {
  writeFile("/tmp/file", "text");
  EXPECT_TRUE(statFileSystem("/tmp"));
  EXPECT_TRUE(statFileSystem("/tmp/file"));
}

TEST(FileSystemTest, FailsWhereNothingIs) {
  EXPECT_FALSE(statFileSystem("/tmp/not there"));
  EXPECT_FALSE(statFileSystem(""));
}

}  // namespace tavenhall::test
