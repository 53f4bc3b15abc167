#include "tests/rehearse/rehearsals.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/tmux_terminal.h"

#include <filesystem>

// Rehearsals that somebody watches.
namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using RehearseTerminal = InUtf8;

constexpr int kRows = 60;  // the report stays on the screen as a whole

TEST_F(RehearseTerminal, TheDiscsFollowThePageAndTheReportFollowsTheLastPage) {
  makeDiscSet();
  TmuxTerminal terminal(100, kRows, rehearseCommand({"--product", "Lumaweave"}));
  const std::string introduction = terminal.waitFor("Press Continue to begin.");
  EXPECT_THAT(introduction, HasSubstr("This is a rehearsal in"));
  EXPECT_THAT(introduction, HasSubstr("/Users/rehearsal/Library/Application Support/Tavenhall/DOVA"));
  EXPECT_THAT(introduction, Not(HasSubstr("/tmp/tavinstall-")));
  terminal.press({"Enter"});
  for (int disc = 1; disc <= 2; ++disc) {
    terminal.waitFor("Please insert Tavenhall Lumaweave");
    terminal.press({"Enter"});
    terminal.waitUntilGone("Please insert Tavenhall Lumaweave");
  }
  terminal.waitFor("100 %");
  terminal.waitFor("[ Continue ]");
  terminal.press({"c"});
  terminal.waitFor("The installation was successful.");
  terminal.press({"Enter"});
  const std::string last = terminal.waitFor("[ended with 0]");
  EXPECT_THAT(last, HasSubstr("Rehearsal of /Users/tester/Installer\n"));
  EXPECT_THAT(last,
              HasSubstr("  files        2 files identical, 0 differ, 0 missing, 0 replaced by a later copy\n"));
  EXPECT_THAT(last, HasSubstr("Rehearsal passed: everything was installed, no problems found.\n"));
  EXPECT_THAT(last, Not(HasSubstr("The log is"))) << "it went with the sandbox";
  EXPECT_EQ(terminal.ask("#{alternate_on} #{cursor_flag} #{mouse_any_flag}"), "0 1 0");
  EXPECT_THAT(promptsReported(), ElementsAre("Tavenhall Lumaweave: inserted", "Tavenhall Lumaweave: inserted"));
  expectNothingLeft();
}

TEST_F(RehearseTerminal, AMissingDiscEndsThePageAndIsNamedInTheReport) {
  makeDiscSet("Mode = InstallFromVolumes\nNumberOfVolumes = 1\nTotalSizeMillionsBytes = 1\n");
  TmuxTerminal terminal(100, kRows, rehearseCommand({"--product", "Bassoria", "--ui", "terminal"}));
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  const std::string shown = terminal.waitFor("The installation ended unexpectedly.");
  EXPECT_THAT(shown, HasSubstr("the set has no disc Tavenhall Bassoria"));
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with 1]"),
              HasSubstr("FAILED: the page asks for a disc that the set does not have: Tavenhall Bassoria\n"));
  expectNothingLeft();
}

TEST_F(RehearseTerminal, LeavingBeforeItBeginsInstallsNothing) {
  makeDiscSet();
  TmuxTerminal terminal(100, kRows, rehearseCommand({"--product", "Lumaweave"}));
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"C-c"});
  terminal.waitFor("Leave the installer?");
  terminal.press({"l"});
  const std::string shown = terminal.waitFor("[ended with 1]");
  EXPECT_THAT(shown,
              HasSubstr("Nothing was installed.\ntavinstall: the rehearsal was stopped; there is no report\n"));
  expectNothingLeft();
}

TEST_F(RehearseTerminal, LeavingInTheMiddleReportsThatNothingRemains) {
  makeDiscSet();
  TmuxTerminal terminal(100, kRows, rehearseCommand({"--product", "Lumaweave"}));
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  terminal.waitFor("Please insert Tavenhall Lumaweave");
  terminal.press({"C-c"});
  terminal.waitFor("Leave the installer?");
  terminal.press({"l"});
  EXPECT_THAT(terminal.waitFor("[ended with 1]"), HasSubstr("Stopped. Nothing was kept.\n"));
  expectNothingLeft();
}

TEST(RehearsePlain, IsTheFrontendWhereThereIsNoTerminal) {
  makeDownloadSet();
  const Outcome outcome = runThrough(rehearseCommand());
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.output, testing::StartsWith("Installing\n"));
  EXPECT_THAT(outcome.output, HasSubstr("100 %\n"));
  EXPECT_THAT(outcome.output, Not(HasSubstr("The log is")));
}

TEST(RehearsePlain, QuestionsAreAnsweredOnStandardInput) {
  makeDiscSet();
  const Outcome outcome =
      runThrough(rehearseCommand({"--product", "Lumaweave", "--ui", "plain"}), {}, "1\n1\n");
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.error;
  EXPECT_THAT(outcome.output,
              HasSubstr("? Ready for next volume\n  Please insert Tavenhall Lumaweave\n  1) OK\n"));
}

TEST(RehearsePlain, AnUnansweredAlertFails) {
  makeDiscSet();
  const Outcome outcome = runThrough(rehearseCommand({"--product", "Lumaweave", "--ui", "plain"}));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, HasSubstr("FAILED: the installation did not finish\n"));
}

TEST(RehearseJson, AProgramGivesTheAnswersAndTheReportStaysOutOfItsLines) {
  makeUpdateSet();
  const Outcome outcome =
      runThrough(rehearseCommand({"--ui", "json"}), {},
                 "{\"answer\":1000}\n{\"do\":\"enter\"}\n{\"answer\":1001}\n{\"do\":\"wait\"}\n"
                 "{\"do\":\"forward\"}\n{\"do\":\"quit\"}\n");
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.error, HasSubstr("Rehearsal passed: everything was installed, no problems found.\n"));
  EXPECT_THAT(outcome.output, Not(HasSubstr("Rehearsal of")));
  EXPECT_THAT(outcome.output, HasSubstr(R"({"event":"exit","direction":0,"allowed":true})"));
  EXPECT_EQ(report()["alerts"][0]["answer"], 1000) << "given before its question";
  EXPECT_EQ(report()["alerts"][1]["answer"], 1001);
}

}  // namespace
}  // namespace tavenhall::test
