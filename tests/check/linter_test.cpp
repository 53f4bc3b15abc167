#include "tests/check/sets.h"
#include "tests/install/child_program.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

// What `check` offers to people at a terminal, to editors and to jobs.
namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

Outcome check(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {kTavinstall, "check"});
  return runThrough(arguments);
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  return text.replace(text.find(from), from.size(), to);
}

TEST(CheckFix, CorrectsWhatIsSafeAndShowsIt) {
  makeDiscSet(
      "\xEF\xBB\xBFMode = InstallFromVolumes\r\nnumberOfVolumes = 2\r\nTotalSizeMillionsBytes = 205000000\r\n"
      "InstallDataTitle = One\r\nInstalledData = Two %s\r\n");
  ASSERT_EQ(chmod(inSet(kAttributes).c_str(), 0640), 0);

  const Outcome outcome = check({kSetFolder, "--product", "Lumaweave", "--fix"});
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_THAT(outcome.output,
              testing::StartsWith("--- .InstallationAttributes.dat\n+++ .InstallationAttributes.dat\n"
                                  "@@ -1,3 +1,3 @@\n-\xEF\xBB\xBFMode = InstallFromVolumes\n"
                                  "-numberOfVolumes = 2\n-TotalSizeMillionsBytes = 205000000\n"
                                  "+Mode = InstallFromVolumes\n+NumberOfVolumes = 2\n"
                                  "+TotalSizeMillionsBytes = 1\n"));
  EXPECT_THAT(outcome.output, EndsWith("No problems found.\n"));
  EXPECT_EQ(readFile(inSet(kAttributes)),
            "Mode = InstallFromVolumes\r\nNumberOfVolumes = 2\r\nTotalSizeMillionsBytes = 1\r\n"
            "InstallDataTitle = One\r\nInstalledData = Two %s\r\n");
  struct stat found {};
  ASSERT_EQ(stat(inSet(kAttributes).c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777U, 0640U);
  EXPECT_THAT(check({kSetFolder, "--product", "Lumaweave", "--fix"}).output, Not(HasSubstr("+++")));
}

// A missing disc may be one that somebody forgot; a Mode that does not fit may be right, and the discs wrong.
TEST(CheckFix, LeavesAloneWhatOnlyAPersonCanDecide) {
  for (const auto& [from, to] :
       {std::pair("NumberOfVolumes = 2", "NumberOfVolumes = 3"),
        std::pair("InstallFromVolumes", "FullDownload"), std::pair("InstalledData", "InstaledData")}) {
    const std::string attributes = replaced(kDiscLines, from, to);
    makeDiscSet(attributes);
    EXPECT_EQ(check({kSetFolder, "--product", "Lumaweave", "--fix"}).status, 1) << to;
    EXPECT_EQ(readFile(inSet(kAttributes)), attributes);
  }
}

TEST(CheckFix, CorrectsLetterCase) {
  makeDiscSet(replaced(replaced(kDiscLines, "InstallFromVolumes", "installfromvolumes"), "Number", "number"));
  EXPECT_EQ(check({kSetFolder, "--product", "Lumaweave", "--fix"}).status, 0);
  EXPECT_EQ(readFile(inSet(kAttributes)), kDiscLines);
  std::filesystem::remove_all(kSetFolder);
  makeDataUpdateSet(replaced(kDataUpdateLines, "RelativePath = First", "RelativePath = FIRST"));
  EXPECT_EQ(check({kSetFolder, "--product", "Tessaphon", "--fix"}).status, 0);
  EXPECT_EQ(readFile(inSet(kAttributes)), kDataUpdateLines);
}

TEST(CheckFix, WritesThroughNoLink) {
  makeDiscSet(replaced(kDiscLines, "Bytes = 1", "Bytes = 900"));
  std::filesystem::rename(inSet(kAttributes), "/Users/tester/elsewhere");
  std::filesystem::create_symlink("/Users/tester/elsewhere", inSet(kAttributes));
  const Outcome outcome = check({kSetFolder, "--product", "Lumaweave", "--fix"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: " + inSet(kAttributes) + " is a link; correct the file that it leads to\n");
  EXPECT_TRUE(std::filesystem::is_symlink(inSet(kAttributes)));
  EXPECT_THAT(readFile("/Users/tester/elsewhere"), HasSubstr("Bytes = 900"));
}

TEST(CheckFix, TurnsUtf16IntoUtf8) {
  std::string bytes = "\xFF\xFE";
  for (const char character : replaced(kDiscLines, "Installing", "Inst")) {
    bytes += {character, '\0'};
  }
  makeDiscSet(replaced(bytes, std::string("I\0n\0s\0t\0 \0", 10), std::string("\x3D\xD8\x00\xDE \0", 6)));
  EXPECT_EQ(check({kSetFolder, "--product", "Lumaweave", "--fix"}).status, 0);
  EXPECT_EQ(readFile(inSet(kAttributes)), replaced(kDiscLines, "Installing", "\xF0\x9F\x98\x80"));
}

TEST(CheckFormat, SarifIsOfItsSchemaAndHasPlacesForAnEditor) {
  makeDiscSet(replaced(kDiscLines, "InstallFromVolumes", "InstallFromVolume"));
  std::filesystem::create_symlink("gone", inSet("discs/1 Tavenhall Lumaweave/DOVA/a b%.db"));
  const Outcome outcome = runThrough({"sh", "-c",
                                      "cd /Users/tester && '" + std::string(kTavinstall) +
                                          "' check Installer --product Lumaweave --format sarif"});
  EXPECT_EQ(outcome.status, 1) << outcome.error;
  writeFile("/tmp/log.sarif", outcome.output);
  const std::string schema = std::string(TAVINSTALL_SOURCE_DIR) + "/tests/check/sarif-2.1.0.schema.json";
  const Outcome valid = runThrough({"/usr/bin/python3", "-m", "jsonschema", "-i", "/tmp/log.sarif", schema});
  EXPECT_EQ(valid.status, 0) << valid.output << valid.error;

  const nlohmann::json run = nlohmann::json::parse(outcome.output)["runs"][0];
  EXPECT_EQ(run["tool"]["driver"]["rules"].size(), diagnosticKinds().size());
  const nlohmann::json& first = run["results"][0];
  EXPECT_EQ(first["ruleId"], "mode-misspelt");
  EXPECT_EQ(first["level"], "error");
  EXPECT_EQ(first["locations"][0]["physicalLocation"],
            nlohmann::json::parse(R"({"artifactLocation": {"uri": "Installer/.InstallationAttributes.dat"},
                                      "region": {"startLine": 1, "startColumn": 8, "endColumn": 25}})"));
  EXPECT_GE(first["relatedLocations"].size(), 4U);
}

TEST(CheckFormat, GithubAnnotatesTheLine) {
  makeDiscSet(replaced(kDiscLines, "Installing Lumaweave", "100 %s, \"Lumaweave\""));
  const Outcome outcome = runThrough({"sh", "-c",
                                      "cd /Users/tester && '" + std::string(kTavinstall) +
                                          "' check Installer --product Lumaweave --format github"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(
      outcome.output,
      "::warning file=Installer/.InstallationAttributes.dat,line=2,col=20,title=placeholder-in-title::The page "
      "shows the title as it is written, with the \"%25s\".\n");
}

TEST(CheckCommand, TakesSeveralSets) {
  makeDiscSet();
  std::filesystem::rename(kSetFolder, kSetFolder + " 1");
  makeDiscSet(replaced(kDiscLines, "NumberOfVolumes = 2", "NumberOfVolumes = 3"));
  const std::vector<std::string> sets{kSetFolder + " 1", kSetFolder, "--product", "Lumaweave"};
  const Outcome text = check(sets);
  EXPECT_EQ(text.status, 1);
  EXPECT_THAT(text.output, HasSubstr("The set /Users/tester/Installer 1\n"));
  EXPECT_THAT(text.output, HasSubstr("No problems found.\n\nThe set /Users/tester/Installer\n"));
  auto asJson = sets;
  asJson.insert(asJson.end(), {"--format", "json"});
  const auto json = nlohmann::json::parse(check(asJson).output);
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0]["errors"], 0);
  EXPECT_EQ(json[1]["errors"], 1);
}

TEST(CheckCommand, ReportsWhatIsSelectedAndEndsAsAsked) {
  makeDiscSet("Publisher = Tavenhall\n" + replaced(kDiscLines, "Installing Lumaweave", "%s"));
  const auto statusOf = [](std::vector<std::string> options) {
    options.insert(options.begin(), {kSetFolder, "--product", "Lumaweave"});
    return check(options).status;
  };
  EXPECT_EQ(statusOf({}), 3);
  EXPECT_EQ(statusOf({"--fail-on", "warning"}), 1);
  EXPECT_EQ(statusOf({"--fail-on", "error"}), 0);
  EXPECT_EQ(statusOf({"--ignore", "key-unknown"}), 3);
  EXPECT_EQ(statusOf({"--ignore", "key-unknown", "--ignore", "placeholder-in-title"}), 0);
  EXPECT_EQ(statusOf({"--select", "key-twice"}), 0);
  const Outcome selected = check({kSetFolder, "--product", "Lumaweave", "--select", "key-unknown"});
  EXPECT_THAT(selected.output, HasSubstr("0 errors, 1 warning, 0 notes\n"));
  const Outcome unknown = check({kSetFolder, "--ignore", "key-unknwon"});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_THAT(unknown.error, HasSubstr("key-unknwon"));
}

TEST(CheckCommand, ExplainsADiagnosticWithoutASet) {
  const Outcome outcome = check({"--explain", "mode-misspelt"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(
      outcome.output,
      "mode-misspelt (error)\n\nThe mode resembles one of the four words, or its case is wrong. As written, "
      "it\n"
      "means mode 3.\n\nWhat to do: Correct the Mode.\n\nWrong:\n\n    Mode = InstallFromVolume\n\nRight:\n\n"
      "    Mode = InstallFromVolumes\n");
  const Outcome nothing = check({});
  EXPECT_EQ(nothing.status, 2);
  EXPECT_EQ(nothing.error, "tavinstall: SET is required; see tavinstall check --help\n");
}

TEST(CheckCommand, WrapsColoursAndLinksOnATerminal) {
  makeDiscSet("Publisher = Tavenhall\n" + kDiscLines);
  const std::string command = "'" + std::string(kTavinstall) + "' check " + kSetFolder + " --product Lumaweave";
  const auto onTerminal = [&command](const std::string& environment) {
    return runThrough({"sh", "-c",
                       environment + " script -qec \"stty cols 60; " + command +
                           "\" /dev/null </dev/null | tr -d '\\r'"})
        .output;
  };
  EXPECT_THAT(onTerminal("TERM=xterm NO_COLOR="),
              HasSubstr("  \033[1m.InstallationAttributes.dat:1:1\033[0m: \033[1;33mwarning\033[0m: The key\n"
                        "    \"Publisher\" is unknown, so this line is ignored.\n    [\033]8;;file://" +
                        std::filesystem::weakly_canonical(TAVINSTALL_BINARY_DIR).string() +
                        "/share/doc/tavinstall/diagnostics.md#key-unknown\033\\key-unknown\033]8;;\033\\]\n"
                        "    1 | Publisher = Tavenhall\n      | \033[32m^^^^^^^^^\033[0m\n"));
  EXPECT_THAT(onTerminal("TERM=xterm NO_COLOR=1"), Not(HasSubstr("\033[")));
  EXPECT_THAT(onTerminal("TERM=dumb"), Not(HasSubstr("\033")));
}

// A mistake is one diagnostic with what follows from it, and is counted once.
TEST(Consequences, AreBelowTheirCause) {
  makeDiscSet(replaced(kDiscLines, "Mode = InstallFromVolumes", "Mode = FullDownload"));
  const CheckResult result = checkFor("Lumaweave", "");
  ASSERT_EQ(result.diagnostics.all().size(), 1U) << diagnosticsText(result, {});
  EXPECT_EQ(result.diagnostics.all()[0].name(), "mode-unfit");
  EXPECT_EQ(result.diagnostics.all()[0].consequences.size(), 5U);
  EXPECT_EQ(result.diagnostics.count(Severity::error), 1);
  EXPECT_EQ(result.diagnostics.count(Severity::warning), 0);
}

TEST(Consequences, MakeACauseAsSevereAsTheWorst) {
  std::string lines = "InstalledData = Installed in %s\n" + kDownloadLines;
  std::replace(lines.begin(), lines.end(), '\n', '\r');
  makeDownloadSet(lines);
  const CheckResult result = checkFor("Lumaweave", "");
  const auto& all = result.diagnostics.all();
  ASSERT_FALSE(all.empty());
  EXPECT_EQ(all[0].name(), "carriage-return");
  EXPECT_EQ(all[0].kind->severity, Severity::warning);
  EXPECT_EQ(all[0].severity, Severity::error) << "the page asks for a disc that is not there";
}

// Another mistake in the set is no reason to doubt its Mode, and stays.
TEST(Consequences, AreNotOtherMistakes) {
  makeUpdateSet();
  std::filesystem::create_symlink("gone", inSet("First/TANVO/Tessaphon/broken.db"));
  const CheckResult result = checkFor("Tessaphon");
  EXPECT_THAT(foundIn(result), ElementsAre(Found{"link-broken", "error", "First/TANVO/Tessaphon/broken.db"}));
}

}  // namespace
}  // namespace tavenhall::test
