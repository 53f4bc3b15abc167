#include "tests/check/sets.h"

#include <filesystem>
#include <ostream>

// A set is whole: nothing in it leads out of its folder, and nothing on a disc out of the disc.
namespace tavenhall::test {
namespace {

namespace fs = std::filesystem;

const std::string kDiscData = "discs/1 Tavenhall Lumaweave/DOVA/";

struct Link {
  const char* what;
  std::string target;
  std::string place;  // below the set
  std::vector<Found> others;
};

void PrintTo(const Link& link, std::ostream* out) { *out << link.what; }

class LinkOutOfTheSet : public testing::TestWithParam<Link> {};

TEST_P(LinkOutOfTheSet, IsAnError) {
  makeDiscSet();
  writeFile("/Users/tester/outside.db", "outside");
  const Link& link = GetParam();
  fs::create_symlink(link.target, inSet(link.place));
  std::vector<Found> expected{{"outside-set", "error", link.place}};
  expected.insert(expected.end(), link.others.begin(), link.others.end());
  expectDiagnostics(checkFor("Lumaweave"), expected, 1);
}

INSTANTIATE_TEST_SUITE_P(BoundaryDiagnostic, LinkOutOfTheSet,
                         testing::Values(Link{"Absolute",
                                              "/Users/tester/outside.db",
                                              kDiscData + "a.db",
                                              {{"link-copied", "warning", kDiscData + "a.db"}}},
                                         Link{"AbsoluteIntoTheSet", kSetFolder + "/Installer.pkg", "other", {}},
                                         Link{"Relative",
                                              "../../../../outside.db",
                                              kDiscData + "a.db",
                                              {{"link-copied", "warning", kDiscData + "a.db"}}},
                                         Link{"OffItsDisc",
                                              "../../../Installer.pkg",
                                              kDiscData + "a.db",
                                              {{"link-copied", "warning", kDiscData + "a.db"}}},
                                         Link{"ToNothing", "../../nothing", "hidden", {}},
                                         Link{"Hidden", "../outside.db", ".hidden", {}}),
                         [](const auto& instance) { return instance.param.what; });

TEST(BoundaryDiagnostic, ALinkThroughAnotherLinkIsFollowed) {
  makeDiscSet();
  makeFolder("/Users/tester/Elsewhere");
  fs::create_symlink("../Elsewhere", inSet("first"));
  fs::create_symlink("first/file", inSet("second"));
  expectDiagnostics(checkFor("Lumaweave"),
                    {{"outside-set", "error", "first"}, {"outside-set", "error", "second"}}, 1);
}

TEST(BoundaryDiagnostic, ALinkInsideTheSetAndALinkToItselfAreNone) {
  makeDiscSet();
  fs::create_symlink("Installer.pkg", inSet("alias"));
  fs::create_symlink("loop", inSet("loop"));
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

TEST(BoundaryDiagnostic, ADiscThatIsALinkOutOfTheSetIsOne) {
  makeDiscSet();
  const std::string disc = "discs/2 Tavenhall Lumaweave";
  fs::rename(inSet(disc), "/Users/tester/disc");
  fs::create_symlink("/Users/tester/disc", inSet(disc));
  expectDiagnostics(checkFor("Lumaweave"), {{"outside-set", "error", disc}}, 1);
}

TEST(BoundaryDiagnostic, APackageOutsideIsOne) {
  makeDiscSet();
  fs::remove(inSet("Installer.pkg"));
  writeFile("/Users/tester/Other.pkg", "package");
  writeFile("/Users/tester/.InstallationAttributes.dat", kDiscLines);
  writeFile(inSet("rehearsal.json"), R"({"package": "../Other.pkg"})");
  expectDiagnostics(checkFor("Lumaweave"), {{"outside-set", "error", "/Users/tester/Other.pkg"}}, 1);
}

TEST(BoundaryDiagnostic, AnAttributesFileOneFolderAboveTheSetIsOne) {
  makeDiscSet();
  fs::rename(inSet(".InstallationAttributes.dat"), "/Users/tester/.InstallationAttributes.dat");
  expectDiagnostics(checkFor("Lumaweave"),
                    {{"outside-set", "error", "/Users/tester/.InstallationAttributes.dat"}}, 1);
}

TEST(BoundaryDiagnostic, ARelativePathThatLeavesTheSetIsOneAndNamesItsLine) {
  makeDataUpdateSet("Mode = DataUpdater\nRelativePath = ../Data\nTotalSizeMillionsBytes = 1\n" + kTexts);
  writeFile("/Users/tester/Data/TANVO/Tessaphon/one.db", "one");
  const CheckResult result = checkFor("Tessaphon");
  expectDiagnostics(result, {{"outside-set", "error", kAttributes, 2}}, 1);
  EXPECT_EQ(sentenceOf(result, "outside-set"),
            "\"../Data\" is not in the set's folder, so the user of the installer does not get the data.");
}

TEST(BoundaryDiagnostic, WithDiscsARelativePathIsNotUsed) {
  makeDiscSet(kDiscLines + "RelativePath = ../Data\n");
  expectDiagnostics(checkFor("Lumaweave"), {}, 0);
}

}  // namespace
}  // namespace tavenhall::test
