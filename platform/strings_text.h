#pragma once

#include <string>
#include <string_view>

// The characters of a strings file.
namespace tavenhall {

// Appends one character as UTF-8. What is no character (half of a surrogate pair, a value out of range)
// becomes U+FFFD.
void appendUtf8(std::string& text, char32_t character);

// A file's bytes as UTF-8 without a byte-order mark. UTF-16, of either byte order, is known by its mark;
// everything else is taken for UTF-8 and handed through as it is, broken or not. An odd last byte of UTF-16
// is left out.
[[nodiscard]] std::string utf8OfFile(std::string_view bytes);

// The text with U+FFFD for what is no UTF-8: one for each start of a character that breaks off, and one for
// each byte that starts none.
[[nodiscard]] std::string validUtf8(std::string_view text);

// The high and the low half of a surrogate pair.
[[nodiscard]] constexpr bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
[[nodiscard]] constexpr bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
[[nodiscard]] constexpr char32_t joinSurrogates(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
}

}  // namespace tavenhall
