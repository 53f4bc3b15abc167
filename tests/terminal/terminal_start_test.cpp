// Whether there is a page on the terminal at all.
#include "tests/install/child_program.h"
#include "tests/support/files.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <gmock/gmock.h>
#include <string>

namespace tavenhall::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using TerminalStart = InUtf8;

constexpr const char* kShortPage = "thread\ninstructions Now installing.\nready 1\nnext 1\n";

std::vector<std::string> with(std::vector<std::string> command, const std::vector<std::string>& more) {
  command.insert(command.end(), more.begin(), more.end());
  return command;
}

TEST_F(TerminalStart, OnATerminalThePageIsTheDefault) {
  TmuxTerminal terminal(80, 24, runScript(kShortPage));
  terminal.waitFor("Welcome to the Tessaphon installer");
}

TEST_F(TerminalStart, ADumbTerminalGetsPlainLinesOnceTheUserContinues) {
  TmuxTerminal terminal(80, 24, with(runScript(kShortPage), {"--ui", "terminal"}), {{"TERM", "dumb"}});
  EXPECT_THAT(terminal.waitFor("2) Do Not Install"),
              AllOf(HasSubstr("This terminal (dumb) cannot show the page. Plain lines follow."),
                    HasSubstr("  1) Continue"), Not(HasSubstr("Now installing."))));
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with"),
              AllOf(HasSubstr("  Now installing."), HasSubstr("[ended with 0]")));
}

TEST_F(TerminalStart, OnAnUnknownTerminalTheUserNeedNotContinue) {
  TmuxTerminal terminal(80, 24, runScript(kShortPage), {{"TERM", "no-such-terminal"}});
  terminal.waitFor("2) Do Not Install");
  terminal.press({"2", "Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with"),
              AllOf(HasSubstr("! Stopped. Nothing was installed."), HasSubstr("[ended with 4]"),
                    Not(HasSubstr("Now installing."))));
}

TEST_F(TerminalStart, WithoutATerminalThereArePlainLines) {
  const Outcome outcome = runThrough(with(runScript(kShortPage), {"--ui", "terminal"}));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, AllOf(HasSubstr("Scripted Page\n  Now installing.\n"), Not(HasSubstr("\033"))));
}

TEST_F(TerminalStart, ReportsAnEngineThatCannotStartWithoutAPage) {
  writeFile(kPackageFile, "");
  TmuxTerminal terminal(80, 24, runCommand({"--without-attributes", "--bundle", "/tmp/nothing"}));
  EXPECT_THAT(terminal.waitFor("[ended with"),
              AllOf(HasSubstr("tavinstall: cannot load /tmp/nothing: it has no Contents/MacOS/InstallDataPane"),
                    HasSubstr("[ended with 2]")));
}

// ---- One install at a time ----

TEST_F(TerminalStart, ASecondInstallOfTheSameUserIsRefused) {
  const auto command = runScript(kShortPage);
  TmuxTerminal terminal(80, 24, command);
  terminal.waitFor("Press Continue to begin.");
  for (const char* frontend : {"quiet", "json"}) {
    const Outcome second = runThrough(with(command, {"--ui", frontend}));
    EXPECT_EQ(second.status, 5) << frontend;
    EXPECT_EQ(second.error,
              "tavinstall: another installation of yours is running; see \"tavinstall status\"\n");
  }
}

TEST_F(TerminalStart, ASecondInstallOffersToShowTheFirst) {
  const auto command = runScript("instructions Now installing.\nalert Next disc|Please insert B|OK\n");
  ChildProgram first(with(command, {"--ui", "plain"}));
  for (auto line = first.readLine(); line && line != "  1) OK"; line = first.readLine()) {
  }
  TmuxTerminal refusing(100, 24, command);
  refusing.waitFor("Another installation of yours is running. Show it? [Y/n]");
  refusing.press({"n", "Enter"});
  EXPECT_THAT(refusing.waitFor("[ended with"),
              HasSubstr("tavinstall: another installation of yours is running; "
                        "see \"tavinstall status\"\n[ended with 5]"));
  TmuxTerminal second(100, 24, command);
  second.waitFor("Show it? [Y/n]");
  second.press({"Enter"});
  second.waitFor("Please insert B");
  second.press({"Enter"});
  second.waitFor("The installation failed.");  // it has copied nothing
  EXPECT_EQ(first.waitForEnd(), 1);
}

TEST_F(TerminalStart, AnotherUsersInstallIsNotRefused) {
  const auto command = runScript(kShortPage);
  TmuxTerminal terminal(80, 24, command);
  terminal.waitFor("Press Continue to begin.");
  makeFolder("/Users/other");
  EXPECT_EQ(runThrough(with(command, {"--ui", "plain"}), {{"HOME", "/Users/other"}}).status, 0);
}

TEST_F(TerminalStart, AfterAnInstallNothingIsLeftOfItsLock) {
  const auto command = with(runScript(kShortPage), {"--ui", "plain"});
  EXPECT_EQ(runThrough(command).status, 0);
  EXPECT_EQ(runThrough(command).status, 0);
  EXPECT_THAT(treeOf("/Users/tester/Library/Application Support"),
              testing::ElementsAre("Tavenhall/", "Tavenhall/TANVO/", "Tavenhall/TANVO/1.db"));
}

TEST_F(TerminalStart, ACommandThatOutlivesTheInstallDoesNotHoldTheLock) {
  const auto command =
      with(runScript("thread\nrun sleep 60 >/dev/null 2>&1 &\nready 1\nnext 1\n"), {"--ui", "plain"});
  EXPECT_EQ(runThrough(command).status, 0);
  EXPECT_EQ(runThrough(command).status, 0);
}

}  // namespace
}  // namespace tavenhall::test
