#include "host/base/child_process.h"

#include "host/base/files.h"
#include "host/base/stop_request.h"
#include "tests/support/waiting.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {
namespace {

// Before the child runs its program, this process's handlers are still its own.
TEST(ToolProcess, EndsAlsoInItsFirstMoments) {
  const StopRequest stop;
  const auto start = std::chrono::steady_clock::now();
  for (const auto& guard : {std::optional<Guard>(), std::optional<Guard>(Guard{})}) {
    for (int i = 0; i < 20; ++i) {
      ToolProcess tool({"sleep", "5"}, ToolProcess::Keep::output, -1, guard);
      tool.end();
      EXPECT_EQ(tool.wait(), -1);
    }
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_FALSE(stop.hasCome());
}

// A shell with a child that has no other tie to it.
TEST(ToolProcess, EndsWithItsProcessGroup) {
  ToolProcess tool({"sh", "-c", "sleep 100 & echo $!; wait"}, ToolProcess::Keep::output, -1, Guard{});
  ASSERT_TRUE(comesTrue([&tool] { return !tool.lastLine().empty(); }));
  const pid_t grandchild = std::stoi(tool.lastLine());
  EXPECT_EQ(kill(grandchild, 0), 0);
  tool.end();
  waitForEndOf(grandchild);
}

// A program that handles SIGTERM would otherwise sometimes have a last word and sometimes not. The guard is
// held up, so that this one would always have it.
TEST(ToolProcess, IsNotAskedToEndWhenItsProcessGroupIsEnded) {
  const Pipe output = makePipe();
  const pid_t guard =
      startProgram({"sh", "-c", "trap 'echo asked' TERM; echo ready; while :; do sleep 0.05; done"},
                   {STDIN_FILENO, output.writeEnd, STDERR_FILENO}, Guard{});
  close(output.writeEnd);
  LineReader reader(output.readEnd);
  std::vector<std::string> lines;
  const auto readLine = [&] { reader.read([&lines](const std::string& line) { lines.push_back(line); }); };
  readLine();
  kill(guard, SIGSTOP);
  kill(-guard, SIGTERM);
  pollfd moreOutput{output.readEnd, POLLIN, 0};
  EXPECT_EQ(poll(&moreOutput, 1, 500), 0);
  kill(guard, SIGCONT);
  while (reader.isOpen()) {
    readLine();
  }
  EXPECT_EQ(lines, std::vector<std::string>{"ready"});
  EXPECT_EQ(waitpid(guard, nullptr, 0), guard);
}

TEST(ToolProcess, IsFollowedByACommandWhateverHasEndedIt) {
  const std::string trace = "/Users/tester/trace";
  std::filesystem::create_directories("/Users/tester");
  for (const char* program :
       {"exit 3", "kill -KILL $$", "exec no-such-program", "kill -TERM $PPID; sleep 100"}) {
    ToolProcess tool({"sh", "-c", program}, ToolProcess::Keep::output, -1, Guard{{"touch", trace}});
    tool.wait();
    EXPECT_TRUE(std::filesystem::remove(trace)) << program;
  }
  ToolProcess tool({"sh", "-c", "echo ready; sleep 100"}, ToolProcess::Keep::output, -1,
                   Guard{{"touch", trace}});
  ASSERT_TRUE(comesTrue([&tool] { return !tool.lastLine().empty(); }));
  tool.end();
  EXPECT_TRUE(std::filesystem::remove(trace)) << "ended here";
}

TEST(ToolProcess, HasTheStatusOfItsProgram) {
  for (const auto& guard : {std::optional<Guard>(), std::optional<Guard>(Guard{})}) {
    EXPECT_EQ(ToolProcess({"sh", "-c", "exit 3"}, ToolProcess::Keep::output, -1, guard).wait(), 3);
    EXPECT_EQ(ToolProcess({"sh", "-c", "kill -KILL $$"}, ToolProcess::Keep::output, -1, guard).wait(), -1);
    EXPECT_EQ(ToolProcess({"no-such-program"}, ToolProcess::Keep::output, -1, guard).wait(), kCannotRun);
  }
}

}  // namespace
}  // namespace tavenhall::test
