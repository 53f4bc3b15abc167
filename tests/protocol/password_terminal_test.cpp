#include "host/protocol/password_terminal.h"

#include <array>
#include <gmock/gmock.h>
#include <poll.h>
#include <string>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A terminal, and a command that has it.
class PasswordTerminalTest : public testing::Test {
 protected:
  ~PasswordTerminalTest() override {
    closeCommand();
    close(ends.frontend);
  }

  void write(const std::string& text) const {
    ASSERT_EQ(::write(ends.commands, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  // Sets or clears flags of the terminal's modes.
  void showTyped(bool isShown) const {
    change([=](termios& modes) { set(modes.c_lflag, ECHO, isShown); });
  }
  void relayAll() const {
    change([](termios& modes) {
      set(modes.c_lflag, ECHO | ICANON | ISIG, false);
      set(modes.c_oflag, OPOST, false);
    });
  }

  void ask(const std::string& prompt) {
    showTyped(false);
    write(prompt);
    receive();
  }

  void receive() {
    terminal.read([this](const std::string& line) { lines.push_back(line); });
  }

  // What the command gets to read; "nothing" when it would wait.
  [[nodiscard]] std::string read() const {
    pollfd source{ends.commands, POLLIN, 0};
    if (poll(&source, 1, 0) <= 0) {
      return "nothing";
    }
    std::array<char, 100> typed{};
    const ssize_t count = ::read(ends.commands, typed.data(), typed.size());
    return count == 0 ? "end of input" : std::string(typed.data(), static_cast<std::size_t>(count));
  }

  void closeCommand() {
    if (ends.commands >= 0) {
      close(ends.commands);
      ends.commands = -1;
    }
  }

  static void tell(PasswordTerminal& to, const std::string& text) {
    Secret secret;
    secret.append(text);
    to.answer(secret);
  }

  PseudoTerminal ends = openPseudoTerminal();
  PasswordTerminal terminal{ends.frontend};
  std::vector<std::string> lines;

 private:
  static void set(tcflag_t& flags, tcflag_t which, bool isOn) { flags = isOn ? flags | which : flags & ~which; }
  template <typename Change>
  void change(Change apply) const {
    termios modes{};
    ASSERT_EQ(tcgetattr(ends.commands, &modes), 0);
    apply(modes);
    ASSERT_EQ(tcsetattr(ends.commands, TCSANOW, &modes), 0);
  }
};

TEST_F(PasswordTerminalTest, APromptWithoutEchoIsAPasswordPrompt) {
  ask("[sudo] password for tester: ");
  EXPECT_EQ(terminal.prompt(), "[sudo] password for tester:");
  tell(terminal, "open s\u00e9same");
  EXPECT_EQ(read(), "open s\u00e9same\n");
  EXPECT_EQ(terminal.prompt(), std::nullopt);
}

TEST_F(PasswordTerminalTest, OutputIsNotAPrompt) {
  write("We trust you.\r\n\r\nThink before you type.\npart of a line");
  receive();
  EXPECT_THAT(lines, ElementsAre("We trust you.", "Think before you type."));
  EXPECT_EQ(terminal.prompt(), std::nullopt);
}

TEST_F(PasswordTerminalTest, LinesBeforeAPromptArePassedOn) {
  ask("\r\nSorry, try again.\r\nPassword: ");
  EXPECT_THAT(lines, ElementsAre("Sorry, try again."));
  EXPECT_EQ(terminal.prompt(), "Password:");
}

TEST_F(PasswordTerminalTest, AQuestionThatComesInPiecesIsOne) {
  ask("[sudo] pass");
  write("word for tester: ");
  receive();
  EXPECT_EQ(terminal.prompt(), "[sudo] password for tester:");
  tell(terminal, "sesame");
  EXPECT_EQ(read(), "sesame\n");
  showTyped(true);
  write("\r\nSorry, try again.\r\n");
  receive();
  EXPECT_THAT(lines, ElementsAre("Sorry, try again."));
}

TEST_F(PasswordTerminalTest, WhoRelaysAWholeTerminalAsksNothing) {
  relayAll();
  write("50 %");
  receive();
  EXPECT_EQ(terminal.prompt(), std::nullopt);
}

TEST_F(PasswordTerminalTest, StarsAreNotAPrompt) {
  ask("Password: ");
  tell(terminal, "abc");
  static_cast<void>(read());
  write("***");
  receive();
  EXPECT_EQ(terminal.prompt(), std::nullopt);
  write("\b \b\b \b\b \b\r\n");
  showTyped(true);
  receive();
  EXPECT_EQ(terminal.prompt(), std::nullopt);
  EXPECT_THAT(lines, IsEmpty());
}

TEST_F(PasswordTerminalTest, ARefusalIsTheEndOfInput) {
  ask("Password: ");
  terminal.refuse();
  EXPECT_EQ(read(), "end of input");
  EXPECT_EQ(terminal.prompt(), std::nullopt);
}

TEST_F(PasswordTerminalTest, AWithdrawnPromptIsOver) {
  ask("Password: ");
  showTyped(true);
  write("\r\ntimed out\r\n");
  receive();
  EXPECT_EQ(terminal.prompt(), std::nullopt);
  EXPECT_THAT(lines, ElementsAre("timed out"));
}

TEST_F(PasswordTerminalTest, ALateAnswerIsDiscarded) {
  ask("Password: ");
  showTyped(true);
  tell(terminal, "sesame");
  EXPECT_EQ(read(), "nothing");
}

TEST_F(PasswordTerminalTest, IsClosedWhenNoProcessHasTheTerminal) {
  ask("Password: ");
  closeCommand();
  receive();
  EXPECT_EQ(terminal.descriptor(), -1);
  EXPECT_EQ(terminal.prompt(), std::nullopt);
}

TEST(PasswordTerminal, WithoutATerminalNothingIsAsked) {
  const PasswordTerminal none(-1);
  EXPECT_EQ(none.descriptor(), -1);
  EXPECT_EQ(none.prompt(), std::nullopt);
}

}  // namespace
}  // namespace tavenhall::test
