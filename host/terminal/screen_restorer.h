#pragma once

#include <string>
#include <termios.h>

namespace tavenhall {

// Gives the terminal back as it was, whatever happens: when it goes, and when the process crashes. What a
// crash's handler writes is prepared beforehand, since a handler may call next to nothing. One at a time.
class ScreenRestorer {
 public:
  // Remembers the terminal's modes. `sequence` takes it out of full-screen mode. Takes over the handlers of
  // SIGSEGV, SIGBUS, SIGFPE, SIGILL and SIGABRT, on a stack of their own, until it goes.
  ScreenRestorer(int terminal, const std::string& sequence);
  ScreenRestorer(const ScreenRestorer&) = delete;
  ScreenRestorer& operator=(const ScreenRestorer&) = delete;
  ~ScreenRestorer();

  // Sets the modes that full-screen programs need: every key at once and none of them a signal, and nothing
  // changed on its way out. Also after the process was stopped for a while.
  void setScreenModes() noexcept;

 private:
  int terminal_;
  termios screenModes_{};
};

}  // namespace tavenhall
