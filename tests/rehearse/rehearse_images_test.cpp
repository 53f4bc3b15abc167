#include "tests/rehearse/rehearsals.h"

#include <csignal>
#include <filesystem>
#include <sys/stat.h>

// Discs that are images, served by the real tools.
namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Two discs whose names and sizes are those of real ones: blanks, other languages, more than one read.
void makeImageSet() {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 6\n" + kTexts);
  writeFile(inSet("discs/1 Tavenhall Lumaweave/DOVA/Factory/Grüße aus dem Tal.db"), someBytes(3'000'001));
  writeFile(
      inSet("discs/2 Tavenhall Lumaweave/DOVA/Voices/a name that is longer than sixty-four letters are.db"),
      someBytes(3'000'000, 2));
  turnDiscsIntoImages();
}

void expectInstalled(const Outcome& outcome) {
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  EXPECT_THAT(fatesReported(),
              ElementsAre("Factory/Grüße aus dem Tal.db same", "Factory/one.db same", "Factory/two.db same",
                          "Voices/a name that is longer than sixty-four letters are.db same"));
  EXPECT_THAT(outcome.output, HasSubstr("  size         6.0 MB announced, 6.0 MB real\n"));
  expectNothingLeft();
}

TEST(RehearseImages, SquashfsAndIsoAreInstalledAsDiscs) {
  makeImageSet();
  expectInstalled(rehearse({"--product", "Lumaweave"}));
  EXPECT_THAT(treeOf("/Users/tester"),
              ElementsAre("Installer/", "Installer/.InstallationAttributes.dat", "Installer/Installer.pkg",
                          "Installer/discs/", "Installer/discs/1 Tavenhall Lumaweave.squashfs",
                          "Installer/discs/2 Tavenhall Lumaweave.iso"))
      << "the tools leave nothing in the home";
}

TEST(RehearseImages, AnOrdinaryUserNeedsNoHelp) {
  if (!ordinaryUserHasFuse()) {
    GTEST_SKIP() << "an ordinary user may not open /dev/fuse here";
  }
  makeImageSet();
  expectInstalled(runThrough(asOrdinaryUser(rehearseCommand({"--ui", "quiet", "--product", "Lumaweave"}))));
}

TEST(RehearseImages, ADiscThatIsLeftOutOfALiteInstallIsStillCounted) {
  makeDiscSet(
      "Mode = InstallFromVolumes\nNumberOfVolumes = 2\nLiteVsFullPrompt = Yes\nTotalSizeMillionsBytes = 6\n"
      "Component1SizeMillionsBytes = 3\n" +
      kTexts);
  writeFile(inSet("discs/1 Tavenhall Lumaweave/DOVA/a.db"), someBytes(3'000'000));
  writeFile(inSet("discs/2 Tavenhall Lumaweave/DOVA/b.db"), someBytes(3'000'000));
  turnDiscsIntoImages();
  const Outcome outcome = rehearse({"--product", "Lumaweave", "--install-type", "Lite"});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(outcome.output, HasSubstr("  size         6.0 MB announced, 6.0 MB real\n"));
  EXPECT_THAT(outcome.output, HasSubstr("  component    3.0 MB announced, 3.0 MB real\n"));
  EXPECT_THAT(outcome.output, HasSubstr("  left out     2 files of the Full edition\n"));
}

TEST(ManifestOfImages, IsThatOfTheirFolders) {
  makeDiscSet();
  ASSERT_EQ(runThrough({kTavinstall, "manifest", kSetFolder, "--product", "Lumaweave"}).status, 0);
  const std::string ofFolders = readFile(inSet("Manifest.sha256"));
  std::filesystem::remove(inSet("Manifest.sha256"));
  std::filesystem::remove(inSet("discs/1 Tavenhall Lumaweave/Manifest.sha256"));
  std::filesystem::remove(inSet("discs/2 Tavenhall Lumaweave/Manifest.sha256"));
  turnDiscsIntoImages();
  const std::string image = readFile(inSet("discs/2 Tavenhall Lumaweave.iso"));

  const Outcome outcome = runThrough({kTavinstall, "manifest", kSetFolder, "--product", "Lumaweave"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output,
            "2 files, 6 bytes.\nWritten: /Users/tester/Installer/Manifest.sha256\n"
            "2 discs are images, into which nothing was written.\n");
  EXPECT_EQ(readFile(inSet("Manifest.sha256")), ofFolders);
  EXPECT_EQ(readFile(inSet("discs/2 Tavenhall Lumaweave.iso")), image);
  expectNothingLeft();
}

TEST(ManifestOfImages, IsNotWrittenWhenItsCommandIsStopped) {
  makeDiscSet();
  const std::string large = inSet("discs/1 Tavenhall Lumaweave/DOVA/large.db");
  writeFile(large, "");
  std::filesystem::resize_file(large, 3'000'000'000);
  turnDiscsIntoImages();
  ChildProgram program({kTavinstall, "manifest", kSetFolder, "--product", "Lumaweave"});
  ASSERT_TRUE(comesTrue([] { return temporaryMounts().size() == 2; }));
  const std::vector<pid_t> servers = descendantsOf(program.pid());
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_EQ(program.standardError(), "tavinstall: stopped; no manifest was written\n");
  EXPECT_FALSE(exists(inSet("Manifest.sha256")));
  expectNothingLeft(servers);
}

TEST(RehearseImages, AnInvalidImageIsBadUsage) {
  makeDiscSet();
  std::filesystem::remove_all(inSet("discs/2 Tavenhall Lumaweave"));
  writeFile(inSet("discs/2 Tavenhall Lumaweave.squashfs"), "this is no image");
  const Outcome outcome = rehearse({"--product", "Lumaweave", "--keep", "/Users/tester/deep/kept"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_THAT(
      outcome.error,
      testing::StartsWith("tavinstall: cannot open the disc image /Users/tester/Installer/discs/2 Tavenhall "
                          "Lumaweave.squashfs: "));
  EXPECT_EQ(std::count(outcome.error.begin(), outcome.error.end(), '\n'), 1) << outcome.error;
  EXPECT_FALSE(exists("/Users/tester/deep")) << "nothing was installed, so nothing is kept";
  expectNothingLeft();
}

TEST(RehearseImages, AToolThatIsMissingIsNamed) {
  makeDiscSet();
  turnDiscsIntoImages();
  makeFolder("/tmp/bin");
  for (const char* tool : {"setpriv", "bwrap", "fusermount3", "fusermount"}) {
    std::filesystem::create_symlink(std::string("/usr/bin/") + tool, std::string("/tmp/bin/") + tool);
  }
  const Outcome outcome = runThrough(rehearseCommand({"--product", "Lumaweave"}), {{"PATH", "/tmp/bin"}});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: cannot open the disc image /Users/tester/Installer/discs/1 Tavenhall "
            "Lumaweave.squashfs: squashfuse is missing; install the package squashfuse\n");
}

}  // namespace
}  // namespace tavenhall::test
