#include "host/engine/stand_ins.h"
#include "tests/install/child_program.h"
#include "tests/support/files.h"
#include "tests/support/private_root.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

// The tools that stand in for missing ones, and the note that tells one of them which disc was copied.
namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* kDrutil = TAVINSTALL_SOURCE_DIR "/host/libexec/drutil";
constexpr const char* kSudo = TAVINSTALL_SOURCE_DIR "/host/libexec/sudo";

Outcome shell(const std::string& command) { return runThrough({"sh", "-c", command}); }

Outcome eject() { return runThrough({"sh", kDrutil, "-drive", "1", "eject"}); }

// ---- The note ----

TEST(EjectNote, CommandsReadTheFolderThatWasWrittenLast) {
  EjectNote note;
  note.write("/Volumes/A long name of a disc/TANVO");
  EXPECT_EQ(shell("cat /dev/fd/$TAVINSTALL_DISC_FD").output, "/Volumes/A long name of a disc/TANVO");
  note.write("/Volumes/B");
  EXPECT_EQ(shell("cat /dev/fd/$TAVINSTALL_DISC_FD").output, "/Volumes/B");
}

TEST(EjectNote, IsEmptyBeforeAnythingIsCopied) {
  const EjectNote note;
  EXPECT_EQ(shell("wc -c </dev/fd/$TAVINSTALL_DISC_FD").output, "0\n");
}

TEST(EjectNote, LeavesNoFileBehind) {
  EjectNote note;
  note.write("/Volumes/A");
  EXPECT_TRUE(treeOf("/tmp").empty());
}

// ---- drutil ----

class Drutil : public testing::Test {
 protected:
  EjectNote note;

  static bool isMounted(const char* disc) { return runThrough({"mountpoint", "-q", disc}).status == 0; }

  static void mountDisc(const char* disc) {
    makeFolder(disc);
    ASSERT_EQ(mount("disc", disc, "tmpfs", 0, "mode=755"), 0);
    makeFolder(std::string(disc) + "/Mac OSX/TANVO");
  }
};

TEST_F(Drutil, TakesOutTheDiscThatWasCopied) {
  mountDisc("/Volumes/Tavenhall Tessaphon A");
  mountDisc("/Volumes/Other");
  note.write("/Volumes/Tavenhall Tessaphon A/Mac OSX/TANVO");

  const Outcome outcome = eject();

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output + outcome.error, "");
  EXPECT_FALSE(isMounted("/Volumes/Tavenhall Tessaphon A"));
  EXPECT_TRUE(isMounted("/Volumes/Other"));
}

TEST_F(Drutil, APlainFolderStaysAndIsNoError) {
  writeFile("/Volumes/A/TANVO/a.db", "x");
  note.write("/Volumes/A/TANVO");

  const Outcome outcome = eject();

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output + outcome.error, "");
  EXPECT_TRUE(exists("/Volumes/A/TANVO/a.db"));
}

TEST_F(Drutil, ADiscThatIsGoneIsNoError) {
  note.write("/Volumes/Gone/TANVO");
  EXPECT_EQ(eject().status, 0);
}

TEST_F(Drutil, ReportsADiscInUseAndDoesNotEjectIt) {
  mountDisc("/Volumes/A");
  const int inUse = open("/Volumes/A/Mac OSX", O_RDONLY | O_CLOEXEC);
  note.write("/Volumes/A/Mac OSX/TANVO");

  const Outcome outcome = eject();

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("drutil: cannot take out /Volumes/A"));
  EXPECT_TRUE(isMounted("/Volumes/A"));
  close(inUse);
}

TEST_F(Drutil, BeforeAnythingIsCopiedThereIsNoDisc) {
  const Outcome outcome = eject();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("drutil: no disc was copied"));
}

TEST_F(Drutil, AFolderOutsideOfVolumesIsNoDisc) {
  mountDisc("/Library/Disc");
  for (const char* folder : {"/Library/Disc/TANVO", "/Volumes/", "/Volumes", "Volumes/A"}) {
    note.write(folder);
    EXPECT_EQ(eject().status, 1) << folder;
  }
  EXPECT_TRUE(isMounted("/Library/Disc"));
}

