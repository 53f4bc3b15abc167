#pragma once

#include "host/protocol/secret.h"

#include <string>
#include <termios.h>

namespace tavenhall {

// A line that is typed on this process's terminal without being shown there; from construction on until it
// goes, which gives the terminal back as it was. One thread.
class HiddenLine {
 public:
  // Shows the prompt on the terminal, wherever standard output goes. What was typed before it is dropped.
  explicit HiddenLine(const std::string& prompt);
  HiddenLine(const HiddenLine&) = delete;
  HiddenLine& operator=(const HiddenLine&) = delete;
  ~HiddenLine();

  // What to poll for input; -1 when there is no terminal.
  [[nodiscard]] int descriptor() const { return terminal_; }

  // Takes what was typed, when the descriptor is readable. False for no line: its end instead (Ctrl-D), or no
  // terminal any more.
  [[nodiscard]] bool read(Secret& line);

 private:
  int terminal_;
  termios modesBefore_{};
};

}  // namespace tavenhall
