#include "host/base/exit_status.h"
#include "host/set/attributes_edit.h"
#include "host/set/disc_medium.h"
#include "tests/install/child_program.h"
#include "tests/support/files.h"
#include "tests/support/waiting.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

// `tavinstall split`: a library on the discs of a set.
namespace tavenhall::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

const std::string kSplitSet = "/tmp/split set";
const std::string kLibrary = "/tmp/Library";

Outcome split(std::vector<std::string> options) {
  options.insert(options.begin(), {kTavinstall, "split", kLibrary, kSplitSet, "--disc-size", "12m"});
  return runThrough(options);
}

void makeEmptySet(const std::vector<std::string>& options = {}) {
  std::vector<std::string> command{kTavinstall, "new", kSplitSet, "--product", "Tessaphon", "--mode", "discs"};
  command.insert(command.end(), options.begin(), options.end());
  ASSERT_EQ(runThrough(command).status, 0);
}

void makeLibrary() {
  writeFile(kLibrary + "/Pianos/Grand.db", someBytes(6'000'000));
  writeFile(kLibrary + "/Pianos/Upright.db", someBytes(3'000'000, 2));
  writeFile(kLibrary + "/Strings/Grüße.db", someBytes(7'000'000, 3));
  makeFolder(kLibrary + "/Strings/Soon");
}

const std::string kTwoDiscs =
    "2 discs (disc of 12.0 MB), 16.0 MB in TANVO/Library:\n  1 Tavenhall Tessaphon A\n    2 files, 9.0 MB; 78% "
    "of "
    "the room is used: Pianos\n  2 Tessaphon B\n    1 file, 7.0 MB; 61% of the room is used: Strings\n";

const std::string kComplete =
    "The set is complete: the page would install 3 files, 16.0 MB. Next: tavinstall check /tmp/split set\n";

TEST(SplitCommand, PutsLinksOnTheDiscsAndTheirSizesIntoTheAttributes) {
  makeEmptySet();
  makeLibrary();
  const std::string before = readFile(kSplitSet + "/.InstallationAttributes.dat");

  const Outcome outcome = split({});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output, kTwoDiscs + kComplete);
  EXPECT_THAT(
      treeOf(kSplitSet + "/discs"),
      testing::ElementsAre(
          "1 Tavenhall Tessaphon A/", "1 Tavenhall Tessaphon A/TANVO/",
          "1 Tavenhall Tessaphon A/TANVO/Library/", "1 Tavenhall Tessaphon A/TANVO/Library/Pianos/",
          "1 Tavenhall Tessaphon A/TANVO/Library/Pianos/Grand.db",
          "1 Tavenhall Tessaphon A/TANVO/Library/Pianos/Upright.db", "2 Tessaphon B/", "2 Tessaphon B/TANVO/",
          "2 Tessaphon B/TANVO/Library/", "2 Tessaphon B/TANVO/Library/Strings/",
          "2 Tessaphon B/TANVO/Library/Strings/Grüße.db", "2 Tessaphon B/TANVO/Library/Strings/Soon/"));
  EXPECT_TRUE(
      std::filesystem::equivalent(kLibrary + "/Pianos/Grand.db",
                                  kSplitSet + "/discs/1 Tavenhall Tessaphon A/TANVO/Library/Pianos/Grand.db"));
  EXPECT_EQ(readFile(kSplitSet + "/.InstallationAttributes.dat"),
            before.substr(0, before.find("TotalSize")) + "TotalSizeMillionsBytes = 16\n");
  const Outcome checked = runThrough({kTavinstall, "check", kSplitSet});
  EXPECT_EQ(checked.status, 0) << checked.output;
  EXPECT_THAT(checked.output, EndsWith("No problems found.\n"));
}

