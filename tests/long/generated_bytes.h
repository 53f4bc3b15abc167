#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tavenhall::test {

// The bytes of an endless file of which nothing is stored: those from `offset` on of the file `number`. They
// differ from place to place and from file to file.
inline void generateBytes(std::uint64_t number, std::uint64_t offset, char* bytes, std::size_t count) {
  while (count > 0) {
    std::uint64_t word = (number << 40U) + offset / 8;
    word = (word ^ (word >> 30U)) * 0xbf58476d1ce4e5b9U;
    word = (word ^ (word >> 27U)) * 0x94d049bb133111ebU;
    const std::size_t start = offset % 8;
    const std::size_t length = std::min(count, 8 - start);
    std::memcpy(bytes, reinterpret_cast<const char*>(&word) + start, length);
    bytes += length;
    offset += length;
    count -= length;
  }
}

}  // namespace tavenhall::test
