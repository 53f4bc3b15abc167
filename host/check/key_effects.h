#pragma once

#include "context/install_rules.h"

#include <string>
#include <string_view>

namespace tavenhall {

// The key that `word` is, as a lookup finds it: a text key in any case, a number key exactly. Null: none.
[[nodiscard]] const AttributesKey* knownKey(std::string_view word) noexcept;

// What the user sees where the key is missing: a clause that could stand alone, for the end of a sentence that
// says why.
[[nodiscard]] std::string missingKeyEffect(std::string_view key);

}  // namespace tavenhall
