// How the page ends before its install does, and what becomes of the terminal and of the engine.
#include "tests/support/children.h"
#include "tests/support/files.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/kept_screens.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <string>
#include <unistd.h>

namespace tavenhall::test {
namespace {

using testing::HasSubstr;

using TerminalLeaving = InUtf8;

// A copy at 43 % that ends when it may, and says so by a file.
constexpr const char* kLongCopy =
    "thread\n"
    "instructions Now installing.\n"
    "max 1953125\n"
    "value 840000\n"
    "status Installing... Keyboards\n"
    "wait /tmp/go\n"
    "ready 1\n"
    "next 1\n"
    "run touch /tmp/finished\n";

// A page whose copy runs, in a terminal; its program and its engine.
struct RunningInstall {
  explicit RunningInstall(const std::string& script = kLongCopy, const std::vector<std::string>& arguments = {})
      : terminal(80, 24, commandFor(script, arguments)) {
    terminal.waitFor("Press Continue to begin.");
    terminal.press({"Enter"});
    terminal.waitFor("43 %");
    program = terminal.program();
    const auto children = childrenOf(program);
    EXPECT_EQ(children.size(), 1U);
    engine = children.empty() ? -1 : children[0];
  }

  static std::vector<std::string> commandFor(const std::string& script,
                                             const std::vector<std::string>& arguments) {
    std::vector<std::string> command = runScript(script);
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
  }

