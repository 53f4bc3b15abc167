#include "tests/rehearse/rehearsals.h"

// The sample sets are what they are said to be: each is installed, and there is nothing to diagnostic.
namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

nlohmann::json rehearseSample(const std::string& name) {
  const Outcome made = runThrough({TAVINSTALL_SOURCE_DIR "/scripts/samples", "/tmp/sets", name});
  EXPECT_EQ(made.status, 0) << made.error;
  const Outcome outcome =
      runThrough({kTavinstall, "rehearse", "/tmp/sets/" + name, "--ui", "quiet", "--report", kReport});
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  const nlohmann::json told = report();
  EXPECT_THAT(told["failures"], IsEmpty());
  EXPECT_THAT(told["remarks"], IsEmpty());
  EXPECT_EQ(told["left"], true);
  expectCheckAgrees("/tmp/sets/" + name, told);
  return told;
}

TEST(Samples, DataUpdateIsOfModeNoughtInTwoComponents) {
  const auto told = rehearseSample("data-update");
  EXPECT_EQ(told["plan"]["mode"], 0);
  EXPECT_EQ(told["volumes"].size(), 2U);
  EXPECT_EQ(told["files"].size(), 20U);
}

TEST(Samples, TwoDiscsIsOfModeTwoWithTheDiscSwap) {
  const auto told = rehearseSample("two-discs");
  EXPECT_EQ(told["plan"]["mode"], 2);
  EXPECT_THAT(promptsReported(), ElementsAre("Tavenhall Tessaphon A: inserted", "Tessaphon B: inserted"));
  EXPECT_EQ(told["files"].size(), 248U);
}

TEST(Samples, DownloadIsOfModeThree) {
  const auto told = rehearseSample("download");
  EXPECT_EQ(told["plan"]["mode"], 3);
  EXPECT_EQ(told["files"].size(), 30U);
}

TEST(Samples, ProductUpdateIsOfModeFourWithBothEditions) {
  const auto told = rehearseSample("product-update");
  EXPECT_EQ(told["plan"]["mode"], 4);
  EXPECT_EQ(told["alerts"].size(), 2U);
  EXPECT_EQ(told["systemFolders"].size(), 2U);
  EXPECT_EQ(told["files"].size(), 21U);
}

}  // namespace
}  // namespace tavenhall::test
