#include "host/check/spelling.h"

#include "host/base/unicode.h"

#include <algorithm>
#include <vector>

namespace tavenhall {

namespace {

constexpr std::size_t kLongestQuote = 60;  // bytes

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

bool isPrintable(char32_t character) { return character >= 0x20 && (character < 0x7F || character >= 0xA0); }

}  // namespace

int editDistance(std::string_view one, std::string_view other) {
  std::vector<std::vector<int>> distance(one.size() + 1, std::vector<int>(other.size() + 1));
  for (std::size_t i = 0; i <= one.size(); ++i) {
    for (std::size_t j = 0; j <= other.size(); ++j) {
      if (i == 0 || j == 0) {
        distance[i][j] = static_cast<int>(i + j);
        continue;
      }
      const bool isSame = lower(one[i - 1]) == lower(other[j - 1]);
      distance[i][j] =
          std::min({distance[i - 1][j] + 1, distance[i][j - 1] + 1, distance[i - 1][j - 1] + (isSame ? 0 : 1)});
      if (i > 1 && j > 1 && lower(one[i - 1]) == lower(other[j - 2]) &&
          lower(one[i - 2]) == lower(other[j - 1])) {
        distance[i][j] = std::min(distance[i][j], distance[i - 2][j - 2] + 1);
      }
    }
  }
  return distance[one.size()][other.size()];
}

bool isMisspellingOf(std::string_view written, std::string_view word) {
  if (written.size() > 2 * word.size()) {
    return false;  // also keeps a very long word from being compared
  }
  return editDistance(written, word) <= std::max(1, static_cast<int>(word.size()) / 5);
}

bool equalsIgnoringCase(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

std::string quotedText(std::string_view text) {
  std::string quote = "\"";
  const std::u32string characters = decodeUtf8(text);
  std::size_t read = 0;
  for (; read < characters.size() && quote.size() <= kLongestQuote; ++read) {
    const char32_t character = isPrintable(characters[read]) ? characters[read] : U'\uFFFD';
    quote += encodeUtf8({&character, 1});
  }
  return quote + (read == characters.size() ? "\"" : "...\"");
}

std::string nearestName(const std::vector<std::string>& names, std::string_view written) {
  std::string nearest;
  for (const std::string& name : names) {
    if (name != written && isMisspellingOf(written, name) &&
        (nearest.empty() || editDistance(written, name) < editDistance(written, nearest))) {
      nearest = name;
    }
  }
  return nearest;
}

}  // namespace tavenhall
