#include "tests/check/sets.h"
#include "tests/install/child_program.h"

#include <nlohmann/json.hpp>

// The built program, as people run it.
namespace tavenhall::test {

namespace {

// What it says on either stream is the outcome's output.
Outcome runCheck(const std::string& arguments) {
  return runThrough({"sh", "-c", TAVINSTALL_BINARY_DIR "/bin/tavinstall check " + arguments + " 2>&1"});
}

}  // namespace

TEST(CheckCommand, ReportsNoProblems) {
  makeDiscSet();
  const Outcome outcome = runCheck(kSetFolder + " --product Lumaweave");
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_EQ(
      outcome.output,
      "The set /Users/tester/Installer\n  Installer.pkg for Lumaweave, whose data folder is DOVA\n\nWhat the "
      "page would do\n  Mode           2, install from discs. The Mode in line 1 of "
      ".InstallationAttributes.dat reads \"InstallFromVolumes\".\n  Title          Installing Lumaweave\n  "
      "Text           Now installing to\n\n                 ~/Library/Application Support/Tavenhall/DOVA\n  "
      "Edition        There is one edition.\n  Size           1.0 MB announced by TotalSizeMillionsBytes; "
      "there are 0.0 MB\n  DOVA           to ~/Library/Application Support/Tavenhall/DOVA, 2 volumes\n    1    "
      "        /Volumes/Tavenhall Lumaweave (discs/1 Tavenhall Lumaweave): DOVA, 1 file, 0.0 MB\n    2         "
      "   /Volumes/Tavenhall Lumaweave (discs/2 Tavenhall Lumaweave): DOVA, 1 file, 0.0 MB\n  At the end     "
      "Installed in\n\n                 ~/Library/Application Support/Tavenhall/DOVA\n\nNo problems found.\n");
}

TEST(CheckCommand, ShowsEachDiagnosticWithItsPlaceAndReference) {
  makeDiscSet("Publisher = Tavenhall\n" + kDiscLines);
  std::filesystem::create_symlink("nothing", inSet("discs/1 Tavenhall Lumaweave/DOVA/broken"));
  const Outcome outcome = runCheck(kSetFolder + " --product Lumaweave");
  EXPECT_EQ(outcome.status, 1) << outcome.output;
  EXPECT_THAT(
      outcome.output,
      testing::EndsWith(
          "Diagnostics\n  .InstallationAttributes.dat:1:1: warning: The key \"Publisher\" is unknown, "
          "so this line is ignored. [key-unknown]\n    1 | Publisher = Tavenhall\n      | ^^^^^^^^^\n"
          "      = Remove the line, or begin it with # as a comment.\n  "
          "discs/1 Tavenhall Lumaweave/DOVA/broken: error: The link is broken, so the page shows "
          "\"Failed to open input file.\" and the installation fails. [link-broken]\n      "
          "= Put what the link leads to in its place.\n\n1 error, 1 warning, 0 notes\nFor an explanation: "
          "tavinstall check --explain NAME\n"));
}

TEST(CheckCommand, EndsWithThreeWhereThereAreWarningsOnly) {
  makeDiscSet("Publisher = Tavenhall\n" + kDiscLines);
  EXPECT_EQ(runCheck(kSetFolder + " --product Lumaweave").status, 3);
}

TEST(CheckCommand, EndsWithNothingWrongWhereThereAreNotesOnly) {
  makeDataUpdateSet();
  const Outcome outcome = runCheck(kSetFolder);
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(outcome.output, testing::HasSubstr("note: No product was given"));
}

TEST(CheckCommand, GivesJson) {
  makeDataUpdateSet("Publisher = Tavenhall\n" + kDataUpdateLines);
  const Outcome outcome = runCheck(kSetFolder + " --product Tessaphon --install-type Lite --format json");
  EXPECT_EQ(outcome.status, 3);
  const nlohmann::json json = nlohmann::json::parse(outcome.output, nullptr, false);
  ASSERT_TRUE(json.is_object()) << outcome.output;
  EXPECT_EQ(json["set"], kSetFolder);
  EXPECT_EQ(json["package"], inSet("Installer.pkg"));
  EXPECT_EQ(json["product"], nlohmann::json({{"plugin", "Tessaphon"}, {"folder", "TANVO"}}));
  EXPECT_EQ(json["plan"]["mode"], 0);
  EXPECT_EQ(json["plan"]["edition"]["offered"], true);
  EXPECT_EQ(json["plan"]["edition"]["lite"], true);
  EXPECT_EQ(json["plan"]["edition"]["source"], "request");
  EXPECT_EQ(json["plan"]["size"]["key"], "Component1SizeMillionsBytes");
  EXPECT_EQ(json["plan"]["size"]["announcedBytes"], 1000000);
  EXPECT_EQ(json["plan"]["size"]["realBytes"], 6);
  EXPECT_EQ(json["plan"]["size"]["realFirstComponentBytes"], 3);
  ASSERT_EQ(json["plan"]["passes"].size(), 1U);
  EXPECT_EQ(json["plan"]["passes"][0]["volumeCount"], 1);
  EXPECT_EQ(json["plan"]["passes"][0]["volumes"][0]["primary"], inSet("First/TANVO"));
  EXPECT_EQ(json["remarks"],
            nlohmann::json::array({{{"name", "key-unknown"},
                                    {"severity", "warning"},
                                    {"file", ".InstallationAttributes.dat"},
                                    {"line", 1},
                                    {"column", 1},
                                    {"length", 9},
                                    {"text", "The key \"Publisher\" is unknown, so this line is ignored."},
                                    {"remedy", "Remove the line, or begin it with # as a comment."},
                                    {"fix", nullptr},
                                    {"consequences", nlohmann::json::array()},
                                    {"reference", "docs/diagnostics.md#key-unknown"}}}));
  EXPECT_EQ(json["errors"], 0);
  EXPECT_EQ(json["warnings"], 1);
  EXPECT_EQ(json["notes"], 0);
}

TEST(CheckCommand, GivesJsonAlsoOfNamesThatAreNotUtf8) {
  makeDiscSet();
  std::filesystem::create_symlink("nothing", inSet("discs/1 Tavenhall Lumaweave/DOVA/\xFF\x1b"));
  const Outcome outcome = runCheck(kSetFolder + " --product Lumaweave --format json");
  const nlohmann::json json = nlohmann::json::parse(outcome.output, nullptr, false);
  ASSERT_TRUE(json.is_object()) << outcome.output;
  EXPECT_EQ(json["remarks"][0]["file"], "discs/1 Tavenhall Lumaweave/DOVA/\xEF\xBF\xBD\x1b");
}

TEST(CheckCommand, ShowsATerminalNoControlCharacters) {
  makeDiscSet("Publisher = Tavenhall\nInstallDataTitle = \x1b[2JHello\n" + kDiscLines);
  std::filesystem::create_symlink("nothing", inSet("discs/1 Tavenhall Lumaweave/DOVA/a\x1b[2J\nb"));
  const Outcome outcome = runCheck(kSetFolder + " --product Lumaweave");
  EXPECT_EQ(outcome.output.find('\x1b'), std::string::npos);
  EXPECT_THAT(outcome.output, testing::HasSubstr("DOVA/a?[2J?b: error:"));
}

TEST(CheckCommand, SaysWhichEditionAKnownUserGets) {
  makeUpdateSet();
  writeFile("/Users/tester/Has/TANVO/Mirel Packs/Velmora/Soundsources/Factory/Velmora Library/Keys/a.db",
            "stub");
  makeFolder("/Users/tester/Has/DOVA");
  const Outcome outcome = runCheck(kSetFolder + " --product Tessaphon --installed /Users/tester/Has");
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(outcome.output, testing::HasSubstr("Mirel Packs/Velmora: Lite, detected\n"));
  EXPECT_THAT(outcome.output, testing::HasSubstr("Tessaphon: Lite, detected\n"));
}

TEST(CheckCommand, SaysInOneLineWhatCannotBeUsed) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"/Users/tester/none",
       "tavinstall: no installer set at /Users/tester/none; a set is a folder with an installer package\n"},
      {"", "tavinstall: SET is required; see tavinstall check --help\n"},
      {kSetFolder + " --installed /none",
       "tavinstall: no folder at /none; --installed needs a folder that holds the user's data folders\n"},
  };
  makeDiscSet();
  for (const auto& [arguments, message] : cases) {
    const Outcome outcome = runCheck(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments;
    EXPECT_EQ(outcome.output, message) << arguments;
  }
  for (const char* option : {" --product Obonia", " --format xml", " --install-type light", " --depth 2"}) {
    const Outcome outcome = runCheck(kSetFolder + option);
    EXPECT_EQ(outcome.status, 2) << option;
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1) << outcome.output;
    EXPECT_THAT(outcome.output, testing::StartsWith("tavinstall: ")) << option;
  }
}

TEST(CheckCommand, WritesNothing) {
  makeUpdateSet();
  const std::vector<std::string> before = treeOf("/Users/tester");
  EXPECT_EQ(runCheck(kSetFolder + " --product Tessaphon").status, 0);
  EXPECT_EQ(treeOf("/Users/tester"), before);
  EXPECT_TRUE(treeOf("/tmp").empty());
}

TEST(CheckCommand, HelpFitsAScreen) {
  const Outcome outcome = runCheck("--help");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_LE(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 24) << outcome.output;
}

}  // namespace tavenhall::test
