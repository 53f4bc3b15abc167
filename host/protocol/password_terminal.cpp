#include "host/protocol/password_terminal.h"

#include "host/base/child_process.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace tavenhall {

namespace {

constexpr std::size_t kLongestLine = 1000;  // bytes; the rest is truncated

// Whether a command reads a password: it has turned off echo. A command that relays a whole terminal (sudo, for
// what it runs) does so too, but turns off output processing as well.
bool isReadingPassword(int terminal) {
  termios modes{};
  return tcgetattr(terminal, &modes) == 0 && (modes.c_lflag & ECHO) == 0 && (modes.c_oflag & OPOST) != 0;
}

char endOfInputCharacter(int terminal) {
  termios modes{};
  return tcgetattr(terminal, &modes) == 0 ? static_cast<char>(modes.c_cc[VEOF]) : '\4';
}

// Some commands print a star for each character typed and erase them at the end.
bool isOnlyStars(const std::string& text) { return text.find_first_not_of(" *\b") == std::string::npos; }

}  // namespace

PseudoTerminal openPseudoTerminal() noexcept {
  PseudoTerminal ends;
  ends.frontend = posix_openpt(O_RDWR | O_NOCTTY);
  if (ends.frontend < 0) {
    return {};
  }
  if (grantpt(ends.frontend) == 0 && unlockpt(ends.frontend) == 0) {
    ends.commands = open(ptsname(ends.frontend), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  if (ends.commands >= 0 && ioctl(ends.commands, TIOCEXCL) != 0) {
    close(std::exchange(ends.commands, -1));
  }
  if (ends.commands < 0) {
    close(ends.frontend);
    return {};
  }
  fcntl(ends.frontend, F_SETFD, FD_CLOEXEC);
  fcntl(ends.frontend, F_SETFL, O_NONBLOCK);
  return ends;
}

void setControllingTerminal(int commands) noexcept { ioctl(commands, TIOCSCTTY, 0); }

void leaveControllingTerminal() noexcept {
  const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal >= 0) {
    // The process that the terminal was opened for gets SIGHUP when it gives it up.
    struct sigaction ignoring {};
    struct sigaction before {};
    ignoring.sa_handler = SIG_IGN;
    sigaction(SIGHUP, &ignoring, &before);
    ioctl(terminal, TIOCNOTTY);
    sigaction(SIGHUP, &before, nullptr);
    close(terminal);
  }
}

void PasswordTerminal::read(const std::function<void(const std::string& line)>& handle) {
  std::array<char, 4096> piece;
  ssize_t count = 0;
  while ((count = ::read(descriptor_, piece.data(), piece.size())) > 0) {
    for (const char character : std::string_view(piece.data(), static_cast<std::size_t>(count))) {
      if (character == '\n') {
        if (!prompt_ && !isOnlyStars(partialLine_)) {
          handle(partialLine_);
        }
        prompt_.reset();
        partialLine_.clear();
      } else if (character != '\r' && partialLine_.size() < kLongestLine) {
        partialLine_ += character;
      }
    }
  }
  if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    descriptor_ = -1;  // no process has the terminal open any more
    prompt_.reset();
    return;
  }
  if (!isReadingPassword(descriptor_)) {
    prompt_.reset();
  } else if (!isOnlyStars(partialLine_)) {
    prompt_ = partialLine_.substr(0, partialLine_.find_last_not_of(' ') + 1);
  }
}

void PasswordTerminal::answer(const Secret& secret) { send(secret.text(), '\n'); }

void PasswordTerminal::refuse() { send({}, endOfInputCharacter(descriptor_)); }

void PasswordTerminal::send(std::string_view text, char end) {
  // The answer to a prompt that is over must not reach the next command.
  if (prompt_ && isReadingPassword(descriptor_)) {
    writeAll(descriptor_, text);
    writeAll(descriptor_, {&end, 1});
  }
  prompt_.reset();
  partialLine_.clear();
}

namespace {

bool beginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; }

}  // namespace

void wipe(void* memory, std::size_t bytes) noexcept {
  // Volatile, so that the compiler does not remove the writes.
  volatile char* byte = static_cast<char*>(memory);
  while (bytes-- > 0) {
    *byte++ = 0;
  }
}

void Secret::append(std::string_view text) noexcept {
  if (text.size() <= kLongest - size_) {
    std::copy(text.begin(), text.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(size_));
    size_ += text.size();
  }
}

void Secret::dropLastCharacter() noexcept {
  while (size_ > 0 && !beginsCharacter(bytes_[--size_])) {
  }
}

void Secret::clear() noexcept {
  wipe(bytes_.data(), bytes_.size());
  size_ = 0;
}

std::size_t Secret::characters() const {
  const std::string_view shown = text();
  return static_cast<std::size_t>(std::count_if(shown.begin(), shown.end(), beginsCharacter));
}

}  // namespace tavenhall
