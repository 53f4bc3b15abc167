// Who has nothing to do uses no processor: not the frontend, and not its engine.
#include "tests/install/child_program.h"
#include "tests/support/children.h"
#include "tests/terminal/in_utf8.h"
#include "tests/terminal/page_in_terminal.h"
#include "tests/terminal/tmux_terminal.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavenhall::test {
namespace {

class Idle : public InUtf8 {
 protected:
  void SetUp() override {
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the thread sanitizer has a thread of its own, which never rests";
#endif
#endif
    InUtf8::SetUp();
  }
};

constexpr int kSeconds = 3;
constexpr const char* kDiscQuestion = "thread\nmax 1953125\nvalue 840000\nalert Next disc|Please insert B|OK\n";

void expectIdle(pid_t frontend) {
  const std::vector<pid_t> engine = childrenOf(frontend);
  waitForIdle(frontend, engine.empty() ? frontend : engine[0], kSeconds);
}

TEST_F(Idle, OnTheFirstPage) {
  TmuxTerminal terminal(80, 24, runScript(kDiscQuestion));
  terminal.waitFor("Press Continue to begin.");
  expectIdle(terminal.program());
}

TEST_F(Idle, WhileAQuestionWaits) {
  TmuxTerminal terminal(80, 24, runScript(kDiscQuestion));
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  terminal.waitFor("Please insert B");
  expectIdle(terminal.program());
}

TEST_F(Idle, WhileTheInstallHasEndedAndThePageIsRead) {
  TmuxTerminal terminal(80, 24, runScript("thread\nready 1\nnext 1\n"));
  terminal.waitFor("Press Continue to begin.");
  terminal.press({"Enter"});
  terminal.waitFor("[ Continue ]");
  expectIdle(terminal.program());
  terminal.press({"Enter"});
  terminal.waitFor("The installation was successful.");
  expectIdle(terminal.program());
}

TEST_F(Idle, WhileAQuestionOfThePlainLinesWaits) {
  std::vector<std::string> command = runScript(kDiscQuestion);
  command.insert(command.end(), {"--ui", "plain"});
  ChildProgram program(command);
  for (auto line = program.readLine(); line && line != "  1) OK"; line = program.readLine()) {
  }
  expectIdle(program.pid());
}

}  // namespace
}  // namespace tavenhall::test
