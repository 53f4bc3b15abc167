#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

// What the build makes, and what an installation of it makes.
namespace tavenhall::test {
namespace {

std::set<std::string> exportedSymbols(const std::string& library) {
  const Outcome outcome = runThrough({"nm", "-D", "--defined-only", library});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  std::set<std::string> names;
  std::istringstream lines(outcome.output);
  for (std::string line; std::getline(lines, line);) {
    names.insert(line.substr(line.rfind(' ') + 1));
  }
  return names;
}

class Bundle : public testing::TestWithParam<const char*> {};

TEST_P(Bundle, ExportsThePageAndThePlainFunctionsAndNothingElse) {
  EXPECT_EQ(
      exportedSymbols(std::string(TAVINSTALL_BINARY_DIR "/InstallDataPane") + GetParam() +
                      ".bundle/Contents/MacOS/InstallDataPane"),
      (std::set<std::string>{"addEventToInstallationLog", "createInstallDataPane", "folderExistsAndHasContents",
                             "getAlternateNameForFullInstalltion", "getAlternateNameForLiteInstalltion",
                             "getCompletionMessage", "getInstallDataTitle", "getInstallationAttributesFile",
                             "getInstallationMode", "getInstallingDataString", "getLiteVsFullPromptText",
                             "getPreparationTitle", "getRelativePath", "getRelativePath2"}));
}

INSTANTIATE_TEST_SUITE_P(BuiltOutput, Bundle, testing::Values("", "-Lumaweave", "-Bassoria", "-TemporaQX"),
                         [](const auto& tested) {
                           return *tested.param == '\0' ? std::string("Tessaphon")
                                                        : std::string(tested.param + 1);
                         });

TEST(BuiltOutput, AnInstalledProgramFindsItsBundlesAndItsStandIns) {
  const Outcome installation =
      runThrough({"cmake", "--install", TAVINSTALL_BINARY_DIR, "--prefix", "/opt/tavinstall"},
                 {{"DESTDIR", "/tmp/stage"}});
  ASSERT_EQ(installation.status, 0) << installation.output << installation.error;
  const std::string program = "/tmp/stage/opt/tavinstall/bin/tavinstall";
  layPackage("Mode = InstallFromVolumes\nTotalSizeMillionsBytes = 1\n", {"DOVA"});
  layTree("/Volumes/Tavenhall Bassoria", {});
  ASSERT_EQ(runThrough({"mount", "-t", "tmpfs", "disc", "/Volumes/Tavenhall Bassoria"}).status, 0);
  layTree("/Volumes/Tavenhall Bassoria", {file("DOVA/Bassoria/a.db", 2048)});

  const Outcome run =
      runThrough({program, "run", "--ui", "quiet", "--product", "Bassoria", "--package", kPackage},
                 {{"PATH", "/usr/bin:/bin"}});

  EXPECT_EQ(run.status, 0) << run.error;
  EXPECT_EQ(treeOf(kDova), (std::vector<std::string>{"Bassoria/", "Bassoria/a.db"}));
  EXPECT_TRUE(treeOf("/Volumes/Tavenhall Bassoria").empty()) << "the disc was not taken out";
  EXPECT_THAT(runThrough({program, "--version"}).output, testing::StartsWith("tavinstall "));

  // A terminal's link to a diagnostic leads to the document that was installed with the program.
  writeFile("/Users/tester/Set/Installer.pkg", "");
  const Outcome checked = runThrough(
      {"sh", "-c", "TERM=xterm script -qec '" + program + " check /Users/tester/Set' /dev/null </dev/null"});
  EXPECT_THAT(checked.output,
              testing::HasSubstr(
                  "file:///tmp/stage/opt/tavinstall/share/doc/tavinstall/diagnostics.md#attributes-missing"));
}

}  // namespace
}  // namespace tavenhall::test
