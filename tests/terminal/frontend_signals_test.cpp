// What signals and closed pipes do to each frontend but the terminal page, whose own are in
// terminal_leaving_test.
#include "tests/install/child_program.h"
#include "tests/support/children.h"
#include "tests/support/files.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <csignal>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace tavenhall::test {
namespace {

using testing::HasSubstr;

// A copy that ends when it may, and says so by a file.
constexpr const char* kLoggedCopy =
    "thread\ninstructions Now installing.\nmax 1953125\nvalue 840000\nlog The copy runs.\nwait /tmp/go\n"
    "ready 1\nnext 1\nrun touch /tmp/finished\n";

std::vector<std::string> copyIn(const std::string& frontend, const std::string& script = kLoggedCopy) {
  std::vector<std::string> command = runScript(script);
  command.insert(command.end(), {"--ui", frontend, "--summary", "/tmp/summary.json"});
  if (frontend == "quiet") {
    command.insert(command.end(), {"--disc-timeout", "600"});
  }
  return command;
}

// Not by a command of the page's: while one runs, an interrupt is the command's.
void waitForCopy() {
  EXPECT_TRUE(
      comesTrue([] { return exists(kLog) && readFile(kLog).find("The copy runs.") != std::string::npos; }));
}

pid_t engineOf(const ChildProgram& program) {
  const std::vector<pid_t> children = childrenOf(program.pid());
  EXPECT_EQ(children.size(), 1U);
  return children.empty() ? -1 : children[0];
}

// ---- Plain lines ----

class PlainFrontendIsEnded : public testing::TestWithParam<int> {};

TEST_P(PlainFrontendIsEnded, WithItsEngineAndTheCommandThatRuns) {
  ChildProgram program(copyIn("plain", "thread\nrun touch /tmp/begun; sleep 600; touch /tmp/slept\n"));
  waitForFile("/tmp/begun");
  const pid_t engine = engineOf(program);
  kill(program.pid(), GetParam());
  EXPECT_THAT(program.readAll(), HasSubstr("! Stopped. The files copied so far are kept. Run the installer "
                                           "again to complete the installation.\n"));
  EXPECT_EQ(program.waitForEnd(), 4);
  waitForEndOf(engine);
  EXPECT_FALSE(exists("/tmp/slept"));
}

INSTANTIATE_TEST_SUITE_P(By, PlainFrontendIsEnded, testing::Values(SIGINT, SIGTERM), [](const auto& parameter) {
  return parameter.param == SIGINT ? "SIGINT" : "SIGTERM";
});

TEST(PlainFrontendSignals, AHangUpLeavesTheInstallToGoOn) {
  ChildProgram program(copyIn("plain"));
  waitForCopy();
  const pid_t engine = engineOf(program);
  kill(program.pid(), SIGHUP);
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_FALSE(exists("/tmp/finished"));
  let("go");
  waitForEndOf(engine);
  EXPECT_TRUE(exists("/tmp/finished"));
  EXPECT_EQ(nlohmann::json::parse(readFile("/tmp/summary.json"))["left"], true);
}

TEST(PlainFrontendSignals, ATerminalThatGoesAwayLeavesTheInstallToGoOn) {
  TmuxTerminal terminal(80, 24, copyIn("plain"));
  waitForCopy();
  const pid_t program = terminal.program();
  const std::vector<pid_t> engine = childrenOf(program);
  ASSERT_EQ(engine.size(), 1U);
  terminal.close();
  waitForEndOf(program);
  let("go");
  waitForEndOf(engine[0]);
  EXPECT_TRUE(exists("/tmp/finished"));
}

TEST(PlainFrontendSignals, ACrashEndsTheLinesAlone) {
  ChildProgram program(copyIn("plain"));
  waitForCopy();
  const pid_t engine = engineOf(program);
  kill(program.pid(), SIGABRT);
  EXPECT_EQ(program.waitForEnd(), 128 + SIGABRT);
  EXPECT_EQ(kill(engine, 0), 0) << "the engine ended with its frontend";
  let("go");
  waitForEndOf(engine);
  EXPECT_TRUE(exists("/tmp/finished"));
  EXPECT_EQ(nlohmann::json::parse(readFile("/tmp/summary.json"))["left"], true);
}

TEST(PlainFrontendSignals, AReaderThatGoesAwayEndsNothing) {
  std::string line = "exec 3>&1; { ";
  for (const std::string& word : copyIn("plain")) {
    line += "'" + word + "' ";
  }
  line += "; echo \"ended with $?\" >&3; } | head -n 1 >/dev/null; echo read";
  ChildProgram program({"/bin/sh", "-c", line});
  waitForCopy();
  let("go");
  EXPECT_EQ(program.readAll(), "ended with 0\nread\n");
  EXPECT_EQ(program.waitForEnd(), 0);
  EXPECT_TRUE(exists("/tmp/finished"));
}

// ---- No frontend ----

class WithoutAFrontend : public testing::TestWithParam<std::tuple<std::string, int>> {};

TEST_P(WithoutAFrontend, ASignalEndsTheRunAtOnce) {
  const auto& [frontend, signal] = GetParam();
  ChildProgram program(copyIn(frontend));
  if (frontend == "json") {
    program.write("{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n");
  }
  waitForCopy();
  kill(program.pid(), signal);
  const bool isCrash = signal == SIGABRT;
  EXPECT_EQ(program.waitForEnd(), isCrash ? 128 + signal : 4);
  EXPECT_FALSE(exists("/tmp/finished"));
  EXPECT_NE(exists("/tmp/summary.json"), isCrash);
}

INSTANTIATE_TEST_SUITE_P(By, WithoutAFrontend,
                         testing::Combine(testing::Values<std::string>("quiet", "json"),
                                          testing::Values(SIGINT, SIGTERM, SIGHUP, SIGABRT)),
                         [](const auto& parameter) {
                           return std::get<0>(parameter.param) + "BySignal" +
                                  std::to_string(std::get<1>(parameter.param));
                         });

TEST(JsonFrontendSignals, AReaderThatGoesAwayEndsNothing) {
  std::string line = "exec 3>&1; { ";
  for (const std::string& word : copyIn("json")) {
    line += "'" + word + "' ";
  }
  line += "; echo \"ended with $?\" >&3; } | head -n 1 >/dev/null; echo read";
  ChildProgram program({"/bin/sh", "-c", line});
  program.write("{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n{\"do\":\"forward\"}\n{\"do\":\"quit\"}\n");
  waitForCopy();
  let("go");
  EXPECT_EQ(program.readAll(), "ended with 0\nread\n");
  EXPECT_EQ(program.waitForEnd(), 0);
  EXPECT_EQ(nlohmann::json::parse(readFile("/tmp/summary.json"))["left"], true);
}

}  // namespace
}  // namespace tavenhall::test
