#include "host/terminal/terminal_device.h"
#include "host/base/display_text.h"
#include "host/terminal/palette.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <term.h>
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

// The signal is raised again when the handler returns, and then has its default action.
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

namespace {

std::string written;

int writeCharacter(int character) {
  written += static_cast<char>(character);
  return character;
}

// The characters of a capability, without padding.
std::string capability(const char* name) {
  const char* text = tigetstr(name);
  // The library returns -1 for a capability that is not a text.
  if (text == nullptr || reinterpret_cast<std::intptr_t>(text) == -1) {
    return {};
  }
  written.clear();
  tputs(text, 1, writeCharacter);
  return written;
}

}  // namespace

bool terminalIsUsable() {
  int result = 0;
  if (isatty(STDIN_FILENO) == 0 || isatty(STDOUT_FILENO) == 0 ||
      setupterm(nullptr, STDOUT_FILENO, &result) != OK) {
    return false;
  }
  const bool isUsable = !capability("cup").empty() && !capability("clear").empty();
  del_curterm(cur_term);  // a screen reads its terminal's description for itself
  return isUsable;
}

bool terminalHasSigns() {
  const char* term = std::getenv("TERM");
  return localeShowsUnicode() && !(term != nullptr && std::string_view(term).starts_with("linux"));
}

std::string leaveScreenSequence() {
  // terminfo has no capability for mouse reports.
  const std::string withoutMouse = "\033[?1006l\033[?1000l";
  const std::string normalScreen = capability("rmcup");
  return capability("sgr0") + capability("op") + (capability("kmous").empty() ? "" : withoutMouse) +
         capability("rmkx") + capability("cnorm") + (normalScreen.empty() ? capability("clear") : normalScreen);
}

}  // namespace tavenhall
