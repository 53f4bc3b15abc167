// A terminal that is there but takes nothing any more, as over a connection that hangs.
#include "tests/support/files.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <array>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {
namespace {

// A program in a terminal that is read only as far as the test reads it.
class UnreadTerminal {
 public:
  explicit UnreadTerminal(std::vector<std::string> command) {
    std::vector<char*> arguments;
    for (std::string& argument : command) {
      arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    winsize size{60, 200, 0, 0};
    program_ = forkpty(&terminal_, nullptr, nullptr, &size);
    if (program_ == 0) {
      setenv("LC_ALL", "C.UTF-8", 1);
      setenv("TERM", "tmux-256color", 1);
      execv(arguments[0], arguments.data());
      _exit(127);
    }
  }
  UnreadTerminal(const UnreadTerminal&) = delete;
  UnreadTerminal& operator=(const UnreadTerminal&) = delete;
  ~UnreadTerminal() {
    kill(program_, SIGTERM);
    close(terminal_);
    waitpid(program_, nullptr, 0);
  }

  bool readUntil(const std::string& text) {
    std::string shown;
    pollfd source{terminal_, POLLIN, 0};
    std::array<char, 4096> buffer{};
    while (shown.find(text) == std::string::npos && poll(&source, 1, 30000) > 0) {
      const ssize_t count = read(terminal_, buffer.data(), buffer.size());
      if (count <= 0) {
        return false;
      }
      shown.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return shown.find(text) != std::string::npos;
  }

  void type(const std::string& text) {
    EXPECT_EQ(write(terminal_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

 private:
  int terminal_ = -1;
  pid_t program_ = -1;
};

TEST(StalledTerminal, TheCopyContinuesWhileTheTerminalIsStalled) {
  std::string script = "thread\nmax 1953125\n";
  for (int i = 1; i <= 3000; ++i) {
    script += "value " + std::to_string(i * 600) + "\nstatus Installing... " + std::to_string(i) + "\n";
  }
  UnreadTerminal terminal(runScript("thread\nmax 1953125\nwait /tmp/go\n" +
                                    script.substr(script.find('\n') + 1) + "run touch /tmp/finished\n"));
  ASSERT_TRUE(terminal.readUntil("begin."));
  terminal.type("\r");
  // Drawing all anew so often would fill what the terminal can hold many times over.
  for (int i = 0; i < 60; ++i) {
    terminal.type("\f");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  let("go");
  EXPECT_TRUE(comesTrue([] { return exists("/tmp/finished"); })) << "the copy waits for its terminal";
}

}  // namespace
}  // namespace tavenhall::test
