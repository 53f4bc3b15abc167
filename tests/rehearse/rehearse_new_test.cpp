#include "tests/rehearse/rehearsals.h"

#include <string>
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
