#include "tests/rehearse/rehearsals.h"

#include "tests/terminal/tmux_terminal.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <glob.h>
#include <thread>

// A rehearsal that is ended in the middle takes everything with it: images, processes, folders.
namespace tavenhall::test {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

constexpr const char* kStopped = "tavinstall: the rehearsal was stopped; there is no report\n";

std::vector<std::string> stoppableCommand(const std::vector<std::string>& arguments) {
  makeDiscSet();
  turnDiscsIntoImages();
  std::vector<std::string> command = rehearseCommand({"--product", "Lumaweave"});
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

// Whether there is such a file in a sandbox, as the page sees its path; also while files come and go.
bool isInSandbox(const std::string& path) {
  glob_t found{};
  const bool isThere = glob(("/tmp/tavinstall-*/root" + path).c_str(), GLOB_NOSORT, nullptr, &found) == 0;
  globfree(&found);
  return isThere;
}

// Until the page runs in its sandbox: both images are mounted, and the page has written its log.
void waitUntilUnderWay() {
  EXPECT_TRUE(comesTrue([] {
    return temporaryMounts().size() == 2 &&
           isInSandbox("/Users/rehearsal/Library/Caches/Tavenhall/installationLog.txt");
  }));
}

std::vector<pid_t> expectProcesses(pid_t program) {
  std::vector<pid_t> processes = descendantsOf(program);
  EXPECT_GE(processes.size(), 5U) << "two servers of images, the sandbox and its first process, the engine";
  processes.push_back(program);
  return processes;
}

class RehearseStop : public testing::TestWithParam<std::pair<std::string, int>> {};

TEST_P(RehearseStop, TakesEverythingWithIt) {
  const auto [frontend, signal] = GetParam();
  ChildProgram program(stoppableCommand({"--ui", frontend}));
  if (frontend == "json") {
    program.write("{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n");
  }
  waitUntilUnderWay();
  std::vector<pid_t> processes = expectProcesses(program.pid());
  processes.pop_back();  // the program itself is this test's to wait for
  kill(program.pid(), signal);
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_THAT(program.standardError(), HasSubstr(kStopped));
  EXPECT_FALSE(exists(kReport));
  expectNothingLeft(processes);
}

INSTANTIATE_TEST_SUITE_P(Frontends, RehearseStop,
                         testing::Values(std::pair("quiet", SIGTERM), std::pair("quiet", SIGINT),
                                         std::pair("quiet", SIGHUP), std::pair("json", SIGTERM),
                                         std::pair("json", SIGINT), std::pair("plain", SIGTERM),
                                         std::pair("plain", SIGINT)),
                         [](const auto& tried) {
                           const char* signal = tried.param.second == SIGTERM  ? "Term"
                                                : tried.param.second == SIGINT ? "Int"
                                                                               : "Hup";
                           return tried.param.first + signal;
                         });

// More events than a pipe holds, and nobody reads them.
TEST(RehearseStop, AStuckReaderOfJsonDoesNotHoldItUp) {
  makeDownloadSet();
  for (int i = 0; i < 2000; ++i) {
    writeFile(inSet("TANVO/Tessaphon/" + std::to_string(i) + ".db"), "x");
  }
  ChildProgram program(rehearseCommand({"--ui", "json"}));
  program.write("{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n{\"do\":\"forward\"}\n{\"do\":\"quit\"}\n");
  EXPECT_TRUE(comesTrue([] {
    return isInSandbox("/Users/rehearsal/Library/Application Support/Tavenhall/TANVO/Tessaphon/1999.db");
  }));
  std::this_thread::sleep_for(std::chrono::seconds(1));
  kill(program.pid(), SIGTERM);
  EXPECT_TRUE(comesTrue([&program] {
    return readFile("/proc/" + std::to_string(program.pid()) + "/stat").find(") Z ") != std::string::npos;
  }));
  EXPECT_EQ(program.waitForEnd(), 1);
  expectNothingLeft();
}

class RehearseKilled : public testing::TestWithParam<std::string> {};

TEST_P(RehearseKilled, LeavesNoMountAndNoProcess) {
  ChildProgram program(stoppableCommand({"--ui", GetParam()}));
  if (GetParam() == "json") {
    program.write("{\"do\":\"enter\"}\n{\"do\":\"wait\"}\n");
  }
  waitUntilUnderWay();
  std::vector<pid_t> processes = expectProcesses(program.pid());
  processes.pop_back();
  kill(program.pid(), SIGKILL);
  EXPECT_EQ(program.waitForEnd(), 128 + SIGKILL);
  std::ranges::for_each(processes, waitForEndOf);
  EXPECT_THAT(temporaryMounts(), SizeIs(0));
}

INSTANTIATE_TEST_SUITE_P(Each, RehearseKilled, testing::Values("quiet", "json", "plain"),
                         [](const auto& tried) { return tried.param; });

const std::string kHeld = "/Users/tester/bin/held";  // there once a slow tool runs

// With a tool that is held up for some seconds in a system call, if its command line matches `pattern`.
std::vector<std::string> commandWithASlow(const std::string& tool, const std::string& pattern,
                                          const std::string& call, const std::string& moment) {
  const std::string path = "/Users/tester/bin/" + tool;
  std::filesystem::create_directories("/Users/tester/bin");
  writeFile(path, "#!/bin/sh\ncase \"$*\" in " + pattern + ") touch " + kHeld +
                      "; exec strace -DDD -o /dev/null -e trace=" + call + " -e inject=" + call + ":" + moment +
                      "=3000000 /usr/bin/" + tool + " \"$@\" ;; esac\nexec /usr/bin/" + tool + " \"$@\"\n");
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  std::vector<std::string> command = rehearseCommand({"--ui", "quiet"});
  command.insert(command.begin(), {"env", "PATH=/Users/tester/bin:" + std::string(std::getenv("PATH"))});
  return command;
}

// Bubblewrap's first process has created the second one and lets it wait.
std::vector<std::string> commandWithASlowSandbox() {
  makeDownloadSet();
  return commandWithASlow("bwrap", "*' run '*", "clone", "delay_exit");
}

// Also false when it has ended by now.
bool isFirstOfItsNamespace(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("NSpid:") && line.ends_with("\t1")) {
      return true;
    }
  }
  return false;
}

