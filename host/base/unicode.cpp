#include "host/base/unicode.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>
#include <unicase.h>
#include <uninorm.h>
#include <unistr.h>
#include <vector>

namespace tavenhall {

namespace {

// The library's own types by their plain names, since its headers may make macros of std::uint8_t and
// std::uint16_t.
using Utf16Unit = unsigned short;

const unsigned char* bytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

struct Piece {
  std::size_t length;  // bytes, at least 1
  ucs4_t character;    // U+FFFD where the bytes are not UTF-8
  bool isValid;
};

// What `text` begins with; it is not empty.
Piece firstPiece(std::string_view text) {
  ucs4_t character = 0;
  const int length = u8_mbtoucr(&character, bytesOf(text), text.size());
  if (length > 0) {
    return {static_cast<std::size_t>(length), character, true};
  }
  const int skipped = u8_mbtouc(&character, bytesOf(text), text.size());
  return {static_cast<std::size_t>(std::max(skipped, 1)), character, false};
}

void appendUtf8(std::string& text, ucs4_t character) {
  constexpr ucs4_t kReplacement = 0xFFFD;
  std::array<unsigned char, 6> bytes{};
  int length = u8_uctomb(bytes.data(), character, bytes.size());
  if (length < 0) {
    length = u8_uctomb(bytes.data(), kReplacement, bytes.size());
  }
  text.append(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length));
}

}  // namespace

std::u32string decodeUtf8(std::string_view text) {
  std::u32string characters;
  characters.reserve(text.size());
  while (!text.empty()) {
    const Piece piece = firstPiece(text);
    characters += static_cast<char32_t>(piece.character);
    text.remove_prefix(piece.length);
  }
  return characters;
}

std::string encodeUtf8(std::u32string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (const char32_t character : text) {
    appendUtf8(bytes, character);
  }
  return bytes;
}

bool isValidUtf8(std::string_view text) { return u8_check(bytesOf(text), text.size()) == nullptr; }

std::string foldCase(std::string_view name) {
  std::string folded;
  while (!name.empty()) {
    const Piece piece = firstPiece(name);
    if (piece.isValid) {
      appendUtf8(folded, uc_tolower(piece.character));
    } else {
      folded += name.substr(0, piece.length);
    }
    name.remove_prefix(piece.length);
  }
  return folded;
}

std::string comparedName(std::string_view name) {
  if (!isValidUtf8(name)) {
    return foldCase(name);
  }
  std::size_t length = 0;
  const std::unique_ptr<unsigned char, void (*)(void*)> composed(
      u8_normalize(UNINORM_NFC, bytesOf(name), name.size(), nullptr, &length), std::free);
  if (composed == nullptr) {
    throw std::bad_alloc();
  }
  return foldCase({reinterpret_cast<const char*>(composed.get()), length});
}

std::string utf8OfUtf16(std::string_view bytes) {
  const bool isLittle = bytes.starts_with("\xFF\xFE") || (bytes.size() > 1 && bytes[1] == '\0');
  std::vector<Utf16Unit> units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    units.push_back(static_cast<Utf16Unit>(isLittle ? second << 8U | first : first << 8U | second));
  }
  std::string text;
  for (std::size_t at = 0; at < units.size();) {
    ucs4_t character = 0;
    at += static_cast<std::size_t>(u16_mbtouc(&character, units.data() + at, units.size() - at));
    if (character != 0xFEFF) {
      appendUtf8(text, character);
    }
  }
  return text;
}

}  // namespace tavenhall
