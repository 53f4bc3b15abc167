#include "host/base/exit_status.h"
#include "tests/install/child_program.h"
#include "tests/support/files.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

// Help, manual and completions tell of the same commands and options.
namespace tavenhall::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using testing::UnorderedElementsAreArray;

const std::vector<std::string> kCommands{"run",      "status", "attach",   "stop",   "new", "split",
                                         "rehearse", "check",  "manifest", "verify", "log", "help"};
const std::vector<std::string> kProducts{"Tessaphon", "Lumaweave", "Bassoria", "TemporaQX"};

std::string source(const std::string& path) {
  return readFile(std::string(TAVINSTALL_SOURCE_DIR) + "/" + path);
}

std::string helpOf(const std::string& command) {
  const Outcome outcome =
      command.empty() ? runThrough({kTavinstall, "--help"}) : runThrough({kTavinstall, command, "--help"});
  EXPECT_EQ(outcome.status, 0);
  return outcome.output;
}

// The long options that the help has, "--package" and so on.
std::set<std::string> optionsOf(const std::string& command) {
  std::set<std::string> options;
  std::istringstream lines(helpOf(command));
  for (std::string line; std::getline(lines, line);) {
    const std::size_t start = line.find("--");
    if (line.starts_with("  -") && start < 8) {
      options.insert(line.substr(start, line.find_first_of(" ,", start) - start));
    }
  }
  return options;
}

// The part of a text from one mark to the next of the marks, or to its end.
std::string section(const std::string& text, const std::string& mark, const std::string& nextMark) {
  const std::size_t start = text.find(mark);
  return start == std::string::npos ? "" : text.substr(start, text.find(nextMark, start + mark.size()) - start);
}

class HelpOfCommand : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Each, HelpOfCommand, testing::ValuesIn(kCommands),
                         [](const auto& tested) { return tested.param; });

TEST_P(HelpOfCommand, HelpFitsAScreen) {
  std::istringstream lines(helpOf(GetParam()));
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    EXPECT_LT(line.size(), 80U) << line;
  }
  EXPECT_GT(count, 4);
  EXPECT_LE(count, 23);  // one is the shell's
}

TEST(Help, ShowsTheExitStatusesOfEveryCommand) {
  const Outcome outcome = runThrough({kTavinstall, "help", "exit-status"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output,
              StartsWith("tavinstall run\n"
                         "  0   every file was installed; with --ui json: the requests were served\n"
                         "  1   the installation failed, for one file at least\n"
                         "  2   invalid argument; nothing was installed\n"
                         "  3   a prompt needed an answer, but standard input was closed\n"
                         "  4   the installation was stopped\n"
                         "  5   another installation is running; nothing was installed\n"
                         "  6   refused for safety; nothing was installed\n"
                         "  7   unattended: a disc was not found\n"
                         "  8   unattended: there is not enough space; nothing was installed\n"
                         "  9   unattended: the folder to install into is missing or not writable\n"
                         "\n"
                         "tavinstall status\n"));
  std::size_t rows = 0;
  for (const ExitMeaning& row : kExitMeanings) {
    ++rows;
    EXPECT_THAT(outcome.output,
                HasSubstr("\n  " + std::to_string(static_cast<int>(row.status)) + "   " + row.meaning + "\n"));
  }
  EXPECT_EQ(rows, 46U);
}

TEST(Help, WithATopicIsTheHelpOfThatCommand) {
  EXPECT_EQ(runThrough({kTavinstall, "help", "check"}).output, helpOf("check"));
  EXPECT_EQ(runThrough({kTavinstall, "help"}).output, helpOf(""));
  const Outcome outcome = runThrough({kTavinstall, "help", "chek"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "tavinstall: TOPIC: chek not in "
            "{run,status,attach,stop,new,split,rehearse,check,manifest,verify,log,exit-status}; see "
            "tavinstall help --help\n");
}

TEST_P(HelpOfCommand, TheManualHasEveryOptionAndNoOther) {
  const std::string manual =
      section(source("docs/man/tavinstall.1"), ".Ss tavinstall " + GetParam() + "\n", "\n.S");
  std::set<std::string> options{"--help"};  // said of all commands
  std::istringstream lines(manual);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(".It Fl -")) {
      options.insert("-" + line.substr(7, line.find(' ', 7) - 7));
    }
  }
  EXPECT_THAT(options, UnorderedElementsAreArray(optionsOf(GetParam())));
}

TEST_P(HelpOfCommand, TheManualExplainsTheExitStatus) {
  const std::string manual =
      section(source("docs/man/tavinstall.1").substr(source("docs/man/tavinstall.1").find(".Sh EXIT STATUS")),
              ".It Cm " + GetParam() + "\n", "\n.It Cm");
  for (const ExitMeaning& row : kExitMeanings) {
    if (row.command == GetParam()) {
      const std::string status = std::to_string(static_cast<int>(row.status));
      EXPECT_THAT(manual, HasSubstr(".It " + status + "\n" + row.meaning + "\n"));
    }
  }
}

