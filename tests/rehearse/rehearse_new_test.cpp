#include "tests/rehearse/rehearsals.h"

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace tavenhall::test {
namespace {

using testing::HasSubstr;

// Sets with discs take the page's waits; `tavinstall check` finds no problem in them either
// (tests/cli/new_test.cpp).
TEST(RehearseNew, ASetWithPlaceholdersPasses) {
  for (const char* mode : {"download", "data-update", "product-update"}) {
    SCOPED_TRACE(mode);
    const std::string set = std::string("/tmp/new ") + mode;
    ASSERT_EQ(
        runThrough({kTavinstall, "new", set, "--product", "Tessaphon", "--mode", mode, "--editions"}).status,
        0);
    const Outcome outcome = runThrough({kTavinstall, "rehearse", set, "--ui", "quiet", "--report", kReport});
    EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
    expectCheckAgrees(set, report());
    EXPECT_THAT(outcome.output, HasSubstr("Rehearsal passed: everything was installed, no problems found."));
  }
}

// What breaks an installation is an error of the check, and what does not is none.
TEST(RehearseNew, ACheckAgreesOnSetsWithMistakes) {
  struct Change {
    const char* name;
    void (*make)();
  };
  const Change changes[] = {
      {"a data folder with a digit", [] { std::filesystem::rename(inSet("TANVO"), inSet("TANV0")); }},
      {"a broken link", [] { std::filesystem::create_symlink("gone", inSet("TANVO/broken.db")); }},
      {"a link to a folder", [] { std::filesystem::create_symlink("Tessaphon", inSet("TANVO/again")); }},
      {"a pipe", [] { ASSERT_EQ(mkfifo(inSet("TANVO/pipe").c_str(), 0600), 0); }},
      {"a hidden file", [] { writeFile(inSet("TANVO/.hidden"), "x"); }},
      {"a wrong size",
       [] {
         writeFile(inSet("Package/.InstallationAttributes.dat"),
                   "Mode = Downloaded\nTotalSizeMillionsBytes = 500\n");
       }},
      {"an unknown key",
       [] { writeFile(inSet("Package/.InstallationAttributes.dat"), kDownloadLines + "Publisher = X\n"); }},
      {"quotation marks",
       [] {
         writeFile(inSet("Package/.InstallationAttributes.dat"), kDownloadLines + "PreparationTitle = \"X\"\n");
       }},
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change.name);
    std::filesystem::remove_all(kSetFolder);
    makeDownloadSet();
    writeFile(inSet("rehearsal.json"), R"({"product": "Tessaphon"})");
    change.make();
    const Outcome outcome = rehearse();
    ASSERT_NE(outcome.status, 2) << outcome.error;
    expectCheckAgrees(kSetFolder, report());
  }
}

// A library on the images of its discs, installed from them, with a byte that is changed afterwards.
TEST(RehearseNew, ALibraryOnDiscsIsInstalledAndVerified) {
  const std::string set = "/tmp/split set";
  const std::string kept = "/tmp/kept";
  writeFile("/tmp/My Library/one.db", someBytes(7'000'000));
  writeFile("/tmp/My Library/two.db", someBytes(7'000'000, 2));
  ASSERT_EQ(runThrough({kTavinstall, "new", set, "--product", "Tessaphon", "--mode", "discs"}).status, 0);
  const Outcome divided = runThrough(
      {kTavinstall, "split", "/tmp/My Library", set, "--disc-size", "12m", "--manifest", "--images", "iso"});
  ASSERT_EQ(divided.status, 0) << divided.error;

  const Outcome outcome = runThrough({kTavinstall, "rehearse", set, "--ui", "quiet", "--keep", kept});
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  EXPECT_THAT(outcome.output, HasSubstr("  files        2 files identical, 0 differ, 0 missing"));

  const std::string folder = kept + "/Users/rehearsal/Library/Application Support/Tavenhall";
  const std::vector<std::string> verify{kTavinstall, "verify", "--manifest", set + "/Manifest.sha256", folder};
  EXPECT_EQ(runThrough(verify).status, 0);
  std::string bytes = readFile(folder + "/TANVO/My Library/two.db");
  bytes[5'000'000] ^= 1;
  writeFile(folder + "/TANVO/My Library/two.db", bytes);
  const Outcome changed = runThrough(verify);
  EXPECT_EQ(changed.status, 1);
  EXPECT_THAT(changed.output, HasSubstr("Tessaphon B"));
}

}  // namespace
}  // namespace tavenhall::test
