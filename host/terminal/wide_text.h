#pragma once

#include <string>
#include <string_view>

namespace tavenhall {

// UTF-8 as wide characters, one a character, and back. What is no UTF-8 becomes U+FFFD. Any thread.
[[nodiscard]] std::wstring wideText(std::string_view text);
[[nodiscard]] std::string narrowText(std::wstring_view text);

}  // namespace tavenhall
