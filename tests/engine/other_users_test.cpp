#include "host/engine/other_users.h"

#include "tests/support/files.h"
#include "tests/support/private_root.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

// What other users of the computer could do to an install.
namespace tavenhall::test {
namespace {

constexpr const char* kPackagePath = "/Users/tester/Downloads/Set/Installer.pkg";

class OtherUsers : public testing::Test {
 protected:
  OtherUsers() {
    umask(022);
    writeFile(kPackagePath, "");
  }

  static void allow(const std::string& path, mode_t mode) { ASSERT_EQ(chmod(path.c_str(), mode), 0) << path; }
};

TEST_F(OtherUsers, CannotChangeAFolderOfTheUsersOwn) { EXPECT_EQ(changeableByOthers(kPackagePath), ""); }

TEST_F(OtherUsers, CanChangeAPackageWhoseFolderEverybodyCanWrite) {
  allow("/Users/tester/Downloads/Set", 0777);
  EXPECT_EQ(changeableByOthers(kPackagePath),
            "other users can change /Users/tester/Downloads/Set and thereby what is installed");
}

TEST_F(OtherUsers, CanChangeAPackageBelowAFolderThatEverybodyCanWrite) {
  allow("/Users/tester", 0757);
  EXPECT_EQ(changeableByOthers(kPackagePath),
            "other users can change /Users/tester and thereby what is installed");
}

TEST_F(OtherUsers, CanChangeAnAttributesFileThatEverybodyCanWrite) {
  writeFile("/Users/tester/Downloads/.InstallationAttributes.dat", "Mode = DataUpdater\n");
  allow("/Users/tester/Downloads/.InstallationAttributes.dat", 0666);
  EXPECT_EQ(changeableByOthers(kPackagePath),
            "other users can change /Users/tester/Downloads/.InstallationAttributes.dat and thereby what is "
            "installed");
}

TEST_F(OtherUsers, CannotTakeAnotherOnesFilesFromAFolderLikeTmp) {
  allow("/Users/tester/Downloads", 01777);
  EXPECT_EQ(changeableByOthers(kPackagePath), "");
}

TEST_F(OtherUsers, AFolderIsLookedAtWhereItReallyLies) {
  makeFolder("/Volumes/Shared");
  allow("/Volumes/Shared", 0777);
  writeFile("/Volumes/Shared/Set/Installer.pkg", "");
  ASSERT_EQ(symlink("/Volumes/Shared/Set", "/Users/tester/Set"), 0);
  EXPECT_EQ(changeableByOthers("/Users/tester/Set/Installer.pkg"),
            "other users can change /Volumes/Shared and thereby what is installed");
}

TEST_F(OtherUsers, CannotChangeADiscThatIsReadOnly) {
  makeFolder("/Volumes/Disc");
  ASSERT_EQ(mount("tmpfs", "/Volumes/Disc", "tmpfs", 0, "mode=777"), 0);
  writeFile("/Volumes/Disc/Installer.pkg", "");
  EXPECT_NE(changeableByOthers("/Volumes/Disc/Installer.pkg"), "");

  ASSERT_EQ(mount(nullptr, "/Volumes/Disc", nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
  EXPECT_EQ(changeableByOthers("/Volumes/Disc/Installer.pkg"), "");
}

TEST_F(OtherUsers, AGroupCountsUnlessItIsItsOwnersAlone) {
  allow("/Users/tester/Downloads/Set", 0775);
  EXPECT_EQ(changeableByOthers(kPackagePath), "");  // root's own group

  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may give a folder away";
  }
  ASSERT_EQ(chown("/Users/tester/Downloads/Set", 0, 54321), 0);
  EXPECT_EQ(changeableByOthers(kPackagePath),
            "other users can change /Users/tester/Downloads/Set and thereby what is installed");
}

TEST_F(OtherUsers, AFileInTmpIsTheirsUnlessItIsTheUsersOrTheAdministrators) {
  EXPECT_EQ(writtenByOthers("/tmp/TavInstallLoc"), "");
  writeFile("/tmp/TavInstallLoc", "/x\n");
  EXPECT_EQ(writtenByOthers("/tmp/TavInstallLoc"), "");

  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may give a file away";
  }
  ASSERT_EQ(chown("/tmp/TavInstallLoc", 54321, 54321), 0);
  EXPECT_EQ(writtenByOthers("/tmp/TavInstallLoc"), "/tmp/TavInstallLoc was written by another user");
}

}  // namespace
}  // namespace tavenhall::test
