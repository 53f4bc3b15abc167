#include "host/terminal/key_map.h"

#include "host/base/unicode.h"
#include "host/protocol/password_terminal.h"
#include "host/terminal/palette.h"

namespace tavenhall {

namespace {

constexpr std::int32_t kControlC = 3;
constexpr std::int32_t kControlL = 12;
constexpr std::int32_t kBackspace = 8;
constexpr std::int32_t kControlU = 21;
constexpr std::int32_t kEscape = 27;
constexpr std::int32_t kDelete = 127;  // what most terminals send for Backspace

std::optional<Action> actionForCharacter(std::int32_t character) {
  switch (character) {
    case '\t': return Action::focusNext;
    case '\r':
    case '\n':
    case ' ': return Action::press;
    case kEscape: return Action::cancel;
    case kControlC: return Action::leave;
    case '?': return Action::help;
    default: return std::nullopt;
  }
}

std::optional<Action> actionForKey(std::int32_t key) {
  switch (key) {
    case KEY_F(1): return Action::help;
    case KEY_BTAB:
    case KEY_LEFT: return Action::focusPrevious;
    case KEY_RIGHT: return Action::focusNext;
    case KEY_ENTER: return Action::press;
    case KEY_UP: return Action::lineUp;
    case KEY_DOWN: return Action::lineDown;
    case KEY_PPAGE: return Action::pageUp;
    case KEY_NPAGE: return Action::pageDown;
    case KEY_HOME: return Action::toStart;
    case KEY_END: return Action::toEnd;
    default: return std::nullopt;
  }
}

}  // namespace

std::optional<Action> actionFor(const Input& input) {
  switch (input.kind) {
    case Input::Kind::character: return actionForCharacter(input.code);
    case Input::Kind::key: return actionForKey(input.code);
    case Input::Kind::wheelUp: return Action::lineUp;
    case Input::Kind::wheelDown: return Action::lineDown;
    case Input::Kind::click: break;
  }
  return std::nullopt;
}

char hotKeyFor(const Input& input) {
  if (input.kind != Input::Kind::character) {
    return '\0';
  }
  const std::int32_t code = input.code;
  if (code >= 'A' && code <= 'Z') {
    return static_cast<char>(code - 'A' + 'a');
  }
  const bool isKey = (code >= 'a' && code <= 'z') || (code >= '0' && code <= '9');
  return isKey ? static_cast<char>(code) : '\0';
}

bool typesInto(PageModel& model, const Input& input) {
  const bool isCharacter = input.kind == Input::Kind::character;
  if ((input.kind == Input::Kind::key && input.code == KEY_BACKSPACE) ||
      (isCharacter && (input.code == kBackspace || input.code == kDelete))) {
    model.eraseTyped();
  } else if (isCharacter && input.code == kControlU) {
    model.clearTyped();
  } else if (isCharacter && input.code >= ' ') {
    const auto character = static_cast<char32_t>(input.code);
    std::string text = encodeUtf8({&character, 1});
    model.type(text);
    wipe(text.data(), text.size());
  } else {
    return false;
  }
  return true;
}

bool asksToDrawAnew(const Input& input) {
  return input.kind == Input::Kind::character && input.code == kControlL;
}

}  // namespace tavenhall
