#include "tests/fuzz/scanf_reading.h"

#include "tests/fuzz/fuzzing.h"

#include <array>
#include <cstdio>
#include <strings.h>

namespace tavenhall::fuzz {

namespace {

constexpr int kLines = 999;

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

// The part that fits, without half a character at its end; what is no UTF-8 is cut anywhere.
std::string fitting(const std::string& value, std::size_t room) {
  if (value.size() < room) {
    return value;
  }
  const std::size_t most = room - 1;
  for (std::size_t back = 0; back <= 3 && back <= most; ++back) {
    if (!isContinuation(value[most - back])) {
      return value.substr(0, most - back);
    }
  }
  return value.substr(0, most);
}

std::string finished(std::string value) {
  value = value.substr(0, value.find('\r'));
  for (std::size_t i = 0; i + 1 < value.size(); ++i) {
    if (value[i] == '\\' && (value[i + 1] == 'n' || value[i + 1] == 'r')) {
      value.replace(i, 2, " \n");
    }
  }
  return value;
}

}  // namespace

ScanfReading::ScanfReading(const char* path) {
  std::FILE* const file = std::fopen(path, "r");
  require(file != nullptr, "the attributes file is gone");
  std::array<char, 2048> text{};
  while (lines_.size() < kLines && std::fgets(text.data(), static_cast<int>(text.size()), file) != nullptr) {
    std::array<char, 2048> key{};
    std::array<char, 2048> separator{};
    std::array<char, 2048> value{};
    long long number = 0;
    const int texts =
        std::sscanf(text.data(), "%2047s %2047s %2047[^\n]", key.data(), separator.data(), value.data());
    const int numbers = std::sscanf(text.data(), "%2047s %2047s %lld", key.data(), separator.data(), &number);
    Line& line = lines_.emplace_back();
    line.key = key.data();
    if (texts == 3) {
      line.value = value.data();
    }
    if (numbers == 3) {
      line.number = number;
    }
  }
  std::fclose(file);
}

ScanfReading::Text ScanfReading::text(const char* key, std::size_t room) const {
  Text text;
  for (const Line& line : lines_) {
    if (line.value) {
      text.value = fitting(*line.value, room);
    }
    if (strcasecmp(line.key.c_str(), key) == 0) {
      return {true, finished(text.value)};
    }
  }
  return text;
}

std::string ScanfReading::textOr(const char* key, const std::string& fallback) const {
  const Text found = text(key, 2048);
  return found.isFound ? found.value : fallback;
}

long long ScanfReading::number(const char* key) const {
  long long latest = 0;
  for (const Line& line : lines_) {
    latest = line.number.value_or(latest);
    if (line.key == key) {
      return latest;
    }
  }
  return 0;
}

}  // namespace tavenhall::fuzz
