#pragma once

#include <concepts>
#include <cstdint>
#include <string>

// Numbers for display. Pure. Any thread.
namespace tavenhall {

// "1.2 GB", "17 bytes": in powers of 1000, with one decimal from kB on. `bytes` is not negative.
[[nodiscard]] std::string sizeText(double bytes);
[[nodiscard]] std::string sizeText(std::integral auto bytes) { return sizeText(static_cast<double>(bytes)); }

// "12.3 MB" whatever the size, so that sizes can be compared.
[[nodiscard]] std::string megabytesText(std::int64_t bytes);

// "2 h 5 min", "3 min 20 s", "12 s".
[[nodiscard]] std::string durationText(double seconds);

// "12 345": digits in groups of three.
[[nodiscard]] std::string groupedNumber(std::int64_t number);

}  // namespace tavenhall
