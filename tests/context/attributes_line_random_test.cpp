#include "context/attributes_line.h"

#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

// The grammar is scanf's, written out so that no locale and no buffer comes into it. Here it is held against
// scanf itself, in the C locale, over lines made of what is likely to make a difference.
namespace tavenhall {
namespace {

constexpr int kLines = 50000;

// A piece of a line, biased to blanks, signs, digits, NULs, newlines and high bytes.
std::string randomPiece(std::mt19937& random) {
  static const std::vector<std::string> kPieces = {" ",
                                                   "  ",
                                                   "\t",
                                                   "\v",
                                                   "\f",
                                                   "\r",
                                                   "\n",
                                                   std::string(1, '\0'),
                                                   "=",
                                                   "Mode",
                                                   "key",
                                                   "\\n",
                                                   "\\r",
                                                   "%s",
                                                   "%",
                                                   "+",
                                                   "-",
                                                   "0",
                                                   "7",
                                                   "42",
                                                   "9223372036854775807",
                                                   "9223372036854775808",
                                                   "-9223372036854775809",
                                                   "0x1f",
                                                   ".",
                                                   "\x80",
                                                   "\xa0",
                                                   "\x85",
                                                   "\xc3\xa9",
                                                   "\xff",
                                                   "abc"};
  if (random() % 8 == 0) {
    return std::string(1, static_cast<char>(random() % 256));
  }
  return kPieces[random() % kPieces.size()];
}

std::string randomLine(std::mt19937& random) {
  std::string line;
  const auto pieces = random() % 12;
  for (auto i = pieces; i > 0; --i) {
    line += randomPiece(random);
  }
  return line;
}

// A printable form of a line, for messages.
std::string shown(const std::string& line) { return testing::PrintToString(line); }

TEST(AttributesLineAgainstScanf, PartsAreThoseOfTheScanFormat) {
  std::mt19937 random(20240611);
  for (int i = 0; i < kLines; ++i) {
    const std::string line = randomLine(random);
    std::array<char, 2048> key{};
    std::array<char, 2048> separator{};
    std::array<char, 2048> value{};
    static_cast<void>(
        std::sscanf(line.c_str(), "%2047s %2047s %2047[^\n]", key.data(), separator.data(), value.data()));
    const AttributesLine parts = parseAttributesLine(line);
    ASSERT_EQ(parts.key, std::string_view(key.data())) << shown(line);
    ASSERT_EQ(parts.separator, std::string_view(separator.data())) << shown(line);
    ASSERT_EQ(parts.value, std::string_view(value.data())) << shown(line);
  }
}

TEST(AttributesLineAgainstScanf, NumbersAreThoseOfTheScanFormat) {
  std::mt19937 random(20240612);
  int numbers = 0;
  for (int i = 0; i < kLines; ++i) {
    const std::string line = "key = " + randomLine(random);
    std::array<char, 2048> key{};
    std::array<char, 2048> separator{};
    long long expected = 77;
    numbers +=
        std::sscanf(line.c_str(), "%2047s %2047s %lld", key.data(), separator.data(), &expected) == 3 ? 1 : 0;
    std::int64_t number = 77;
    readAttributesNumber(parseAttributesLine(line).value, number);
    ASSERT_EQ(number, expected) << shown(line);
  }
  EXPECT_GT(numbers, kLines / 20) << "too few of the lines have a number to compare";
}

}  // namespace
}  // namespace tavenhall