TEST(SplitCommand, CopiesAndWritesAManifest) {
  makeEmptySet();
  makeLibrary();
  const Outcome outcome = split({"--copy", "--manifest"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  const std::string copy = kSplitSet + "/discs/1 Tavenhall Tessaphon A/TANVO/Library/Pianos/Grand.db";
  EXPECT_FALSE(std::filesystem::equivalent(kLibrary + "/Pianos/Grand.db", copy));
  EXPECT_EQ(readFile(copy), readFile(kLibrary + "/Pianos/Grand.db"));
  EXPECT_EQ(runThrough(
                {"sh", "-c", "cd '" + kSplitSet + "/discs/2 Tessaphon B' && sha256sum --check Manifest.sha256"})
                .output,
            "TANVO/Library/Strings/Grüße.db: OK\n");
}

TEST(SplitCommand, ADryRunWritesNothing) {
  makeEmptySet();
  makeLibrary();
  const auto before = treeOf(kSplitSet);
  const Outcome outcome = split({"--dry-run"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output, kTwoDiscs);
  EXPECT_EQ(treeOf(kSplitSet), before);
}

TEST(SplitCommand, TakesTheDataFolderAloneAndSaysSo) {
  makeEmptySet();
  writeFile(kLibrary + "/TANVO/Keys/one.db", someBytes(1'000'000));
  writeFile(kLibrary + "/Read me.txt", "text");
  makeFolder(kLibrary + "/Artwork");
  const Outcome outcome = split({"--dry-run"});
  EXPECT_EQ(outcome.output,
            "1 disc (disc of 12.0 MB), 1.0 MB in TANVO:\n  1 Tavenhall Tessaphon A\n    1 file, 1.0 MB; 8% of "
            "the room "
            "is used: Keys\nLeft out, since it is beside the data folder: Artwork, Read me.txt\n");
}

TEST(SplitCommand, PutsWhatOnlyTheFullEditionHasOnTheSecondDisc) {
  makeEmptySet();
  makeLibrary();
  const Outcome outcome = split({"--full-only", "Pianos/Upright.db", "--full-only", "Strings/"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_TRUE(std::filesystem::exists(kSplitSet + "/discs/2 Tessaphon B/TANVO/Library/Pianos/Upright.db"));
  EXPECT_THAT(
      readFile(kSplitSet + "/.InstallationAttributes.dat"),
      EndsWith("NumberOfVolumes = 2\nTotalSizeMillionsBytes = 16\nComponent1SizeMillionsBytes = 6\n"
               "LiteVsFullPrompt = Yes\nLiteVsFullPromptText = Which edition of Tessaphon do you want to "
               "install?\n"));
  const Outcome checked = runThrough({kTavinstall, "check", kSplitSet, "--install-type", "Lite"});
  EXPECT_THAT(checked.output, EndsWith("No problems found.\n"));
}

TEST(SplitCommand, AFileThatCannotBeWrittenLeavesTheSetAsItWas) {
  makeEmptySet();
  makeLibrary();
  const auto before = treeOf(kSplitSet);
  const Outcome outcome =
      runThrough({"sh", "-c",
                  "trap '' XFSZ; ulimit -f 8000; exec '" + std::string(kTavinstall) + "' split " + kLibrary +
                      " '" + kSplitSet + "' --disc-size 12m --copy"});
  EXPECT_EQ(outcome.status, 1) << outcome.output;
  EXPECT_EQ(outcome.error,
            "tavinstall: cannot write /tmp/split set/discs/.split/1 Tavenhall Tessaphon A/TANVO/Library/"
            "Pianos/Grand.db: File too large\n");
  EXPECT_EQ(treeOf(kSplitSet), before);
}

ChildProgram startSplit(std::vector<std::string> options, const std::string& path) {
  options.insert(options.begin(), {"env", "PATH=" + path + std::getenv("PATH"), kTavinstall, "split", kLibrary,
                                   kSplitSet, "--disc-size", "dvd5"});
  return ChildProgram(options);
}

// It takes a while to be copied.
void makeLargeFile() {
  const std::string large = kLibrary + "/Strings/Large.db";
  writeFile(large, "");
  std::filesystem::resize_file(large, 2'000'000'000);
}

const std::string kLargeDraft =
    kSplitSet + "/discs/.split/1 Tavenhall Tessaphon A/TANVO/Library/Strings/Large.db";

TEST(SplitCommand, StoppedWhileItCopiesLeavesTheSetAsItWas) {
  makeEmptySet();
  makeLibrary();
  makeLargeFile();
  const auto before = treeOf(kSplitSet);
  ChildProgram program = startSplit({"--copy"}, "");
  waitForFile(kLargeDraft);
  kill(program.pid(), SIGINT);
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_EQ(program.standardError(), "tavinstall: stopped; the set is as it was\n");
  EXPECT_EQ(treeOf(kSplitSet), before);
}

TEST(SplitCommand, IsRefusedWhileAnotherOneWritesIntoTheSet) {
  makeEmptySet();
  makeLibrary();
  makeLargeFile();
  ChildProgram first = startSplit({"--copy"}, "");
  waitForFile(kLargeDraft);
  ChildProgram second = startSplit({}, "");
  EXPECT_EQ(second.waitForEnd(), 1);
  EXPECT_EQ(second.standardError(), "tavinstall: another split writes into the set /tmp/split set\n");
  EXPECT_EQ(first.waitForEnd(), 0) << first.standardError();
}

TEST(SplitCommand, StoppedWhileItMakesImagesLeavesTheDiscs) {
  makeEmptySet();
  makeLibrary();
  writeFile("/tmp/bin/mksquashfs", "#!/bin/sh\ntouch \"$2\" /tmp/begun\nexec sleep 100\n");
  std::filesystem::permissions("/tmp/bin/mksquashfs", std::filesystem::perms::owner_all);
  ChildProgram program = startSplit({"--images", "squashfs"}, "/tmp/bin:");
  waitForFile("/tmp/begun");
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_EQ(program.standardError(),
            "tavinstall: stopped; the discs are complete, but a manifest or an image is missing\n");
  EXPECT_THAT(treeOf(kSplitSet + "/discs"), testing::Each(testing::Not(HasSubstr("squashfs"))));
  EXPECT_EQ(runThrough({kTavinstall, "check", kSplitSet}).status, 0);
}

TEST(SplitCommand, LinksThatAreAskedForAreNoCopies) {
  makeEmptySet();
  const std::string elsewhere = "/Volumes/Other";
  makeFolder(elsewhere);
  ASSERT_EQ(runThrough({"mount", "-t", "tmpfs", "none", elsewhere}).status, 0);
  writeFile(elsewhere + "/Library/one.db", someBytes(1'000'000));
  const std::vector<std::string> command{kTavinstall, "split",       elsewhere + "/Library",
                                         kSplitSet,   "--disc-size", "12m"};
  std::vector<std::string> linking = command;
  linking.emplace_back("--link");
  const Outcome outcome = runThrough(linking);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error,
            "tavinstall: cannot make a link to /Volumes/Other/Library/one.db: Invalid cross-device link\n");
  EXPECT_EQ(runThrough(command).status, 0) << "then it is copied";
}

struct Refusal {
  const char* name;
  void (*change)();
  std::vector<std::string> options;
  std::string error;
};

void PrintTo(const Refusal& refusal, std::ostream* stream) { *stream << refusal.name; }

class SplitRefusals : public testing::TestWithParam<Refusal> {};

TEST_P(SplitRefusals, NameTheReasonAndWriteNothing) {
  makeEmptySet();
  makeLibrary();
  GetParam().change();
  const auto before = treeOf(kSplitSet);
  const Outcome outcome = split(GetParam().options);
  EXPECT_EQ(outcome.status, 2) << outcome.output;
  EXPECT_EQ(outcome.error, GetParam().error);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(treeOf(kSplitSet), before);
}

const std::string kCannot = "tavinstall: the library cannot be put on these discs; nothing was written\n";

INSTANTIATE_TEST_SUITE_P(
    Each, SplitRefusals,
    testing::Values(
        Refusal{"ALargeFile",
                [] { std::filesystem::resize_file(kLibrary + "/Pianos/Grand.db", 12'000'000); },
                {},
                "These files are larger than a disc:\n  Pianos/Grand.db: 12.0 MB\n" + kCannot},
        Refusal{"CaseAndComposition",
                [] {
                  writeFile(kLibrary + "/pianos/grand.db", "x");
                  writeFile(kLibrary + "/\xC3\xA9.db", "x");
                  writeFile(kLibrary + "/e\xCC\x81.db", "x");
                },
                {},
                "These names differ only in case, or in how a letter is composed, so a Mac keeps only one:\n"
                "  pianos: Pianos\n  pianos/grand.db: Pianos/Grand.db\n  \xC3\xA9.db: e\xCC\x81.db\n" +
                    kCannot},
        Refusal{"HiddenNames",
                [] {
                  writeFile(kLibrary + "/.secret/a.db", "x");
                  writeFile(kLibrary + "/.DS_Store", "x");
                },
                {},
                "Hidden files and folders are never installed; rename or remove them:\n  .secret\n" + kCannot},
        Refusal{"Links",
                [] {
                  std::filesystem::create_symlink("Pianos", kLibrary + "/Keys");
                  std::filesystem::create_symlink("gone", kLibrary + "/lost");
                },
                {},
                "Links are not installed as links; put the files in their places:\n  Keys\n  lost\n" + kCannot},
        Refusal{
            "ManyBadNames",
            [] {
              for (const char* name : {"a:1", "a:2", "a:3", "a:4", "a:5", "a:6", "a:7", "\xFF"}) {
                writeFile(kLibrary + "/" + name, "x");
              }
              writeFile(kLibrary + "/" + std::string(104, 'n'), "x");
            },
            {},
            "These names have a character that the disc's file system does not:\n  a:1\n  a:2\n  a:3\n  a:4\n  "
            "a:5\n  and 2 more\nThese names are longer than the 103 characters of a disc with Joliet:\n  " +
                std::string(104, 'n') + "\nThese names are not UTF-8:\n  \uFFFD\n" + kCannot},
        Refusal{"DiscsThatAreThere",
                [] { writeFile(kSplitSet + "/discs/1 Tavenhall Tessaphon A/TANVO/mine.db", "x"); },
                {},
                "tavinstall: /tmp/split set/discs/1 Tavenhall Tessaphon A is there already; remove the set's "
                "discs, "
                "or use a set of its own\n"},
        Refusal{"AnotherMode",
                [] { writeFile(kSplitSet + "/.InstallationAttributes.dat", "Mode = FullDownload\n"); },
                {},
                "tavinstall: /tmp/split set is no set for discs; make one with tavinstall new --mode discs\n"},
        Refusal{
            "EditionsThatNobodyDivided",
            [] {
              writeFile(kSplitSet + "/.InstallationAttributes.dat",
                        "Mode = InstallFromVolumes\nNumberOfVolumes = 2\nLiteVsFullPrompt = Yes\n");
            },
            {},
            "tavinstall: the set has a Lite and a Full edition: name with --full-only what a Lite one does not "
            "have\n"},
        Refusal{
            "AnUnknownPath", [] {}, {"--full-only", "Drums"}, "tavinstall: there is no Drums in the library\n"},
        Refusal{"NothingForALiteEdition",
                [] {},
                {"--full-only", "Pianos", "--full-only", "Strings"},
                "tavinstall: nothing would be left for a Lite edition\n"},
        Refusal{"AnEditionThatNeedsTwoDiscs",
                [] { writeFile(kLibrary + "/Brass/a.db", someBytes(4'000'000)); },
                {"--full-only", "Brass"},
                "tavinstall: each edition's part has to fit on one disc, but that of both needs 2 of them\n"},
        Refusal{"NoRoom",
                [] {},
                {"--reserve", "12m"},
                "tavinstall: nothing is left of a disc for files; give a smaller --reserve or larger discs\n"},
        Refusal{"ASetInTheLibrary",
                [] {
                  std::filesystem::rename(kLibrary, kSplitSet + "/Library");
                  std::filesystem::create_symlink(kSplitSet + "/..", kLibrary);
                },
                {},
                "tavinstall: the set /tmp/split set is in the library, and would become a part of it\n"},
        Refusal{"NoLibrary",
                [] { std::filesystem::remove_all(kLibrary); },
                {},
                "tavinstall: there is no folder /tmp/Library\n"}),
    [](const testing::TestParamInfo<Refusal>& test) { return test.param.name; });

// An image never has more than the layout counted, and not much less.
TEST(SplitCommand, AnImageFitsWhatWasCountedForIt) {
  makeEmptySet();
  for (int file = 0; file < 3000; ++file) {
    const std::string number = std::to_string(file);
    writeFile(
        kLibrary + "/Folder " + std::to_string(file % 150) + "/Sample with a longer name " + number + ".wav",
        someBytes(static_cast<std::size_t>(file)));
  }
  const Outcome outcome = split({"--images", "iso"});
  ASSERT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.output, HasSubstr("3000 files, 4.5 MB; 98% of the room is used"));
  const auto size =
      static_cast<std::int64_t>(std::filesystem::file_size(kSplitSet + "/discs/1 Tavenhall Tessaphon A.iso"));
  EXPECT_LT(size, 12'000'000);
  EXPECT_GT(size, 10'000'000);
  EXPECT_FALSE(std::filesystem::exists(kSplitSet + "/discs/1 Tavenhall Tessaphon A"));
}

TEST(DiscMedia, HaveTheseSizes) {
  EXPECT_EQ(discMedium("dvd5").capacity, 4700372992);
  EXPECT_EQ(discMedium("dvd9").capacity, 8543666176);
  EXPECT_EQ(discMedium("bd25").capacity, 25025314816);
  EXPECT_EQ(discMedium("bd50").capacity, 50050629632);
  EXPECT_EQ(discMedium("usb:64g").capacity, 64000000000);
  EXPECT_EQ(discMedium("usb:64g").space(0).block, 131072);
  EXPECT_EQ(discMedium("700000000").capacity, 700000000);
  EXPECT_EQ(discMedium("dvd5").space(1000).capacity, discMedium("dvd5").space(0).capacity - 1000);
  for (const char* bad : {"", "dvd", "usb:", "usb:x", "-5", "10gb", "5x", "99999999999g", "0"}) {
    EXPECT_THROW(static_cast<void>(discMedium(bad)), UsageError) << bad;
  }
}

TEST(AttributesEdits, ChangeTheLineThatThePageReads) {
  EXPECT_EQ(withNumber("A = 1\r\nNumberOfVolumes = 2\r\nB = 2\r\n", "NumberOfVolumes", 5),
            "A = 1\r\nNumberOfVolumes = 5\r\nB = 2\r\n");
  EXPECT_EQ(withNumber("numberofvolumes = 2", "NumberOfVolumes", 5),
            "numberofvolumes = 2\nNumberOfVolumes = 5\n")
      << "a number's key is found in its exact case only";
  EXPECT_EQ(withText("litevsfullprompt = no\n", "LiteVsFullPrompt", "Yes"), "LiteVsFullPrompt = Yes\n");
  EXPECT_EQ(withText("", "LiteVsFullPrompt", "Yes"), "LiteVsFullPrompt = Yes\n");
}

TEST(AttributesEdits, AreShownAsADiff) {
  EXPECT_EQ(unifiedDiff("f", "a\r\nb\r\nc\r\nd\r\n", "A\r\nb\r\nC\r\nD\r\n"),
            "--- f\n+++ f\n@@ -1 +1 @@\n-a\n+A\n@@ -3,2 +3,2 @@\n-c\n-d\n+C\n+D\n");
  EXPECT_EQ(unifiedDiff("f", "a\n", "a\nb\n"), "--- f\n+++ f\n@@ -1,0 +2 @@\n+b\n");
  EXPECT_EQ(unifiedDiff("f", "a\rb", "a\nb\n"), "--- f\n+++ f\n@@ -1 +1,2 @@\n-a\rb\n+a\n+b\n");
  EXPECT_EQ(unifiedDiff("f", "a\n", "a\n"), "");
}

}  // namespace
}  // namespace tavenhall::test