  TmuxTerminal terminal;
  pid_t program = -1;
  pid_t engine = -1;
};

void expectTerminalAsBefore(TmuxTerminal& terminal) {
  EXPECT_EQ(terminal.ask("#{alternate_on} #{cursor_flag} #{mouse_any_flag} #{keypad_cursor_flag}"), "0 1 0 0");
}

TEST_F(TerminalLeaving, ControlCAsksAndWarnsOfAnIncompleteInstall) {
  RunningInstall install;
  install.terminal.press({"C-c"});
  install.terminal.waitFor("Leave the installer?");
  expectScreen(install.terminal, "leave");
  install.terminal.press({"Enter"});
  install.terminal.waitUntilGone("Leave the installer?");
  let("go");
  install.terminal.waitFor("[ Continue ]");
}

TEST_F(TerminalLeaving, LeavingEndsTheEngineAndGivesTheTerminalBack) {
  RunningInstall install;
  install.terminal.press({"C-c"});
  install.terminal.waitFor("Leave the installer?");
  install.terminal.press({"l"});
  const std::string shown = install.terminal.waitFor("[ended with");
  EXPECT_THAT(shown, HasSubstr("Stopped. The files copied so far are kept. Run the installer again to"));
  EXPECT_THAT(shown, HasSubstr("[ended with 4]"));
  waitForEndOf(install.engine);
  EXPECT_FALSE(exists("/tmp/finished"));
  expectTerminalAsBefore(install.terminal);
}

TEST_F(TerminalLeaving, LeavingTheFirstPageInstallsNothing) {
  TmuxTerminal terminal(80, 24, runScript(kLongCopy));
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Escape"});
  terminal.waitFor("Nothing has been installed yet.");
  terminal.press({"Tab", "Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with"), HasSubstr("Nothing was installed."));
}

TEST_F(TerminalLeaving, AnInterruptFromOutsideAsksToo) {
  RunningInstall install;
  kill(install.program, SIGINT);
  install.terminal.waitFor("Leave the installer?");
}

TEST_F(TerminalLeaving, BeingTerminatedEndsTheEngineAndGivesTheTerminalBack) {
  RunningInstall install;
  kill(install.program, SIGTERM);
  EXPECT_THAT(install.terminal.waitFor("[ended with"), HasSubstr("[ended with 4]"));
  waitForEndOf(install.engine);
  expectTerminalAsBefore(install.terminal);
}

TEST_F(TerminalLeaving, ATerminalThatGoesAwayDoesNotStopTheInstall) {
  RunningInstall install(kLongCopy, {"--summary", "/tmp/summary.json"});
  install.terminal.close();
  waitForEndOf(install.program);
  EXPECT_EQ(kill(install.engine, 0), 0) << "the engine went with its terminal";
  EXPECT_EQ(runThrough(runCommand({"--ui", "quiet"})).status, 5) << "it does not keep a second one out";
  let("go");
  waitForEndOf(install.engine);
  EXPECT_TRUE(exists("/tmp/finished"));
  const auto summary = nlohmann::json::parse(readFile("/tmp/summary.json"));
  EXPECT_EQ(summary["left"], true);
}

// A terminal that is not the one in front of the user: nobody sends a signal when it goes.
TEST_F(TerminalLeaving, StandardInputThatIsClosedDoesNotStopTheInstall) {
  const int keyboard = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_TRUE(keyboard >= 0 && grantpt(keyboard) == 0 && unlockpt(keyboard) == 0);
  std::string line = "exec";
  for (const std::string& word : runScript(kLongCopy)) {
    line += " '" + word + "'";
  }
  TmuxTerminal terminal(80, 24, {"/bin/sh", "-c", line + " <" + ptsname(keyboard)});
  terminal.waitFor("Press Continue to begin.");
  ASSERT_EQ(write(keyboard, "\n", 1), 1);
  terminal.waitFor("43 %");
  const pid_t program = terminal.program();
  const auto engine = childrenOf(program);
  ASSERT_EQ(engine.size(), 1U);
  close(keyboard);
  EXPECT_THAT(terminal.waitFor("[ended with"), HasSubstr("[ended with 1]"));
  expectTerminalAsBefore(terminal);
  EXPECT_EQ(kill(engine[0], 0), 0) << "the engine went with its page";
  let("go");
  waitForEndOf(engine[0]);
  EXPECT_TRUE(exists("/tmp/finished"));
}

TEST_F(TerminalLeaving, WithoutATerminalCommandsCanStillPrint) {
  const std::string script =
      "thread\nmax 1953125\nvalue 840000\nwait /tmp/go\n"
      "run for i in $(seq 20000); do echo 'a line that nobody reads any more' >&2; done; touch /tmp/spoken\n"
      "ready 1\nnext 1\n";
  RunningInstall install(script);
  install.terminal.close();
  waitForEndOf(install.program);
  let("go");
  waitForEndOf(install.engine);
  EXPECT_TRUE(exists("/tmp/spoken"));
}

TEST_F(TerminalLeaving, AnInstallWithoutItsTerminalWaitsAtAnAlertForAnother) {
  RunningInstall install(std::string(kLongCopy) +
                         "alert Next disc|Please insert B|OK\nrun touch /tmp/answered\n");
  install.terminal.close();
  waitForEndOf(install.program);
  let("go");
  TmuxTerminal another(80, 24, {kTavinstall, "attach"});
  another.waitFor("Please insert B");
  EXPECT_FALSE(exists("/tmp/answered"));
  another.press({"Enter"});
  waitForEndOf(install.engine);
  EXPECT_TRUE(exists("/tmp/answered"));
}

TEST_F(TerminalLeaving, ACrashOfThePageGivesTheTerminalBackAndHarmsNothing) {
  RunningInstall install;
  kill(install.program, SIGSEGV);
  EXPECT_THAT(install.terminal.waitFor("[ended with"), HasSubstr("[ended with 139]"));
  expectTerminalAsBefore(install.terminal);
  EXPECT_EQ(kill(install.engine, 0), 0);
  let("go");
  waitForEndOf(install.engine);
  EXPECT_TRUE(exists("/tmp/finished"));
}

TEST_F(TerminalLeaving, AnEngineThatIsKilledIsReportedOfOnTheLastPage) {
  RunningInstall install;
  kill(install.engine, SIGKILL);
  install.terminal.waitFor("The installation ended unexpectedly.");
  expectScreen(install.terminal, "ended-before-its-time");
  install.terminal.press({"Enter"});
  EXPECT_THAT(install.terminal.waitFor("[ended with"), HasSubstr("[ended with 1]"));
}

TEST_F(TerminalLeaving, APageThatWasStoppedForAWhileComesBack) {
  RunningInstall install;
  kill(install.program, SIGSTOP);
  waitUntilStopped(install.program);
  kill(install.program, SIGCONT);
  install.terminal.waitFor("43 %");
  let("go");
  install.terminal.waitFor("[ Continue ]");
}

}  // namespace
}  // namespace tavenhall::test
