#include "host/base/units.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace tavenhall {

std::string sizeText(double bytes) {
  constexpr std::array<const char*, 5> kUnits{"bytes", "kB", "MB", "GB", "TB"};
  constexpr double kRoundsUpToNextUnit = 999.95;
  std::size_t unit = 0;
  while (bytes >= kRoundsUpToNextUnit && unit + 1 < kUnits.size()) {
    bytes /= 1000.0;
    ++unit;
  }
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
  return text.data();
}

std::string megabytesText(std::int64_t bytes) {
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%.1f MB", static_cast<double>(bytes) / 1e6);
  return text.data();
}

std::string durationText(double seconds) {
  const auto whole = static_cast<long long>(std::llround(seconds));
  const long long hours = whole / 3600;
  const long long minutes = whole / 60 % 60;
  if (hours > 0) {
    return std::to_string(hours) + " h " + std::to_string(minutes) + " min";
  }
  if (minutes > 0) {
    return std::to_string(minutes) + " min " + std::to_string(whole % 60) + " s";
  }
  return std::to_string(whole) + " s";
}

std::string groupedNumber(std::int64_t number) {
  std::string text = std::to_string(number);
  const std::size_t first = number < 0 ? 1 : 0;
  for (std::size_t at = text.size(); at > first + 3;) {
    at -= 3;
    text.insert(at, " ");
  }
  return text;
}

}  // namespace tavenhall
