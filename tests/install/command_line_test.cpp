#include "tests/install/case_files.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What the program is asked for on its command line, and what it cannot use.
namespace tavenhall::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

Outcome tavinstall(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), kTavinstall);
  return runThrough(std::move(arguments));
}

// One line on standard error, nothing on standard output, and nothing begun.
void expectBadUsage(const std::vector<std::string>& arguments, const std::string& word) {
  const Outcome outcome = tavinstall(arguments);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_THAT(outcome.error, MatchesRegex("tavinstall: [^\n]+\n"));
  EXPECT_THAT(outcome.error, HasSubstr(word));
  EXPECT_FALSE(exists("/tmp/TavInstallLoc"));
  EXPECT_FALSE(exists("/tmp/TavInstallType"));
  EXPECT_EQ(treeOf("/Users/tester"), (std::vector<std::string>{"Installer.pkg"}));
}

class BadUsage : public testing::Test {
 protected:
  const std::string package = "/Users/tester/Installer.pkg";

  BadUsage() { writeFile(package, ""); }
};

TEST_F(BadUsage, WithoutACommand) { expectBadUsage({}, "subcommand"); }

TEST_F(BadUsage, AnUnknownCommand) { expectBadUsage({"instal"}, ": instal; see tavinstall --help\n"); }

TEST_F(BadUsage, AnUnknownOption) { expectBadUsage({"run", "--package", package, "--fast"}, "--fast"); }

TEST_F(BadUsage, AnUnknownFrontend) { expectBadUsage({"run", "--package", package, "--ui", "loud"}, "loud"); }

TEST_F(BadUsage, AnUnknownEdition) {
  expectBadUsage({"run", "--package", package, "--install-type", "Light"}, "Light");
}

TEST_F(BadUsage, AnUnknownProduct) {
  expectBadUsage({"run", "--package", package, "--product", "Tess"}, "Tess");
}

TEST_F(BadUsage, ABundleBesideAProduct) {
  expectBadUsage({"run", "--package", package, "--product", "Lumaweave", "--bundle", "/x"}, "--bundle");
}

TEST_F(BadUsage, WithoutAPackage) { expectBadUsage({"run", "--ui", "json"}, "--package"); }

class BadUsageInEveryFrontend : public BadUsage, public testing::WithParamInterface<const char*> {};

TEST_P(BadUsageInEveryFrontend, APackageThatDoesNotExist) {
  expectBadUsage({"run", "--ui", GetParam(), "--package", "/Users/tester/Gone.pkg"}, "/Users/tester/Gone.pkg");
}

TEST_P(BadUsageInEveryFrontend, APackageWithALineBreakInItsPath) {
  expectBadUsage({"run", "--ui", GetParam(), "--package", "/Users/tester/Gone\nFar.pkg"}, "Far.pkg");
}

TEST_P(BadUsageInEveryFrontend, ABundleThatDoesNotExist) {
  expectBadUsage({"run", "--ui", GetParam(), "--package", package, "--without-attributes", "--install-type",
                  "Lite", "--bundle", "/Volumes/Gone.bundle"},
                 "/Volumes/Gone.bundle");
}

TEST_P(BadUsageInEveryFrontend, ABundleWithAnInvalidProgram) {
  writeFile("/Volumes/Text.bundle/Contents/MacOS/InstallDataPane", "not a program\n");
  expectBadUsage({"run", "--ui", GetParam(), "--package", package, "--without-attributes", "--bundle",
                  "/Volumes/Text.bundle"},
                 "/Volumes/Text.bundle");
}

INSTANTIATE_TEST_SUITE_P(Frontends, BadUsageInEveryFrontend, testing::Values("json", "plain", "quiet"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST(CommandLine, ABundleIsFoundThroughARelativePath) {
  layPackage("InstallDataTitle = Found\n");
  std::filesystem::create_directory_symlink(TAVINSTALL_BINARY_DIR "/InstallDataPane-Bassoria.bundle",
                                            "/Volumes/link.bundle");

  JsonInstaller installer({"--package", kPackage, "--bundle", "Volumes/link.bundle"});
  installer.send({kTitle, kEnter});

  EXPECT_EQ(installer.finish(), 0);
  EXPECT_EQ(installer.events().front(), R"({"event":"title","text":"Found"})");
  EXPECT_THAT(installer.events(),
              testing::Contains(HasSubstr("The folder for the Bassoria data was not found.")));
}

TEST(CommandLine, ASecondInstallIsRefusedWhileAFirstOneRuns) {
  layPackage("InstallDataTitle = First\n");
  JsonInstaller first({"--package", kPackage});
  first.send(kTitle);
  first.await("title");

  const Outcome second = tavinstall({"run", "--ui", "quiet", "--package", kPackage, "--install-type", "Lite"});

  EXPECT_EQ(second.status, 5);
  EXPECT_THAT(second.error, MatchesRegex("tavinstall: [^\n]+\n"));
  EXPECT_TRUE(std::filesystem::is_symlink("/tmp/TavInstallType"));  // the first one's, and no choice
  EXPECT_EQ(first.finish(), 0);
}

TEST(CommandLine, VersionIsTheProjectsOwn) {
  const Outcome outcome = tavinstall({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, MatchesRegex("tavinstall [0-9]+\\.[0-9]+\\.[0-9]+\n"));
  EXPECT_EQ(outcome.error, "");
}

TEST(CommandLine, HelpNamesTheCommandAndItsOptions) {
  EXPECT_THAT(tavinstall({"--help"}).output, HasSubstr("run"));
  const Outcome outcome = tavinstall({"run", "--help"});
  EXPECT_EQ(outcome.status, 0);
  for (const char* option :
       {"--package", "--install-type", "--bundle", "--product", "--ui", "--summary", "--no-preinstall"}) {
    EXPECT_THAT(outcome.output, HasSubstr(option));
  }
  EXPECT_EQ(outcome.error, "");
}

}  // namespace
}  // namespace tavenhall::test
