#include "tests/install/case_files.h"
#include "tests/install/child_program.h"
#include "tests/install/source_tree.h"
#include "tests/support/files.h"

#include <filesystem>
#include <fnmatch.h>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

// What docs/ shows as typed into a terminal does what it says. In a block of "console", a line that begins with
// "$ " is a command; the lines behind it are what it prints, with "..." for anything. Where none are shown, it
// must succeed. A block of "sh" is a script that must succeed.
namespace tavenhall::test {
namespace {

struct Step {
  std::string command;  // or a whole script
  std::string expected;
  bool isScript = false;
};

std::vector<Step> stepsOf(const std::string& document) {
  std::vector<Step> steps;
  std::istringstream lines(readFile(std::string(TAVINSTALL_SOURCE_DIR "/docs/") + document));
  std::string block;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("```")) {
      block = block.empty() ? line.substr(3) : "";
      if (block == "sh") {
        steps.push_back({"", "", true});
      }
    } else if (block == "sh") {
      steps.back().command += line + "\n";
    } else if (block == "console" && line.starts_with("$ ")) {
      steps.push_back({line.substr(2), "", false});
    } else if (block == "console") {
      steps.back().expected += line + "\n";
    }
  }
  return steps;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

bool isAsExpected(const std::string& text, const std::string& expected) {
  std::string pattern;
  for (const char c : expected) {
    pattern += std::string("*?[\\").find(c) != std::string::npos ? std::string("\\") + c : std::string(1, c);
  }
  return fnmatch(replaced(pattern, "...", "*").c_str(), text.c_str(), 0) == 0;
}

// Plays the document's steps in one shell's place: the status of one is the next one's "$?".
void expectDocument(const std::string& document, const std::function<void(std::size_t step)>& before) {
  const std::vector<Step> steps = stepsOf(document);
  ASSERT_FALSE(steps.empty());
  const std::string path = TAVINSTALL_BINARY_DIR "/bin:" + usualPath();
  int status = 0;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    before(i);
    const Step& step = steps[i];
    const std::string set = "cd /Users/tester/Downloads; (exit " + std::to_string(status) + "); ";
    const Outcome outcome =
        runThrough({"/bin/sh", "-c", (step.isScript ? "" : set) + step.command}, {{"PATH", path}});
    status = outcome.status;
    SCOPED_TRACE(document + ": " + step.command);
    if (step.expected.empty()) {
      const bool isShownNext = i + 1 < steps.size() && steps[i + 1].command == "echo $?";
      EXPECT_TRUE(status == 0 || isShownNext) << outcome.output << outcome.error;
      continue;
    }
    const std::string shown = outcome.output + outcome.error;
    const std::string expected = replaced(step.expected, "/Users/you", "/Users/tester");
    EXPECT_TRUE(isAsExpected(shown, expected)) << "expected:\n" << expected << "shown:\n" << shown;
  }
}

void layDocumentedSet() {
  layPackage(
      "Mode = InstallFromVolumes\nInstallDataTitle = Tessaphon\nInstallingData = Installing into:\\n%s\n"
      "InstalledData = All is in:\\n%s\nNumberOfVolumes = 2\nTotalSizeMillionsBytes = 1\n");
  layTree(kDiscA, {file("TANVO/Tessaphon/a.db", 12288)});
  layTree(kDiscB, {file("TANVO/Tessaphon/b.db", 10240)});
  std::filesystem::rename("/Users/tester/Downloads/Set", "/Users/tester/Downloads/Tessaphon Installer");
}

TEST(Documents, InstallingIsAsTheDocumentShows) {
  layDocumentedSet();
  std::filesystem::create_directories("/Volumes/Samples");
  expectDocument("installing.md", [](std::size_t) {});

  const std::string inFolder = "cd /Users/tester/Downloads; ";
  EXPECT_EQ(std::filesystem::read_symlink(std::string(kMakersFolder) + "/TANVO"), "/Volumes/Samples/TANVO");
  EXPECT_TRUE(exists("/Volumes/Samples/TANVO/Tessaphon/b.db"));
  std::filesystem::remove("/Volumes/Samples/TANVO/Tessaphon/b.db");
  const Outcome again =
      runThrough({"/bin/sh", "-c",
                  inFolder + kTavinstall + " run --unattended --package 'Tessaphon Installer/Installer.pkg'"});
  EXPECT_EQ(again.status, 0) << again.error;
  EXPECT_TRUE(exists("/Volumes/Samples/TANVO/Tessaphon/b.db")) << "the next installation follows the link";
}

TEST(Documents, DeployingIsAsTheDocumentShows) {
  layDocumentedSet();
  std::filesystem::rename(kDiscB, "/Volumes/later");
  std::filesystem::remove_all(std::string(kMakersFolder) + "/TANVO");
  expectDocument("deploying.md", [](std::size_t step) {
    if (step == 2) {  // the script, for which all is there
      std::filesystem::rename("/Volumes/later", kDiscB);
      std::filesystem::create_directories(std::string(kMakersFolder) + "/TANVO");
      std::filesystem::create_directories("/Volumes/Deploy");
      std::filesystem::rename("/Users/tester/Downloads/Tessaphon Installer",
                              "/Volumes/Deploy/Tessaphon Installer");
    }
  });
  EXPECT_TRUE(exists(std::string(kMakersFolder) + "/TANVO/Tessaphon/b.db"));
}

TEST(Documents, TheFirstSetIsAsTheDocumentShows) {
  std::filesystem::create_directories("/Users/tester/Downloads");
  expectDocument("first-set.md", [](std::size_t) {});
}

}  // namespace
}  // namespace tavenhall::test
