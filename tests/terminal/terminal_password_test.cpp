// A command that asks for a password, as sudo does, while a page is up.
#include "tests/support/files.h"
#include "tests/support/private_root.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/kept_screens.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavenhall::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class TerminalPassword : public InUtf8 {
 protected:
  void SetUp() override {
    if (!isRealRoot()) {
      GTEST_SKIP() << "only a program with root's rights can open the commands' terminal";
    }
  }
};

// Asks as sudo does: on its terminal, with what is typed not shown; and writes down what it got.
constexpr const char* kAsker =
    "#!/bin/sh\n"
    "true </dev/tty || { echo none >/tmp/asked; exit 1; }\n"
    "exec 3<>/dev/tty\n"
    "stty -echo <&3\n"
    "printf '[sudo] password for tester: ' >&3\n"
    "if IFS= read -r word <&3; then echo \"got $word\" >>/tmp/asked; else echo refused >>/tmp/asked; fi\n"
    "stty echo <&3\n"
    "echo >&3\n";

void layProgram(const std::string& path, std::string_view text) {
  writeFile(path, text);
  ASSERT_EQ(chmod(path.c_str(), 0755), 0);
}

// A copy at 43 % in which a command asks, once "/tmp/go" is there.
std::vector<std::string> askingPage(const std::string& commands = "run /tmp/asker\n") {
  layProgram("/tmp/asker", kAsker);
  return runScript(
      "thread\n"
      "instructions Now installing the Tessaphon library.\n"
      "max 1953125\n"
      "value 840000\n"
      "status Installing... Keyboards\n"
      "wait /tmp/go\n" +
      commands + "log copied\nready 1\nnext 1\n");
}

void expectAsked(const std::string& answers) {
  EXPECT_TRUE(comesTrue([&] { return exists("/tmp/asked") && readFile("/tmp/asked") == answers; }))
      << "never " << answers << "; but " << (exists("/tmp/asked") ? readFile("/tmp/asked") : "nothing");
}

void enter(TmuxTerminal& terminal) {
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  terminal.waitFor("43 %");
  let("go");
}

TEST_F(TerminalPassword, IsAskedForInAWindowThatDoesNotShowIt) {
  TmuxTerminal terminal(80, 24, askingPage());
  enter(terminal);
  expectScreen(terminal, "password");
  terminal.press({"o", "p", "e", "n", "Space", "c", "é"});
  expectScreen(terminal, "password-typed");
  terminal.press({"Enter"});
  expectAsked("got open cé\n");
  terminal.waitFor("[ Continue ]");
  EXPECT_THAT(terminal.screen(), Not(HasSubstr("password")));
}

TEST_F(TerminalPassword, IsWrittenNowhere) {
  std::vector<std::string> command = askingPage("run /tmp/asker; rm /tmp/asked\n");
  command.insert(command.end(), {"--summary", "/tmp/summary.json"});
  TmuxTerminal terminal(80, 24, command);
  enter(terminal);
  terminal.waitFor("A password is needed");
  terminal.press({"s", "e", "s", "a", "m", "e", "Enter"});
  terminal.waitFor("[ Continue ]");
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("The installation was successful."), Not(HasSubstr("sesame")));
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with 0]"), Not(HasSubstr("sesame")));
  EXPECT_THAT(readFile("/tmp/summary.json"), Not(HasSubstr("sesame")));
  EXPECT_THAT(readFile("/Users/tester/Library/Caches/Tavenhall/installationLog.txt"),
              testing::AllOf(HasSubstr("copied"), Not(HasSubstr("sesame"))));
}

TEST_F(TerminalPassword, IsTakenBackWithBackspaceAndControlU) {
  TmuxTerminal terminal(80, 24, askingPage());
  enter(terminal);
  terminal.waitFor("A password is needed");
  terminal.press({"w", "r", "o", "n", "g", "C-u", "r", "i", "g", "h", "t", "ü", "BSpace", "Enter"});
  expectAsked("got right\n");
}

TEST_F(TerminalPassword, IsAskedForAsOftenAsTheCommandWants) {
  TmuxTerminal terminal(80, 24, askingPage("run /tmp/asker; echo 'Sorry, try again.' >/dev/tty; /tmp/asker\n"));
  enter(terminal);
  terminal.waitFor("A password is needed");
  terminal.press({"a", "Enter"});
  terminal.waitFor("Sorry, try again.");
  terminal.waitFor("A password is needed");
  terminal.press({"b", "Enter"});
  expectAsked("got a\ngot b\n");
}

TEST_F(TerminalPassword, EscapeAloneRefusesNothing) {
  TmuxTerminal terminal(80, 24, askingPage());
  enter(terminal);
  terminal.waitFor("A password is needed");
  terminal.press({"Escape"});
  terminal.waitForColoured("[ Cancel ]");
  EXPECT_FALSE(exists("/tmp/asked"));
  terminal.press({"Enter"});
  expectAsked("refused\n");
  terminal.waitFor("[ Continue ]");
}

