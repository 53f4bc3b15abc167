#include "host/terminal/terminal_facts.h"

#include "host/base/display_text.h"
#include "host/terminal/curses_includes.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

#include <term.h>

namespace tavenhall {

namespace {

std::string written;

int writeCharacter(int character) {
  written += static_cast<char>(character);
  return character;
}

// A capability's characters, without the pauses that slow terminals of old wanted.
std::string capability(const char* name) {
  const char* text = tigetstr(name);
  // The library says -1 for a capability that is no text.
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
  // The mouse's reports have no name of their own in the terminal's description.
  const std::string withoutMouse = "\033[?1006l\033[?1000l";
  const std::string normalScreen = capability("rmcup");
  return capability("sgr0") + capability("op") + (capability("kmous").empty() ? "" : withoutMouse) +
         capability("rmkx") + capability("cnorm") + (normalScreen.empty() ? capability("clear") : normalScreen);
}

}  // namespace tavenhall
