#pragma once

#include "host/protocol/secret.h"

#include <functional>
#include <optional>
#include <string>

namespace tavenhall {

// A terminal that no screen belongs to: the commands that a page runs have it, so that what asks for a password
// (sudo, above all) asks here, and a face of this program hands the question to its user.
struct CommandTerminalEnds {
  int face = -1;      // the one that CommandTerminal serves
  int commands = -1;  // the terminal itself; as long as it is open anywhere, the other end is, too
};

// Makes one; both ends are closed in programs that are run. Without ends where the system has none to give:
// what asks then fails, and that is all.
[[nodiscard]] CommandTerminalEnds makeCommandTerminal() noexcept;

// Makes it the terminal of this process and of its children. After setsid, so that there is no other.
void takeCommandTerminal(int commands) noexcept;

// The face's end. What a user answers goes from here to the command alone: no line of the engine's and no
// event holds it. One thread.
class CommandTerminal {
 public:
  // The descriptor stays the caller's; -1: there is no such terminal, and nothing will ever be asked.
  explicit CommandTerminal(int descriptor);

  // What to poll for input; -1 when it is closed.
  [[nodiscard]] int descriptor() const { return descriptor_; }

  // Reads what is there, without waiting, and gives each whole line that a command has written.
  void read(const std::function<void(const std::string& line)>& hear);

  // What is asked now: a text without an end of its line while the terminal does not show what is typed. None
  // when nothing is asked, or not any more.
  [[nodiscard]] const std::optional<std::string>& question() const { return question_; }

  // Answers it, or lets it fail. Does nothing when the question is over by now.
  void answer(const Secret& secret);
  void refuse();

 private:
  void send(std::string_view text, char end);

  int descriptor_;
  std::string partialLine_;
  std::optional<std::string> question_;
};

}  // namespace tavenhall
