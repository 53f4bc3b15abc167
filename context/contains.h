#pragma once

#include <string_view>

namespace tavenhall {

// Whether `part` occurs in `text`; case-sensitive. Any thread.
[[nodiscard]] constexpr bool contains(std::string_view text, std::string_view part) noexcept {
  return text.find(part) != std::string_view::npos;
}

}  // namespace tavenhall
