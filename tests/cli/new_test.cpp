#include "host/base/exit_status.h"
#include "tests/install/child_program.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

// `tavinstall new`: a set that can be checked and rehearsed at once.
namespace tavenhall::test {
namespace {

using testing::HasSubstr;

constexpr const char* kNew = "/tmp/new set";

Outcome makeNew(std::vector<std::string> more) {
  more.insert(more.begin(), {kTavinstall, "new", kNew});
  return runThrough(more);
}

struct NewCase {
  const char* product;
  const char* mode;
  bool hasEditions;
};

void PrintTo(const NewCase& set, std::ostream* stream) {
  *stream << set.product << "_" << set.mode << (set.hasEditions ? "_editions" : "");
}

class NewSets : public testing::TestWithParam<NewCase> {};

TEST_P(NewSets, HaveNoProblem) {
  std::vector<std::string> options{"--product", GetParam().product, "--mode", GetParam().mode};
  if (GetParam().hasEditions) {
    options.emplace_back("--editions");
  }
  const Outcome made = makeNew(options);
  ASSERT_EQ(made.status, 0) << made.error;
  EXPECT_THAT(made.output, HasSubstr("Written: /tmp/new set/.InstallationAttributes.dat\n"));

  const Outcome checked = runThrough({kTavinstall, "check", kNew});
  EXPECT_EQ(checked.status, 0) << checked.output;
  EXPECT_THAT(checked.output, HasSubstr("No problems found.\n"));
  EXPECT_EQ(runThrough({kTavinstall, "manifest", kNew}).status, 0) << "its files are where the page finds them";
}

INSTANTIATE_TEST_SUITE_P(
    Each, NewSets,
    testing::Values(NewCase{"Tessaphon", "discs", false}, NewCase{"Tessaphon", "discs", true},
                    NewCase{"Tessaphon", "download", false}, NewCase{"Tessaphon", "data-update", true},
                    NewCase{"Tessaphon", "product-update", false}, NewCase{"Lumaweave", "discs", false},
                    NewCase{"Bassoria", "download", true}, NewCase{"TemporaQX", "data-update", false}),
    [](const testing::TestParamInfo<NewCase>& test) {
      std::string name = testing::PrintToString(test.param);
      std::erase_if(name, [](char c) { return c == '-'; });
      return name;
    });

TEST(NewSet, HasAsManyDiscsAsAreAskedFor) {
  ASSERT_EQ(makeNew({"--product", "Lumaweave", "--mode", "discs", "--discs", "5"}).status, 0);
  EXPECT_THAT(readFile(std::string(kNew) + "/.InstallationAttributes.dat"), HasSubstr("NumberOfVolumes = 5\n"));
  EXPECT_EQ(runThrough({kTavinstall, "check", kNew}).status, 0);
}

TEST(NewSet, SpeaksTheLanguageOfItsUsers) {
  ASSERT_EQ(makeNew({"--product", "Tessaphon", "--mode", "download", "--language", "de"}).status, 0);
  EXPECT_THAT(readFile(std::string(kNew) + "/.InstallationAttributes.dat"),
              HasSubstr("InstallDataTitle = Tessaphon-Daten installieren\n"));
}

TEST(NewSet, TouchesNoFolderThatHoldsSomething) {
  writeFile(std::string(kNew) + "/mine", "x");
  const Outcome outcome = makeNew({"--product", "Tessaphon", "--mode", "discs"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: /tmp/new set is not an empty folder; a new set needs a folder of its own\n");
  EXPECT_FALSE(exists(std::string(kNew) + "/.InstallationAttributes.dat"));
}

TEST(NewSet, AsksNothingWithoutATerminal) {
  EXPECT_EQ(makeNew({"--mode", "discs"}).error,
            "tavinstall: --product is required; see tavinstall new --help\n");
  EXPECT_EQ(makeNew({"--product", "Tessaphon"}).error,
            "tavinstall: --mode is required; see tavinstall new --help\n");
  EXPECT_EQ(
      makeNew({"--product", "Tessaphon", "--mode", "download", "--discs", "2"}).error,
      "tavinstall: --discs is from 1 to 26, for --mode discs without --editions; see tavinstall new --help\n");
  EXPECT_EQ(
      makeNew({"--product", "Lumaweave", "--mode", "product-update"}).error,
      "tavinstall: a product update lists its libraries in TANVO, so it needs a product of that folder\n");
  EXPECT_FALSE(exists(kNew));
}

TEST(NewSet, OnATerminalItAsksForWhatWasNotGiven) {
  const Outcome outcome =
      runThrough({"script", "-qec", std::string(kTavinstall) + " new '" + kNew + "'", "/dev/null"}, {},
                 "Bassoria\nnothing\ndownload\n");
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(readFile(std::string(kNew) + "/rehearsal.json"), HasSubstr("Bassoria"));
  EXPECT_THAT(readFile(std::string(kNew) + "/.InstallationAttributes.dat"), HasSubstr("Mode = FullDownload\n"));
}

}  // namespace
}  // namespace tavenhall::test
