#pragma once

#include "host/terminal/page_model.h"
#include "host/terminal/screen.h"

#include <optional>

namespace tavenhall {

// What a key does wherever it is pressed; none for the letters and digits that press a button, and for the
// rest.
[[nodiscard]] std::optional<Action> actionFor(const Input& input);

// The hot key that was typed, lower case; '\0' for what is none.
[[nodiscard]] char hotKeyFor(const Input& input);

// Types the character, or takes typed ones back: Backspace, Ctrl-U for all. False for every other key.
bool typesInto(PageModel& model, const Input& input);

// Ctrl-L, with which people clear up a screen that something else has written on.
[[nodiscard]] bool asksToDrawAnew(const Input& input);

}  // namespace tavenhall
