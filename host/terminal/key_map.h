#pragma once

#include "host/terminal/page_model.h"
#include "host/terminal/screen.h"

#include <optional>

namespace tavenhall {

// The action of a key that does not depend on the page's state; none for hot keys and other keys.
[[nodiscard]] std::optional<Action> actionFor(const Input& input);

// The hot key that was typed, in lower case, or '\0'.
[[nodiscard]] char hotKeyFor(const Input& input);

// Edits the typed text: a character, Backspace, or Ctrl-U to clear it. Returns false for every other key.
bool typesInto(PageModel& model, const Input& input);

// Whether the key is Ctrl-L, which redraws the screen.
[[nodiscard]] bool asksToDrawAnew(const Input& input);

}  // namespace tavenhall