TEST(DrutilAlone, WithoutANoteThereIsNoDisc) {
  unsetenv("TAVINSTALL_DISC_FD");
  const Outcome outcome = eject();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("drutil: no disc was copied"));
}

TEST(DrutilAlone, SupportsOnlyEject) {
  const Outcome outcome = runThrough({"sh", kDrutil, "status"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("drutil -drive 1 eject"));
}

// ---- drutil on macOS, which has one of its own ----

class DrutilOfMacos : public testing::Test {
 protected:
  // Tools that say what they were asked for, and end with a status.
  static void SetUpTestSuite() {
    makeFolder("/tmp/bin");
    for (const auto& [tool, status] : {std::pair{"diskutil", "$DISKUTIL"}, std::pair{"drutil", "0"}}) {
      const std::string path = std::string("/tmp/bin/") + tool;
      writeFile(path, std::string("#!/bin/sh\necho ") + tool + " \"$@\" >>/tmp/asked\nexit " + status + "\n");
      fs::permissions(path, fs::perms::owner_all);
    }
    std::string script = readFile(TAVINSTALL_SOURCE_DIR "/host/libexec/macos/drutil");
    script.replace(script.find("/usr/bin/drutil"), 15, "/tmp/bin/drutil");
    writeFile("/tmp/script", script);
  }

  // What the tools were asked for.
  static std::string asked(const std::string& arguments, int statusOfDiskutil = 0) {
    fs::remove("/tmp/asked");
    EXPECT_EQ(shell("PATH=/tmp/bin:$PATH DISKUTIL=" + std::to_string(statusOfDiskutil) + " sh /tmp/script " +
                    arguments)
                  .status,
              0);
    return readFile("/tmp/asked");
  }
};

TEST_F(DrutilOfMacos, EjectsTheDiscThatWasCopiedWhateverItIs) {
  EjectNote note;
  note.write("/Volumes/Tavenhall Tessaphon A/Mac OSX/TANVO");
  EXPECT_EQ(asked("-drive 1 eject"), "diskutil eject /Volumes/Tavenhall Tessaphon A\n");
  // What diskutil cannot eject may still lie in the optical drive.
  EXPECT_EQ(asked("-drive 1 eject", 1),
            "diskutil eject /Volumes/Tavenhall Tessaphon A\ndrutil -drive 1 eject\n");
}

TEST_F(DrutilOfMacos, LeavesEverythingElseToTheSystem) {
  EXPECT_EQ(asked("status"), "drutil status\n");
  EjectNote note;
  EXPECT_EQ(asked("-drive 1 eject"), "drutil -drive 1 eject\n");
  note.write("/Users/tester/Set/TANVO");
  EXPECT_EQ(asked("-drive 1 eject"), "drutil -drive 1 eject\n");
}

// ---- PATH ----

TEST(StandIns, ComeAfterTheSystemsToolsButForThoseThatComeFirst) {
  setenv("PATH", "/usr/bin:/bin", 1);
  makeFolder("/tmp/standins");
  addStandInsToPath("/tmp/standins");
  EXPECT_STREQ(std::getenv("PATH"), "/usr/bin:/bin:/tmp/standins");

  setenv("PATH", "/usr/bin:/bin", 1);
  makeFolder("/tmp/standins/first");
  addStandInsToPath("/tmp/standins");
  EXPECT_STREQ(std::getenv("PATH"), "/tmp/standins/first:/usr/bin:/bin:/tmp/standins");
}

// ---- sudo ----

TEST(Sudo, RunsTheCommandWithItsArgumentsAsTheyAre) {
  const Outcome outcome = runThrough({"sh", kSudo, "printf", "<%s>", "a b", "", "*"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "<a b><><*>");
}

TEST(Sudo, GivesTheCommandsStatus) { EXPECT_EQ(runThrough({"sh", kSudo, "sh", "-c", "exit 7"}).status, 7); }

TEST(Sudo, WhoIsNotRootIsRefused) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "there is nobody else in this private root";
  }
  fs::copy(kSudo, "/tmp/sudo");
  const Outcome outcome = runThrough({"setpriv", "--reuid=65534", "--clear-groups", "sh", "/tmp/sudo", "true"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("sudo: not installed here, and this is not root"));
}

}  // namespace
}  // namespace tavenhall::test