TEST_F(TerminalPassword, AQuestionThatTheCommandTakesBackGoes) {
  layProgram("/tmp/hasty",
             "#!/bin/sh\nexec 3<>/dev/tty\nstty -echo <&3\nprintf 'Password: ' >&3\n"
             "while [ ! -e /tmp/more ]; do sleep 0.05; done\nstty echo <&3\necho >&3\necho 'too late' >&2\n");
  TmuxTerminal terminal(80, 24, askingPage("run /tmp/hasty\n"));
  enter(terminal);
  terminal.waitFor("A password is needed");
  terminal.press({"x"});
  let("more");
  terminal.waitUntilGone("A password is needed");
  terminal.waitFor("too late");
  terminal.waitFor("[ Continue ]");
}

TEST_F(TerminalPassword, LeavingIsAskedAboveIt) {
  TmuxTerminal terminal(80, 24, askingPage());
  enter(terminal);
  terminal.waitFor("A password is needed");
  terminal.press({"C-c"});
  terminal.waitFor("Leave the installer?");
  terminal.press({"g"});
  terminal.waitUntilGone("Leave the installer?");
  terminal.press({"y", "e", "s", "Enter"});
  expectAsked("got yes\n");
}

// Puts a file of this test's in the place of the system's, in this test's own mount namespace.
void replaceFile(const std::string& path, const std::string& text, mode_t mode) {
  const std::string own = "/Library/" + std::filesystem::path(path).filename().string();
  writeFile(own, text);
  ASSERT_EQ(chmod(own.c_str(), mode), 0);
  ASSERT_EQ(mount(own.c_str(), path.c_str(), nullptr, MS_BIND, nullptr), 0) << path;
}

// With all that is in it.
void giveTo(uid_t user, const std::string& folder) {
  ASSERT_EQ(chown(folder.c_str(), user, user), 0);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    ASSERT_EQ(lchown(entry.path().c_str(), user, user), 0);
  }
}

// The system's own sudo, and a user who may use it with the password "open sesame".
std::vector<std::string> asUserWithSudo(const std::vector<std::string>& page) {
  constexpr uid_t kUser = 4321;
  replaceFile("/etc/passwd", readFile("/etc/passwd") + "tester:x:4321:4321::/Users/tester:/bin/sh\n", 0644);
  replaceFile("/etc/shadow",
              "tester:$6$tavinstall$srIyQlS/Xr7WDyJI48YxpH/I4ZtzHzt1tlWS7qgU/"
              "KR13IdhggQwnx8pzW60ffEiMzhrXITKxYrOThQHeM4JY/:20000:0:99999:7:::\n",
              0640);
  replaceFile("/etc/sudoers",
              "Defaults lecture=never, !syslog, timestampdir=/Library/sudo\ntester ALL=(ALL) ALL\n", 0440);
  std::vector<std::string> command{"/usr/bin/setpriv",    "--reuid",       std::to_string(kUser), "--regid",
                                   std::to_string(kUser), "--clear-groups"};
  command.insert(command.end(), page.begin(), page.end());
  std::filesystem::remove("/tmp/TavInstallLoc");
  giveTo(kUser, "/Users/tester");
  giveTo(kUser, "/Volumes");
  return command;
}

bool canMakeUpAUser() { return isRealRoot() && exists("/usr/bin/sudo"); }

void typeThePassword(TmuxTerminal& terminal) {
  terminal.press({"o", "p", "e", "n", "Space", "s", "e", "s", "a", "m", "e", "Enter"});
}

TEST_F(TerminalPassword, TheRealSudoAsksInTheWindowAndOnce) {
  if (!canMakeUpAUser()) {
    GTEST_SKIP() << "needs root, to make up a user, and sudo";
  }
  const auto page = askingPage("run sudo mkdir /Library/Made\nrun sudo chmod 777 /Library/Made\n");
  TmuxTerminal terminal(80, 24, asUserWithSudo(page), {{"PATH", "/usr/bin:/bin"}});
  enter(terminal);
  terminal.waitFor("[sudo] password for tester:");
  terminal.press({"n", "o", "Enter"});
  terminal.waitFor("try again");
  terminal.waitFor("[sudo] password for tester:");
  typeThePassword(terminal);
  terminal.waitFor("[ Continue ]");
  EXPECT_EQ(std::filesystem::status("/Library/Made").permissions(), std::filesystem::perms(0777));
}

