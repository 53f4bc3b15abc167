#include "host/protocol/command_terminal.h"

#include "host/base/child_process.h"
#include "host/protocol/json_events.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace tavenhall {

namespace {

constexpr std::size_t kLongestLine = 1000;  // bytes; more is no question and no message

// Is the terminal set so that what is typed does not show? Whoever relays a whole terminal (sudo, for the
// command it runs) turns off the display of what is typed as well, but also all changes on the way out.
bool isAskingInSecret(int terminal) {
  termios modes{};
  return tcgetattr(terminal, &modes) == 0 && (modes.c_lflag & ECHO) == 0 && (modes.c_oflag & OPOST) != 0;
}

char endOfInputCharacter(int terminal) {
  termios modes{};
  return tcgetattr(terminal, &modes) == 0 ? static_cast<char>(modes.c_cc[VEOF]) : '\4';
}

// Some show a star for each character typed, and take them away at the end. That says nothing.
bool isOnlyStars(const std::string& text) { return text.find_first_not_of(" *\b") == std::string::npos; }

}  // namespace

CommandTerminalEnds makeCommandTerminal() noexcept {
  CommandTerminalEnds ends;
  ends.face = posix_openpt(O_RDWR | O_NOCTTY);
  if (ends.face < 0) {
    return {};
  }
  if (grantpt(ends.face) == 0 && unlockpt(ends.face) == 0) {
    ends.commands = open(ptsname(ends.face), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  if (ends.commands < 0) {
    close(ends.face);
    return {};
  }
  fcntl(ends.face, F_SETFD, FD_CLOEXEC);
  fcntl(ends.face, F_SETFL, O_NONBLOCK);
  return ends;
}

void takeCommandTerminal(int commands) noexcept { ioctl(commands, TIOCSCTTY, 0); }

CommandTerminal::CommandTerminal(int descriptor) : descriptor_(descriptor) {}

void CommandTerminal::read(const std::function<void(const std::string& line)>& hear) {
  std::array<char, 4096> piece;
  ssize_t count = 0;
  while ((count = ::read(descriptor_, piece.data(), piece.size())) > 0) {
    for (const char character : std::string_view(piece.data(), static_cast<std::size_t>(count))) {
      if (character == '\n') {
        if (!question_ && !isOnlyStars(partialLine_)) {
          hear(partialLine_);
        }
        question_.reset();
        partialLine_.clear();
      } else if (character != '\r' && partialLine_.size() < kLongestLine) {
        partialLine_ += character;
      }
    }
  }
  if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    descriptor_ = -1;  // nobody has the terminal any more
    question_.reset();
    return;
  }
  if (!isAskingInSecret(descriptor_)) {
    question_.reset();
  } else if (!isOnlyStars(partialLine_)) {
    question_ = partialLine_.substr(0, partialLine_.find_last_not_of(' ') + 1);
  }
}

void CommandTerminal::answer(const Secret& secret) { send(secret.text(), '\n'); }

void CommandTerminal::refuse() { send({}, endOfInputCharacter(descriptor_)); }

void CommandTerminal::send(std::string_view text, char end) {
  // A question that has ended by itself must not leave its answer to the next command.
  if (question_ && isAskingInSecret(descriptor_)) {
    writeAll(descriptor_, text);
    writeAll(descriptor_, {&end, 1});
  }
  question_.reset();
  partialLine_.clear();
}

}  // namespace tavenhall
