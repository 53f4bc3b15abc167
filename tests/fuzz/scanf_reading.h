#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavenhall::fuzz {

// The attributes file read a second time, in the most literal way: fgets, sscanf and the C library's
// comparisons. It shares nothing with the product's reading.
class ScanfReading {
 public:
  // Reads the file; at most 999 lines of at most 2047 bytes.
  explicit ScanfReading(const char* path);

  struct Text {
    bool isFound = false;
    std::string value;  // what the buffer, empty before, holds after the search
  };
  // `room` is the buffer's size in bytes. Keys are compared ignoring case.
  [[nodiscard]] Text text(const char* key, std::size_t room) const;

  // The value, or `fallback` where the key is missing.
  [[nodiscard]] std::string textOr(const char* key, const std::string& fallback) const;

  // 0 where the key, compared exactly, is missing.
  [[nodiscard]] long long number(const char* key) const;

 private:
  struct Line {
    std::string key;
    std::optional<std::string> value;
    std::optional<long long> number;
  };
  std::vector<Line> lines_;
};

}  // namespace tavenhall::fuzz
