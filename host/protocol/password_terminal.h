#pragma once

#include "host/protocol/secret.h"

#include <functional>
#include <optional>
#include <string>

namespace tavenhall {

// A pseudo-terminal for the commands that a page runs: what asks for a password (sudo, above all) asks there,
// and a frontend passes the prompt on to its user.
struct PseudoTerminal {
  int frontend = -1;  // the master side, for PasswordTerminal
  int commands = -1;  // the terminal itself
};

// Opens one, with close-on-exec set on both sides; the caller closes them. Both are -1 where the system has
// none to give: commands that ask then fail.
[[nodiscard]] PseudoTerminal openPseudoTerminal() noexcept;

// Makes it the controlling terminal of this process and its children. Call it after setsid().
void setControllingTerminal(int commands) noexcept;

// The frontend's side. What the user answers goes from here to the command alone; no event and no request
// carries it. One thread.
class PasswordTerminal {
 public:
  // The descriptor stays the caller's. -1: there is no such terminal, and nothing is ever asked.
  explicit PasswordTerminal(int descriptor) : descriptor_(descriptor) {}

  // Poll it for input; -1 once it is closed.
  [[nodiscard]] int descriptor() const { return descriptor_; }

  // Reads what is there, without blocking, and passes each whole line that a command has printed to `handle`.
  void read(const std::function<void(const std::string& line)>& handle);

  // The prompt of a command that waits for a password: a line without an end while the terminal does not echo.
  // None without a prompt.
  [[nodiscard]] const std::optional<std::string>& prompt() const { return prompt_; }

  // Answers the prompt, or makes it fail with an end of input. Does nothing once the prompt is over.
  void answer(const Secret& secret);
  void refuse();

 private:
  void send(std::string_view text, char end);

  int descriptor_;
  std::string partialLine_;
  std::optional<std::string> prompt_;
};

}  // namespace tavenhall
