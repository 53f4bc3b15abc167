#include "host/terminal/screen_restorer.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <unistd.h>

namespace tavenhall {

namespace {

constexpr std::array<int, 5> kCrashes{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// Signal handlers read it, so it is never freed.
int crashTerminal = -1;
termios modesBefore;
std::array<char, 512> crashSequence;
std::size_t crashSequenceLength = 0;
std::array<struct sigaction, kCrashes.size()> handlersBefore;
std::array<unsigned char, 65536> crashStack;

void restoreTerminal() {
  std::size_t written = 0;
  while (written < crashSequenceLength) {
    const ssize_t count = write(crashTerminal, crashSequence.data() + written, crashSequenceLength - written);
    if (count <= 0) {
      break;
    }
    written += static_cast<std::size_t>(count);
  }
  tcsetattr(crashTerminal, TCSANOW, &modesBefore);
}

// The signal comes again when the handler returns, and then does what it does without one.
void restoreAndDie(int signal) {
  restoreTerminal();
  std::signal(signal, SIG_DFL);
  raise(signal);
}

}  // namespace

ScreenRestorer::ScreenRestorer(int terminal, const std::string& sequence) : terminal_(terminal) {
  tcgetattr(terminal_, &modesBefore);
  screenModes_ = modesBefore;
  screenModes_.c_iflag &=
      ~static_cast<tcflag_t>(IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR | ICRNL | IXON);
  screenModes_.c_oflag &= ~static_cast<tcflag_t>(OPOST);
  screenModes_.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | ISIG | IEXTEN);
  screenModes_.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB);
  screenModes_.c_cflag |= CS8;
  screenModes_.c_cc[VMIN] = 1;
  screenModes_.c_cc[VTIME] = 0;

  crashTerminal = terminal_;
  crashSequenceLength = std::min(sequence.size(), crashSequence.size());
  std::copy_n(sequence.begin(), crashSequenceLength, crashSequence.begin());
  stack_t stack{};
  stack.ss_sp = crashStack.data();
  stack.ss_size = crashStack.size();
  sigaltstack(&stack, nullptr);
  struct sigaction action {};
  action.sa_handler = restoreAndDie;
  action.sa_flags = SA_ONSTACK | SA_NODEFER;
  for (std::size_t i = 0; i < kCrashes.size(); ++i) {
    sigaction(kCrashes[i], &action, &handlersBefore[i]);
  }
  setScreenModes();
}

ScreenRestorer::~ScreenRestorer() {
  for (std::size_t i = 0; i < kCrashes.size(); ++i) {
    sigaction(kCrashes[i], &handlersBefore[i], nullptr);
  }
  restoreTerminal();
  crashTerminal = -1;
}

void ScreenRestorer::setScreenModes() noexcept { tcsetattr(terminal_, TCSANOW, &screenModes_); }

}  // namespace tavenhall
