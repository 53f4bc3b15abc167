#include "host/check/words.h"

#include "platform/strings_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <locale>
#include <stdexcept>
#include <vector>

namespace tavenhall {

namespace {

constexpr std::size_t kLongestQuote = 60;  // bytes

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

// Takes one character off the front. 0xFFFFFFFF where the bytes are none, with one byte taken.
constexpr char32_t kNoCharacter = 0xFFFFFFFF;
char32_t takeCharacter(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t length = first < 0x80                    ? 1
                             : first >= 0xC2 && first < 0xE0 ? 2
                             : (first & 0xF0U) == 0xE0U      ? 3
                             : first >= 0xF0 && first < 0xF5 ? 4
                                                             : 0;
  char32_t character = length <= 1 ? first : first & (0x7FU >> length);
  bool isGood = length > 0 && text.size() >= length;
  for (std::size_t i = 1; isGood && i < length; ++i) {
    const auto next = static_cast<unsigned char>(text[i]);
    isGood = (next & 0xC0U) == 0x80U;
    character = character << 6U | (next & 0x3FU);
  }
  constexpr std::array<char32_t, 5> kSmallest{0, 0, 0x80, 0x800, 0x10000};
  isGood = isGood && character >= kSmallest[length] && character <= 0x10FFFF &&
           !(character >= 0xD800 && character <= 0xDFFF);
  text.remove_prefix(isGood ? length : 1);
  return isGood ? character : kNoCharacter;
}

// Every system that the page runs on has a locale that knows the characters beyond ASCII.
const std::locale& characterLocale() {
  static const std::locale locale = [] {
    for (const char* name : {"C.UTF-8", "en_US.UTF-8"}) {
      try {
        return std::locale(name);
      } catch (const std::runtime_error&) {
        continue;  // this system calls it otherwise
      }
    }
    return std::locale::classic();
  }();
  return locale;
}

}  // namespace

int lettersApart(std::string_view one, std::string_view other) {
  std::vector<std::vector<int>> apart(one.size() + 1, std::vector<int>(other.size() + 1));
  for (std::size_t i = 0; i <= one.size(); ++i) {
    for (std::size_t j = 0; j <= other.size(); ++j) {
      if (i == 0 || j == 0) {
        apart[i][j] = static_cast<int>(i + j);
        continue;
      }
      const bool isSame = lower(one[i - 1]) == lower(other[j - 1]);
      apart[i][j] =
          std::min({apart[i - 1][j] + 1, apart[i][j - 1] + 1, apart[i - 1][j - 1] + (isSame ? 0 : 1)});
      if (i > 1 && j > 1 && lower(one[i - 1]) == lower(other[j - 2]) &&
          lower(one[i - 2]) == lower(other[j - 1])) {
        apart[i][j] = std::min(apart[i][j], apart[i - 2][j - 2] + 1);
      }
    }
  }
  return apart[one.size()][other.size()];
}

bool isMisspeltFor(std::string_view written, std::string_view word) {
  if (written.size() > 2 * word.size()) {
    return false;  // also keeps a very long word from being compared
  }
  return lettersApart(written, word) <= std::max(1, static_cast<int>(word.size()) / 5);
}

bool isSameInAnyCase(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    if (takeCharacter(text) == kNoCharacter) {
      return false;
    }
  }
  return true;
}

std::string inQuotes(std::string_view text) {
  std::string quote = "\"";
  while (!text.empty() && quote.size() <= kLongestQuote) {
    const char32_t character = takeCharacter(text);
    const bool isShown =
        character != kNoCharacter && character >= 0x20 && (character < 0x7F || character >= 0xA0);
    appendUtf8(quote, isShown ? character : 0xFFFD);
  }
  return quote + (text.empty() ? "\"" : "...\"");
}

std::string megabytes(std::int64_t bytes) {
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%.1f MB", static_cast<double>(bytes) / 1e6);
  return text.data();
}

std::string caseFolded(std::string_view name) {
  std::string folded;
  while (!name.empty()) {
    const char byte = name.front();
    const char32_t character = takeCharacter(name);
    if (character == kNoCharacter) {
      folded += byte;
    } else {
      appendUtf8(folded,
                 static_cast<char32_t>(std::tolower(static_cast<wchar_t>(character), characterLocale())));
    }
  }
  return folded;
}

}  // namespace tavenhall
