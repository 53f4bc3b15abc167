// A frontend that does not read stops no install, and has everything to show when it reads again.
#include "tests/install/child_program.h"
#include "tests/support/children.h"
#include "tests/support/files.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

namespace tavenhall::test {
namespace {

using testing::HasSubstr;

// Far more than a pipe holds.
constexpr const char* kManyFailures =
    "thread\ninstructions Now installing.\nmax 1953125\nvalue 840000\nlog The copy runs.\nwait /tmp/go\n"
    "sheets 50000 Failed to open input file.\nready 1\nnext 1\nrun touch /tmp/finished\n";

std::vector<std::string> installWith(const char* frontend) {
  std::vector<std::string> command = runScript(kManyFailures);
  command.insert(command.end(), {"--ui", frontend});
  return command;
}

// Has ended, and waits for its parent to take note.
bool isZombie(pid_t process) {
  const std::string status = readFile("/proc/" + std::to_string(process) + "/status");
  return status.find("\nState:\tZ") != std::string::npos;
}

bool copyRuns() { return exists(kLog) && readFile(kLog).find("The copy runs.") != std::string::npos; }

TEST(StalledFrontend, PlainLinesShowEveryFailureToTheEnd) {
  let("go");
  ChildProgram program(installWith("plain"));
  const std::string shown = program.readAll();
  EXPECT_EQ(program.waitForEnd(), 1);
  std::size_t failures = 0;
  for (std::size_t at = 0; (at = shown.find("! Failed to open input file.\n", at)) != std::string::npos; ++at) {
    ++failures;
  }
  EXPECT_EQ(failures, 50000U);
  EXPECT_THAT(shown, HasSubstr("! Not installed completely"));
}

TEST(StalledFrontend, TheTerminalPageComesToItsLastPage) {
  let("go");
  TmuxTerminal terminal(80, 24, runScript(kManyFailures));
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  terminal.waitFor("(50 000 times)");
  terminal.press({"Enter"});
  terminal.waitFor("[ Continue ]");
  terminal.press({"Enter"});
  terminal.waitFor("The installation is not complete.");
  terminal.press({"Enter"});
  EXPECT_THAT(terminal.waitFor("[ended with"), HasSubstr("[ended with 1]"));
}

TEST(StalledFrontend, AStoppedPlainFrontendStopsNoInstall) {
  ChildProgram program(installWith("plain"));
  ASSERT_TRUE(comesTrue(copyRuns));
  kill(program.pid(), SIGSTOP);
  let("go");
  EXPECT_TRUE(comesTrue([] { return exists("/tmp/finished"); })) << "the install waits for its frontend";
  kill(program.pid(), SIGCONT);
  EXPECT_THAT(program.readAll(), HasSubstr("! Not installed completely"));
  EXPECT_EQ(program.waitForEnd(), 1);
}

TEST(StalledFrontend, AFullStandardOutputStopsNoInstall) {
  ChildProgram program(installWith("plain"));
  ASSERT_TRUE(comesTrue(copyRuns));
  let("go");  // nobody reads what the frontend prints, which is more than its pipe holds
  EXPECT_TRUE(comesTrue([] { return exists("/tmp/finished"); }));
  EXPECT_THAT(program.readAll(), HasSubstr("! Not installed completely"));
  EXPECT_EQ(program.waitForEnd(), 1);
}

TEST(StalledFrontend, AFullStandardOutputTakesSignals) {
  for (const int signal : {SIGTERM, SIGINT}) {
    std::filesystem::remove(kLog);
    std::filesystem::remove("/tmp/go");
    ChildProgram program(installWith("plain"));
    ASSERT_TRUE(comesTrue(copyRuns));
    let("go");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));  // until the pipe is full
    kill(program.pid(), signal);
    EXPECT_TRUE(comesTrue([&program] { return kill(program.pid(), 0) != 0 || isZombie(program.pid()); }));
    EXPECT_EQ(program.waitForEnd(), 1);
  }
}

TEST(StalledFrontend, AProgramThatReadsNothingStopsNoInstallAndGetsEverySheet) {
  ChildProgram program(installWith("json"));
  program.write("{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n{\"do\":\"forward\"}\n");
  program.closeInput();
  ASSERT_TRUE(comesTrue(copyRuns));
  let("go");
  EXPECT_TRUE(comesTrue([] { return exists("/tmp/finished"); }));
  const std::vector<std::string> lines = program.readLines();
  EXPECT_EQ(std::ranges::count_if(
                lines, [](const std::string& line) { return line.starts_with(R"({"event":"sheet")"); }),
            50000);
  EXPECT_THAT(lines.back(), HasSubstr(R"("event":"summary")"));
  EXPECT_EQ(program.waitForEnd(), 0);
}

}  // namespace
}  // namespace tavenhall::test
