// A frontend that does not read stops no install, and has everything to show when it reads again.
#include "tests/install/child_program.h"
#include "tests/support/children.h"
#include "tests/support/files.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {
namespace {

using testing::HasSubstr;

// Far more than a pipe holds.
constexpr const char* kManyFailures =
    "thread\ninstructions Now installing.\nmax 1953125\nvalue 840000\nlog The copy runs.\nwait /tmp/go\n"
    "sheets 15000 Failed to open input file.\nready 1\nnext 1\nrun touch /tmp/finished\n";

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
  EXPECT_EQ(failures, 15000U);
  EXPECT_THAT(shown, HasSubstr("! Not installed completely"));
}

TEST(StalledFrontend, TheTerminalPageComesToItsLastPage) {
  let("go");
  TmuxTerminal terminal(80, 24, runScript(kManyFailures));
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  terminal.waitFor("(15 000 times)");
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
    EXPECT_EQ(program.waitForEnd(), 4);
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
            15000);
  EXPECT_THAT(lines.back(), HasSubstr(R"("event":"summary")"));
  EXPECT_EQ(program.waitForEnd(), 0);
}

// A standard output that does not block is one that another program has set so; it must not lose a line.
TEST(StalledFrontend, AnOutputThatDoesNotBlockGetsEverySheet) {
  const std::vector<std::string> command = installWith("json");
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  ASSERT_EQ(fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
  writeFile("/tmp/requests", "{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n{\"do\":\"forward\"}\n");
  const pid_t program = fork();
  ASSERT_GE(program, 0);
  if (program == 0) {
    dup2(open("/tmp/requests", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    dup2(ends[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    for (const std::string& word : command) {
      arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
  }
  close(ends[1]);
  let("go");
  EXPECT_TRUE(comesTrue([] { return exists("/tmp/finished"); }));
  std::string text;
  std::array<char, 65536> piece;
  for (ssize_t count = 0; (count = read(ends[0], piece.data(), piece.size())) > 0;) {
    text.append(piece.data(), static_cast<std::size_t>(count));
  }
  int status = 0;
  waitpid(program, &status, 0);
  EXPECT_EQ(status, 0);
  std::size_t sheets = 0;
  for (std::size_t at = 0; (at = text.find("{\"event\":\"sheet\"", at)) != std::string::npos; ++at) {
    ++sheets;
  }
  EXPECT_EQ(sheets, 15000U);
  EXPECT_NE(text.find("{\"event\":\"summary\""), std::string::npos);
  EXPECT_TRUE(text.ends_with("}\n"));
}

}  // namespace
}  // namespace tavenhall::test