std::vector<pid_t> waitForTheSecondProcess(pid_t program) {
  std::vector<pid_t> processes;
  EXPECT_TRUE(comesTrue([&processes, program] {
    processes = descendantsOf(program);
    return exists(kHeld) && std::ranges::any_of(processes, isFirstOfItsNamespace);
  }));
  return processes;
}

TEST(RehearseStop, WhileItsSandboxIsMadeLeavesNothing) {
  ChildProgram program(commandWithASlowSandbox());
  const std::vector<pid_t> processes = waitForTheSecondProcess(program.pid());
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_THAT(program.standardError(), HasSubstr(kStopped));
  expectNothingLeft(processes);
}

TEST(RehearseStop, AProgramThatIsKilledWhileItsSandboxIsMadeLeavesNoProcess) {
  ChildProgram program(commandWithASlowSandbox());
  const std::vector<pid_t> processes = waitForTheSecondProcess(program.pid());
  kill(program.pid(), SIGKILL);
  EXPECT_EQ(program.waitForEnd(), 128 + SIGKILL);
  std::ranges::for_each(processes, waitForEndOf);
}

std::vector<std::string> commandWithASlowMount() {
  makeDiscSet();
  turnDiscsIntoImages();
  std::vector<std::string> command = commandWithASlow("squashfuse", "*", "mount", "delay_enter");
  command.insert(command.end(), {"--product", "Lumaweave"});
  return command;
}

std::vector<pid_t> waitForTheMountingServer(pid_t program) {
  EXPECT_TRUE(comesTrue([] { return exists(kHeld); }));
  std::this_thread::sleep_for(std::chrono::seconds(1));
  return descendantsOf(program);
}

// A server that is ended in the middle of mounting leaves a mount that nobody serves.
TEST(RehearseStop, WhileAnImageIsMountedLeavesNothing) {
  ChildProgram program(commandWithASlowMount());
  const std::vector<pid_t> processes = waitForTheMountingServer(program.pid());
  kill(program.pid(), SIGTERM);
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_THAT(program.standardError(), HasSubstr(kStopped));
  expectNothingLeft(processes);
}

TEST(RehearseStop, AProgramThatIsKilledWhileAnImageIsMountedLeavesNoMount) {
  ChildProgram program(commandWithASlowMount());
  const std::vector<pid_t> processes = waitForTheMountingServer(program.pid());
  kill(program.pid(), SIGKILL);
  EXPECT_EQ(program.waitForEnd(), 128 + SIGKILL);
  std::ranges::for_each(processes, waitForEndOf);
  EXPECT_THAT(temporaryMounts(), SizeIs(0));
}

TEST(RehearseStop, WhatWasInstalledSoFarIsKeptWhereItWasToBeKept) {
  ChildProgram program(stoppableCommand({"--ui", "plain", "--keep", "/Users/tester/kept"}));
  while (const auto line = program.readLine()) {
    if (*line == "? Ready for next volume") {
      break;
    }
  }
  kill(program.pid(), SIGTERM);
  EXPECT_THAT(program.readAll(),
              HasSubstr("! Stopped. What was installed so far is in /Users/tester/kept.\n"
                        "The log is /Users/tester/kept/Users/rehearsal/Library/Caches/Tavenhall/"
                        "installationLog.txt.\n"));
  EXPECT_EQ(program.waitForEnd(), 1);
  EXPECT_TRUE(exists("/Users/tester/kept/Users/rehearsal/Library/Caches/Tavenhall/installationLog.txt"));
  expectNothingLeft();
}

TEST(RehearseStop, CtrlCInATerminalEndsAPlainRehearsal) {
  // A job of its own in the terminal, as at a prompt.
  std::vector<std::string> command = stoppableCommand({"--ui", "plain"});
  command.insert(command.begin(), {"bash", "-mc", "\"$@\"; exit $?", "bash"});
  TmuxTerminal terminal(100, 30, command);
  terminal.waitFor("? Ready for next volume");
  waitUntilUnderWay();
  const std::vector<pid_t> processes = expectProcesses(terminal.program());
  terminal.press({"C-c"});
  const std::string shown = terminal.waitFor("[ended with 1]");
  EXPECT_THAT(shown, HasSubstr("! Stopped. Nothing was kept."));
  EXPECT_THAT(shown, HasSubstr("the rehearsal was stopped"));
  expectNothingLeft(processes);
}

TEST(RehearseStop, ATerminalThatGoesAwayEndsTheRehearsalInIt) {
  TmuxTerminal terminal(100, 30, stoppableCommand({"--ui", "terminal"}), {{"TERM", "tmux-256color"}});
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  terminal.waitFor("Ready for next volume");
  waitUntilUnderWay();
  const std::vector<pid_t> processes = expectProcesses(terminal.program());
  terminal.close();
  EXPECT_TRUE(comesTrue([] { return temporaryMounts().empty(); }));
  for (const pid_t process : processes) {
    EXPECT_TRUE(comesTrue([process] { return kill(process, 0) != 0; })) << "process " << process << " runs on";
  }
  expectNothingLeft();
}

}  // namespace
}  // namespace tavenhall::test
