#include "context/attributes_line.h"

#include "context/bounded_text.h"

#include <charconv>
#include <cstring>
#include <limits>
#include <strings.h>

namespace tavenhall {

namespace {

// The blanks of the C locale, including the newline, in every locale of the installer.
constexpr std::string_view kBlanks = " \t\n\v\f\r";

void skipBlanks(std::string_view& text) {
  const std::size_t start = text.find_first_not_of(kBlanks);
  text.remove_prefix(start == std::string_view::npos ? text.size() : start);
}

std::string_view takeWord(std::string_view& text) {
  skipBlanks(text);
  const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
  text.remove_prefix(word.size());
  return word;
}

}  // namespace

AttributesLine parseAttributesLine(std::string_view line) noexcept {
  std::string_view rest = line.substr(0, line.find('\0'));
  AttributesLine parts;
  parts.key = takeWord(rest);
  parts.separator = takeWord(rest);
  skipBlanks(rest);
  parts.value = rest.substr(0, rest.find('\n'));
  return parts;
}

bool isStringKey(std::string_view key, std::string_view wanted) noexcept {
  return key.size() == wanted.size() && strncasecmp(key.data(), wanted.data(), key.size()) == 0;
}

bool isNumberKey(std::string_view key, std::string_view wanted) noexcept { return key == wanted; }

bool readAttributesNumber(std::string_view value, std::int64_t& number) noexcept {
  const bool plusBeforeDigit = value.size() > 1 && value[0] == '+' && value[1] >= '0' && value[1] <= '9';
  if (plusBeforeDigit) {
    value.remove_prefix(1);
  }
  std::int64_t read = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), read);
  if (error == std::errc{}) {
    number = read;
  } else if (error == std::errc::result_out_of_range) {
    using Limits = std::numeric_limits<std::int64_t>;
    number = value[0] == '-' ? Limits::min() : Limits::max();
  } else {
    return false;
  }
  return true;
}

void finishAttributesValue(char* value) noexcept {
  if (char* carriageReturn = std::strchr(value, '\r')) {
    *carriageReturn = '\0';
  }
  const std::size_t length = std::strlen(value);
  for (std::size_t i = 0; i + 1 < length; ++i) {
    if (value[i] == '\\' && (value[i + 1] == 'n' || value[i + 1] == 'r')) {
      value[i] = ' ';
      value[i + 1] = '\n';  // also for the "r": either escape is a line break
    }
  }
}

bool TextSearch::show(const AttributesLine& line) noexcept {
  tookValue_ = !line.value.empty();
  if (tookValue_) {
    copyCut(value_, size_, line.value);
  }
  const bool isFound = isStringKey(line.key, key_);
  if (isFound) {
    finishAttributesValue(value_);
  }
  return isFound;
}

bool NumberSearch::show(const AttributesLine& line) noexcept {
  tookValue_ = readAttributesNumber(line.value, number_);
  isFound_ = isNumberKey(line.key, key_);
  return isFound_;
}

}  // namespace tavenhall
