#include "host/plain/password_prompt.h"

#include "host/base/child_process.h"

#include <array>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace tavenhall {

PasswordPrompt::PasswordPrompt(const std::string& prompt)
    : terminal_(open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  if (terminal_ < 0) {
    return;
  }
  tcgetattr(terminal_, &modesBefore_);
  termios modes = modesBefore_;
  modes.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  modes.c_lflag |= ECHONL;  // echo the newline, so that the next output starts on a line of its own
  tcsetattr(terminal_, TCSAFLUSH, &modes);
  writeAll(terminal_, prompt);
}

PasswordPrompt::~PasswordPrompt() {
  if (terminal_ >= 0) {
    tcsetattr(terminal_, TCSADRAIN, &modesBefore_);
    close(terminal_);
  }
}

bool PasswordPrompt::read(Secret& line) {
  std::array<char, Secret::kLongest + 1> typed;
  const ssize_t count = ::read(terminal_, typed.data(), typed.size());
  if (count > 0) {
    std::string_view text(typed.data(), static_cast<std::size_t>(count));
    text.remove_suffix(text.ends_with('\n') ? 1 : 0);
    line.append(text);
    wipe(typed.data(), typed.size());
  }
  return count > 0;
}

}  // namespace tavenhall
