#include "platform/strings_text.h"

#include <cstddef>

namespace tavenhall {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";
constexpr std::string_view kLittleEndianMark = "\xFF\xFE";

std::string utf8OfUtf16(std::string_view bytes, bool isBigEndian) {
  const auto unitAt = [&](std::size_t at) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    return static_cast<char32_t>(isBigEndian ? first << 8 | second : second << 8 | first);
  };
  const std::size_t end = bytes.size() - bytes.size() % 2;
  std::string text;
  for (std::size_t at = 0; at < end; at += 2) {
    const char32_t unit = unitAt(at);
    if (isHighSurrogate(unit) && at + 2 < end && isLowSurrogate(unitAt(at + 2))) {
      at += 2;
      appendUtf8(text, joinSurrogates(unit, unitAt(at)));
    } else {
      appendUtf8(text, unit);
    }
  }
  return text;
}

// How many bytes a character has that begins with this one; 0: none begins so.
std::size_t lengthAfter(unsigned lead) {
  if (lead < 0x80) {
    return 1;
  }
  if (lead < 0xC2 || lead > 0xF4) {
    return 0;
  }
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// May a character that begins with `lead` go on with `byte`? Its second byte also keeps out what could be
// written shorter, surrogates, and what is out of range.
bool mayFollow(unsigned lead, std::size_t place, unsigned byte) {
  if (place > 1) {
    return byte >= 0x80 && byte <= 0xBF;
  }
  const unsigned least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  return byte >= least && byte <= most;
}

struct Piece {
  std::size_t length;  // bytes, at least 1
  bool isCharacter;    // a whole one, rather than what there is of one
};

// What `text` begins with; it is not empty.
Piece firstPiece(std::string_view text) {
  const auto byteAt = [&](std::size_t place) { return static_cast<unsigned char>(text[place]); };
  const std::size_t whole = lengthAfter(byteAt(0));
  std::size_t length = 1;
  while (length < whole && length < text.size() && mayFollow(byteAt(0), length, byteAt(length))) {
    ++length;
  }
  return {length, length == whole};
}

}  // namespace

std::string validUtf8(std::string_view text) {
  std::string valid;
  while (!text.empty()) {
    const Piece piece = firstPiece(text);
    if (piece.isCharacter) {
      valid.append(text.substr(0, piece.length));
    } else {
      appendUtf8(valid, 0xFFFD);
    }
    text.remove_prefix(piece.length);
  }
  return valid;
}

void appendUtf8(std::string& text, char32_t character) {
  if (character > 0x10FFFF || isHighSurrogate(character) || isLowSurrogate(character)) {
    character = 0xFFFD;
  }
  const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  const auto putRest = [&](unsigned shift) { put(0x80U | ((character >> shift) & 0x3FU)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0U | character >> 6U);
    putRest(0);
  } else if (character < 0x10000) {
    put(0xE0U | character >> 12U);
    putRest(6);
    putRest(0);
  } else {
    put(0xF0U | character >> 18U);
    putRest(12);
    putRest(6);
    putRest(0);
  }
}

std::string utf8OfFile(std::string_view bytes) {
  if (bytes.starts_with(kUtf8Mark)) {
    return std::string(bytes.substr(kUtf8Mark.size()));
  }
  if (bytes.starts_with(kBigEndianMark) || bytes.starts_with(kLittleEndianMark)) {
    return utf8OfUtf16(bytes.substr(2), bytes.starts_with(kBigEndianMark));
  }
  return std::string(bytes);
}

}  // namespace tavenhall
