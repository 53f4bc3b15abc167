#include "host/engine/other_users.h"

#include "tests/install/child_program.h"
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

TEST_F(OtherUsers, CanAddToAFolderWithTheStickyBit) {
  allow("/Users/tester/Downloads", 01777);
  EXPECT_EQ(changeableByOthers(kPackagePath),
            "other users can change /Users/tester/Downloads and thereby what is installed");
}

TEST_F(OtherUsers, CanReplaceALinkInAFolderThatTheyCanWrite) {
  makeFolder("/Volumes/Shared");
  ASSERT_EQ(symlink("/Users/tester/Downloads/Set", "/Volumes/Shared/Set"), 0);
  ASSERT_EQ(symlink("../../Volumes/Shared", "/Users/tester/Sets"), 0);
  for (const char* path : {"/Volumes/Shared/Set/Installer.pkg", "/Users/tester/Sets/Set/Installer.pkg"}) {
    EXPECT_EQ(changeableByOthers(path), "") << path;
    allow("/Volumes/Shared", 01777);
    EXPECT_EQ(changeableByOthers(path), "other users can change /Volumes/Shared and thereby what is installed")
        << path;
    allow("/Volumes/Shared", 0755);
  }
}

TEST_F(OtherUsers, CanReplaceAnAttributesFileThatIsALinkIntoAFolderOfTheirs) {
  makeFolder("/Volumes/Shared");
  allow("/Volumes/Shared", 0777);
  writeFile("/Volumes/Shared/attributes", "Mode = DataUpdater\n");
  ASSERT_EQ(symlink("/Volumes/Shared/attributes", "/Users/tester/Downloads/Set/.InstallationAttributes.dat"),
            0);
  EXPECT_EQ(changeableByOthers(kPackagePath),
            "other users can change /Volumes/Shared and thereby what is installed");
}

TEST_F(OtherUsers, ALinkToItselfEndsTheWay) {
  ASSERT_EQ(symlink("loop", "/Users/tester/loop"), 0);
  EXPECT_EQ(sourceChangeableByOthers("/Users/tester/loop/Data", Depth::folderAlone), "");
}

TEST_F(OtherUsers, CanWriteByAnAccessList) {
  const std::string folder = "/Users/tester/Downloads/Set";
  const auto setList = [&folder](const std::string& entries) {
    EXPECT_EQ(runThrough({"setfacl", "-b", "-m", entries, folder}).status, 0) << entries;
  };
  setList("u:54321:rwx");
  EXPECT_EQ(changeableByOthers(kPackagePath),
            "other users can change " + folder + " and thereby what is installed");
  setList("g:54321:rwx");
  EXPECT_EQ(changeableByOthers(kPackagePath),
            "other users can change " + folder + " and thereby what is installed");
  for (const char* harmless : {"u:54321:rx", "u:0:rwx", "u:54321:rwx,m::rx"}) {
    setList(harmless);
    EXPECT_EQ(changeableByOthers(kPackagePath), "") << harmless;
  }
}

TEST_F(OtherUsers, OwnAnAttributesFileThatTheyWrote) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may give a file away";
  }
  const std::string file = "/Users/tester/Downloads/.InstallationAttributes.dat";
  writeFile(file, "Mode = DataUpdater\n");
  ASSERT_EQ(chown(file.c_str(), 54321, 54321), 0);
  EXPECT_EQ(changeableByOthers(kPackagePath), file + " belongs to another user, who decides what is installed");
}

TEST_F(OtherUsers, AreTrustedWithAFolderOfTheirOwn) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may give a folder away";
  }
  ASSERT_EQ(chown("/Users/tester/Downloads/Set", 54321, 54321), 0);
  EXPECT_EQ(changeableByOthers(kPackagePath), "");
}

TEST_F(OtherUsers, CanChangeASourceBesideThePackage) {
  const std::string set = "/Users/tester/Downloads/Set/";
  writeFile(set + "Applications/Tool.app/program", "");
  EXPECT_EQ(sourceChangeableByOthers(set + "Applications", Depth::withContents), "");
  EXPECT_EQ(sourceChangeableByOthers(set + "None", Depth::withContents), "");
  allow(set + "Applications/Tool.app", 0777);
  EXPECT_EQ(sourceChangeableByOthers(set + "Applications", Depth::folderAlone), "");
  EXPECT_EQ(sourceChangeableByOthers(set + "Applications", Depth::withContents),
            "other users can change " + set + "Applications/Tool.app and thereby what is installed");
  allow(set + "Applications", 01777);
  EXPECT_EQ(sourceChangeableByOthers(set + "Applications", Depth::folderAlone),
            "other users can change " + set + "Applications and thereby what is installed");
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