// Reads every terminal that it can open, again and again.
constexpr const char* kThief =
    "#!/bin/sh\n"
    "for terminal in /dev/tty /dev/pts/[0-9]*; do\n"
    "  while :; do IFS= read -r word <$terminal && echo \"$word\" >>/tmp/stolen; sleep 0.02; done &\n"
    "done\n"
    "touch /tmp/at-work\n";

TEST_F(TerminalPassword, AProcessThatACommandLeftBehindDoesNotGetIt) {
  if (!canMakeUpAUser()) {
    GTEST_SKIP() << "needs root, to make up a user, and sudo";
  }
  layProgram("/tmp/thief", kThief);
  const auto page = askingPage("run /tmp/thief\nrun sudo mkdir /Library/Made\n");
  TmuxTerminal terminal(80, 24, asUserWithSudo(page), {{"PATH", "/usr/bin:/bin"}});
  enter(terminal);
  terminal.waitFor("[sudo] password for tester:");
  ASSERT_TRUE(exists("/tmp/at-work"));
  typeThePassword(terminal);
  terminal.waitFor("[ Continue ]");
  EXPECT_TRUE(exists("/Library/Made"));
  EXPECT_FALSE(exists("/tmp/stolen")) << readFile("/tmp/stolen");
}

TEST_F(TerminalPassword, WithoutThePageTheCommandFailsAndTheInstallGoesOn) {
  TmuxTerminal terminal(80, 24, askingPage("run /tmp/asker\nrun touch /tmp/finished\n"));
  enter(terminal);
  terminal.waitFor("A password is needed");
  const pid_t program = terminal.program();
  terminal.close();
  waitForEndOf(program);
  EXPECT_TRUE(comesTrue([] { return exists("/tmp/finished"); }));
  expectAsked("refused\n");
}

// ---- Plain lines ----

std::vector<std::string> asPlainLines(std::vector<std::string> command) {
  command.insert(command.end(), {"--ui", "plain"});
  return command;
}

TEST_F(TerminalPassword, PlainLinesAskOnTheTerminalWithoutShowingIt) {
  TmuxTerminal terminal(80, 24, asPlainLines(askingPage()));
  terminal.waitFor("Now installing");
  let("go");
  terminal.waitFor("? A command prompts: [sudo] password for tester:");
  terminal.press({"s", "e", "s", "a", "m", "e", "Enter"});
  const std::string shown = terminal.waitFor("[ended with 0]");
  expectAsked("got sesame\n");
  EXPECT_THAT(shown, Not(HasSubstr("sesame")));
  EXPECT_THAT(shown, HasSubstr("? A command prompts: [sudo] password for tester:\nInstalled"));
  // The terminal shows again what is typed.
  terminal.press({"h", "i"});
  terminal.waitFor("hi");
}

TEST_F(TerminalPassword, PlainLinesAskThoughTheyGoElsewhere) {
  std::string line = "exec";
  for (const std::string& word : asPlainLines(askingPage())) {
    line += " '" + word + "'";
  }
  TmuxTerminal terminal(80, 24, {"/bin/sh", "-c", line + " >/tmp/lines </dev/null"});
  let("go");
  EXPECT_THAT(terminal.waitFor("? A command prompts: [sudo] password for tester:"),
              Not(HasSubstr("Installing")));
  terminal.press({"s", "Enter"});
  terminal.waitFor("[ended with 0]");
  expectAsked("got s\n");
  EXPECT_THAT(readFile("/tmp/lines"), Not(HasSubstr("password")));
}

TEST_F(TerminalPassword, PlainLinesTakeTheEndOfInputAsARefusal) {
  TmuxTerminal terminal(80, 24, asPlainLines(askingPage()));
  let("go");
  terminal.waitFor("? A command prompts:");
  terminal.press({"C-d"});
  terminal.waitFor("[ended with 0]");
  expectAsked("refused\n");
}

TEST_F(TerminalPassword, StoppingPlainLinesAtAQuestionGivesTheTerminalBack) {
  TmuxTerminal terminal(80, 24, asPlainLines(askingPage("run /tmp/asker\nwait /tmp/never\n")));
  let("go");
  terminal.waitFor("? A command prompts:");
  terminal.press({"C-c"});
  EXPECT_THAT(terminal.waitFor("[ended with 4]"), HasSubstr("! Stopped."));
  terminal.press({"h", "i"});
  terminal.waitFor("hi");
  EXPECT_FALSE(exists("/tmp/asked"));
}

TEST_F(TerminalPassword, WithoutATerminalTheCommandReportsThatItCannotPrompt) {
  let("go");
  std::vector<std::string> command = asPlainLines(askingPage());
  command.insert(command.begin(), {"/usr/bin/setsid", "--wait"});
  const Outcome outcome = runThrough(command);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(readFile("/tmp/asked"), "none\n");
  EXPECT_THAT(outcome.error, HasSubstr("/dev/tty"));
}

}  // namespace
}  // namespace tavenhall::test
