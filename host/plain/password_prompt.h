#pragma once

#include "host/protocol/password_terminal.h"

#include <string>
#include <termios.h>

namespace tavenhall {

// A prompt on this process's terminal that reads one line without echo. The destructor restores the terminal's
// modes. One thread.
class PasswordPrompt {
 public:
  // Prints the prompt on the terminal, wherever standard output goes, and discards what was typed before it.
  explicit PasswordPrompt(const std::string& prompt);
  PasswordPrompt(const PasswordPrompt&) = delete;
  PasswordPrompt& operator=(const PasswordPrompt&) = delete;
  ~PasswordPrompt();

  // Poll it for input; -1 when there is no terminal.
  [[nodiscard]] int descriptor() const { return terminal_; }

  // Reads the line; call it when the descriptor is readable. Returns false for an end of input (Ctrl-D), and
  // when the terminal is gone.
  [[nodiscard]] bool read(Secret& line);

 private:
  int terminal_;
  termios modesBefore_{};
};

}  // namespace tavenhall
