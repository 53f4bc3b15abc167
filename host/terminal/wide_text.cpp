#include "host/terminal/wide_text.h"

#include "platform/strings_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tavenhall {

namespace {

constexpr wchar_t kReplacement = 0xFFFD;

struct Lead {
  std::size_t length;    // bytes of the character; 0: no byte that begins one
  std::uint32_t bits;    // that the first byte gives
  std::uint32_t lowest;  // what needs so many bytes
};

Lead leadOf(unsigned char byte) {
  if (byte < 0x80) {
    return {1, byte, 0};
  }
  if (byte >= 0xC2 && byte < 0xE0) {
    return {2, byte & 0x1FU, 0x80};
  }
  if (byte >= 0xE0 && byte < 0xF0) {
    return {3, byte & 0x0FU, 0x800};
  }
  if (byte >= 0xF0 && byte < 0xF5) {
    return {4, byte & 0x07U, 0x10000};
  }
  return {0, 0, 0};
}

bool isCharacter(std::uint32_t value) { return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF); }

}  // namespace

std::wstring wideText(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    const Lead lead = leadOf(static_cast<unsigned char>(text[0]));
    std::uint32_t value = lead.bits;
    std::size_t read = 1;
    while (read < std::min(lead.length, text.size()) &&
           (static_cast<unsigned char>(text[read]) & 0xC0U) == 0x80) {
      value = (value << 6U) | (static_cast<unsigned char>(text[read]) & 0x3FU);
      ++read;
    }
    const bool isWhole = lead.length == read && value >= lead.lowest && isCharacter(value);
    wide += isWhole ? static_cast<wchar_t>(value) : kReplacement;
    text.remove_prefix(read);
  }
  return wide;
}

std::string narrowText(std::wstring_view text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (const wchar_t character : text) {
    appendUtf8(narrow, static_cast<char32_t>(character));
  }
  return narrow;
}

}  // namespace tavenhall
