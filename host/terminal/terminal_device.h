#pragma once

#include <string>
#include <termios.h>

namespace tavenhall {

// Restores the terminal on destruction and when the process crashes. The output of the crash handler is
// prepared in advance, because a handler may call only async-signal-safe functions. One instance at a time.
class ScreenRestorer {
 public:
  // Saves the terminal's modes. `sequence` leaves full-screen mode. Until destruction, replaces the handlers of
  // SIGSEGV, SIGBUS, SIGFPE, SIGILL and SIGABRT; they run on an alternate stack.
  ScreenRestorer(int terminal, const std::string& sequence);
  ScreenRestorer(const ScreenRestorer&) = delete;
  ScreenRestorer& operator=(const ScreenRestorer&) = delete;
  ~ScreenRestorer();

  // Sets raw mode: every key is read at once, none raises a signal, and output is not processed. Call it again
  // after the process was suspended.
  void setScreenModes() noexcept;

 private:
  int terminal_;
  termios screenModes_{};
};

// Can a full screen be shown here? Standard input and output must be terminals, and TERM must name one that
// can place its cursor.
[[nodiscard]] bool terminalIsUsable();

// Whether the terminal's font has the usual symbols. The Linux console has few.
[[nodiscard]] bool terminalHasSigns();

// The escape sequence that leaves full-screen mode. Call it after curses has started.
[[nodiscard]] std::string leaveScreenSequence();

}  // namespace tavenhall
