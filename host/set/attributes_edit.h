#pragma once

#include "host/set/attributes_reading.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Changes of an attributes file. Pure. Any thread.
namespace tavenhall {

// Bytes of the file, and what to write instead.
struct AttributesCorrection {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::string text;

  bool operator==(const AttributesCorrection& other) const = default;
};

// Replaces a part of a line that was read.
[[nodiscard]] AttributesCorrection correctionOf(const AttributesReading& attributes, std::string_view part,
                                                std::string_view text);

// Gives the key that value: in the line in which the page finds it, whose ending stays, or in a new last line.
[[nodiscard]] AttributesCorrection textCorrection(const AttributesReading& attributes, std::string_view key,
                                                  std::string_view value);
[[nodiscard]] AttributesCorrection numberCorrection(const AttributesReading& attributes, std::string_view key,
                                                    std::int64_t value);

[[nodiscard]] std::string corrected(std::string_view bytes, const AttributesCorrection& correction);

// The size to announce for so many bytes, in the millions of TotalSizeMillionsBytes.
[[nodiscard]] std::int64_t millionsToAnnounce(std::int64_t bytes);

[[nodiscard]] std::string withText(const std::string& bytes, std::string_view key, std::string_view value);
[[nodiscard]] std::string withNumber(const std::string& bytes, std::string_view key, std::int64_t value);

// What was changed, in the form of `diff -U0`, without the carriage returns of Windows; empty if
// nothing was. `name` is that of the file.
[[nodiscard]] std::string unifiedDiff(std::string_view name, std::string_view before, std::string_view after);

}  // namespace tavenhall
