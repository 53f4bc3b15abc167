#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"
#include "tests/support/private_root.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/mount.h>

// Discs that are what discs are: read-only file systems of their own, mounted in /Volumes.
namespace tavenhall::test {
namespace {

// Makes an image of the entries; the image is the only thing that is left of them.
void makeImage(const std::string& image, const std::vector<Entry>& entries) {
  const std::string folder = image + ".folder";
  layTree(folder, entries);
  const Outcome outcome = runThrough({"mksquashfs", folder, image, "-quiet", "-no-progress"});
  ASSERT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  std::filesystem::remove_all(folder);
}

void putIn(const std::string& image, const std::string& disc) {
  std::filesystem::create_directory(disc);
  const Outcome outcome = runThrough({"mount", "-t", "squashfs", "-o", "loop,ro", image, disc});
  ASSERT_EQ(outcome.status, 0) << outcome.output << outcome.error;
}

bool isMounted(const std::string& disc) { return runThrough({"mountpoint", "-q", disc}).status == 0; }

TEST(DiscImages, EachDiscIsInstalledFromItsFileSystemAndTakenOutAfterwards) {
  if (!isRealRoot()) {
    GTEST_SKIP() << "only the machine's own root may mount an image";
  }
  layPackage("Mode = InstallFromVolumes\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
  makeImage("/tmp/A.squashfs", {file("TANVO/Tessaphon/a.db", 30000), file("TANVO/Settings/b.db", 100)});
  makeImage("/tmp/B.squashfs", {file("Mac OSX/TANVO/Voices/c.db", 20480)});
  putIn("/tmp/A.squashfs", kDiscA);

  JsonInstaller installer({"--package", kPackage});
  installer.send({kEnter, kWait, kForward});
  installer.await("alert");
  EXPECT_FALSE(isMounted(kDiscA));
  putIn("/tmp/B.squashfs", kDiscB);
  installer.send(kFirstButton);

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_FALSE(isMounted(kDiscB));
  expectCase("disc_images", installer);
}

TEST(DiscImages, AMountedDiscIsTakenOutByTheStandInWhereTheSystemHasNoSuchTool) {
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n");
  std::filesystem::create_directory(kDiscA);
  ASSERT_EQ(mount("tmpfs", kDiscA, "tmpfs", 0, "mode=755"), 0);
  layTree(kDiscA, {file("TANVO/a.db", 1024)});

  JsonInstaller installer({"--package", kPackage}, {{"PATH", "/usr/bin:/bin"}});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(installer.program().standardError(), "");
  EXPECT_FALSE(isMounted(kDiscA));
  EXPECT_EQ(treeOf(kTanvo), std::vector<std::string>{"a.db"});
}

TEST(DiscImages, ADiscThatIsAPlainFolderStaysWhereItIs) {
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n");
  layTree(kDiscA, {file("TANVO/a.db", 1024)});

  JsonInstaller installer({"--package", kPackage}, {{"PATH", "/usr/bin:/bin"}});
  installer.send({kEnter, kWait, kForward});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(installer.program().standardError(), "");
  EXPECT_EQ(treeOf(kDiscA), (std::vector<std::string>{"TANVO/", "TANVO/a.db"}));
}

TEST(DiscImages, ARealEjectToolGoesBeforeTheStandIn) {
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n");
  layTree(kDiscA, {file("TANVO/a.db", 1024)});
  writeFile("/tmp/bin/drutil", "#!/bin/sh\necho \"$@\" >/tmp/drutil-was-here\n");
  std::filesystem::permissions("/tmp/bin/drutil", std::filesystem::perms::owner_all);

  JsonInstaller installer({"--package", kPackage}, {{"PATH", "/tmp/bin:/usr/bin:/bin"}});
  installer.send({kEnter, kWait});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(readFile("/tmp/drutil-was-here"), "-drive 1 eject\n");
}

}  // namespace
}  // namespace tavenhall::test