// What bash offers for the last of these words.
std::vector<std::string> bashOffers(const std::vector<std::string>& words) {
  std::string script = "source '" TAVINSTALL_SOURCE_DIR "/completion/tavinstall.bash'\ncompopt() { :; }\n";
  script += "COMP_WORDS=(";
  for (const std::string& word : words) {
    script += "'" + word + "' ";
  }
  script +=
      ")\nCOMP_CWORD=" + std::to_string(words.size() - 1) +
      "\n$(complete -p tavinstall | sed 's/.*-F \\([^ ]*\\).*/\\1/')\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n";
  std::istringstream lines(runThrough({"bash", "-c", script}).output);
  std::vector<std::string> offers;
  for (std::string line; std::getline(lines, line);) {
    offers.push_back(line);
  }
  return offers;
}

TEST_P(HelpOfCommand, BashCompletesEveryOptionAndNoOther) {
  EXPECT_THAT(bashOffers({"tavinstall", GetParam(), "-"}), UnorderedElementsAreArray(optionsOf(GetParam())));
}

TEST(BashCompletion, CompletesCommandsProductsAndFiles) {
  EXPECT_THAT(bashOffers({"tavinstall", ""}), UnorderedElementsAreArray(kCommands));
  EXPECT_THAT(bashOffers({"tavinstall", "re"}), UnorderedElementsAreArray({"rehearse"}));
  EXPECT_THAT(bashOffers({"tavinstall", "run", "--product", ""}), UnorderedElementsAreArray(kProducts));
  EXPECT_THAT(bashOffers({"tavinstall", "check", "--product", "T"}),
              UnorderedElementsAreArray({"Tessaphon", "TemporaQX"}));
  EXPECT_THAT(bashOffers({"tavinstall", "run", "--ui", "p"}), UnorderedElementsAreArray({"plain"}));
  writeFile("/tmp/a set/x", "");
  writeFile("/tmp/a log", "");
  EXPECT_THAT(bashOffers({"tavinstall", "check", "/tmp/a"}), UnorderedElementsAreArray({"/tmp/a set"}));
  EXPECT_THAT(bashOffers({"tavinstall", "log", "--last", "/tmp/a"}),
              UnorderedElementsAreArray({"/tmp/a set", "/tmp/a log"}));
}

std::set<std::string> fishOffers(const std::string& line) {
  const Outcome outcome =
      runThrough({"fish", "--no-config", "-c",
                  "source '" TAVINSTALL_SOURCE_DIR "/completion/tavinstall.fish'; complete -C'" + line + "'"});
  EXPECT_EQ(outcome.error, "");
  std::set<std::string> offers;
  std::istringstream lines(outcome.output);
  for (std::string offer; std::getline(lines, offer);) {
    offers.insert(offer.substr(0, offer.find('\t')));
  }
  return offers;
}

bool hasProgram(const std::string& name) { return runThrough({"sh", "-c", "command -v " + name}).status == 0; }

TEST_P(HelpOfCommand, FishCompletesEveryOptionAndNoOther) {
  if (!hasProgram("fish")) {
    GTEST_SKIP() << "fish is not installed";
  }
  EXPECT_THAT(fishOffers("tavinstall " + GetParam() + " --"), UnorderedElementsAreArray(optionsOf(GetParam())));
}

TEST(FishCompletion, CompletesCommandsAndProducts) {
  if (!hasProgram("fish")) {
    GTEST_SKIP() << "fish is not installed";
  }
  EXPECT_THAT(fishOffers("tavinstall "), UnorderedElementsAreArray(kCommands));
  EXPECT_THAT(fishOffers("tavinstall check --product "), UnorderedElementsAreArray(kProducts));
}

// What the lines for one command hold; zsh completes on a terminal only.
TEST_P(HelpOfCommand, ZshCompletesEveryOption) {
  const std::string completion = source("completion/_tavinstall");
  const std::string start = "\n        " + GetParam() + ")";
  EXPECT_THAT(completion, HasSubstr(start));
  EXPECT_THAT(completion, HasSubstr("\n    '" + GetParam() + ":"));
  const std::string own = section(completion, start, ";;");
  for (const std::string& option : optionsOf(GetParam())) {
    const std::string array = option == "--install-type" ? "$edition" : "$" + option.substr(2);
    EXPECT_TRUE(own.find(option + "[") != std::string::npos || own.find(array) != std::string::npos) << option;
  }
}

TEST(ZshCompletion, CanBeRead) {
  if (!hasProgram("zsh")) {
    GTEST_SKIP() << "zsh is not installed";
  }
  const Outcome outcome = runThrough({"zsh", "-n", TAVINSTALL_SOURCE_DIR "/completion/_tavinstall"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(source("completion/_tavinstall"),
              HasSubstr("products=(Tessaphon Lumaweave Bassoria TemporaQX)\n"));
}

TEST(Help, OfTheProgramFitsAScreenAndNamesEveryCommand) {
  const std::string help = helpOf("");
  EXPECT_LE(std::count(help.begin(), help.end(), '\n'), 23);
  for (const std::string& command : kCommands) {
    EXPECT_THAT(help, HasSubstr("\n  " + command + "  "));
  }
  EXPECT_THAT(optionsOf(""), UnorderedElementsAreArray({"--help", "--version"}));
}

TEST(Manual, HasNothingThatItsCheckerDiagnostics) {
  if (!hasProgram("mandoc")) {
    GTEST_SKIP() << "mandoc is not installed";
  }
  const Outcome outcome =
      runThrough({"mandoc", "-T", "lint", "-W", "warning", TAVINSTALL_SOURCE_DIR "/docs/man/tavinstall.1"});
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.status, 0);
}

}  // namespace
}  // namespace tavenhall::test
