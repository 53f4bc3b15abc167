#pragma once

#include "host/author/disc_layout.h"

#include <cstdint>
#include <string>

namespace tavenhall {

// A kind of disc. Its file system is ISO 9660 with Rock Ridge, Joliet and HFS+ on an optical one, exFAT on a
// flash drive.
struct DiscMedium {
  std::string name;           // "DVD-5"
  std::int64_t capacity = 0;  // bytes, of the whole medium
  bool isOptical = true;

  // What is left for files, with what each file takes, if `reserve` bytes are to stay free.
  [[nodiscard]] DiscSpace space(std::int64_t reserve) const;
};

// "dvd5", "dvd9", "bd25", "bd50", "usb:64g", or a number of bytes for an optical disc. Throws UsageError.
[[nodiscard]] DiscMedium discMedium(const std::string& name);

// "4700372992", "700m", "64g", "1t": in powers of 1000. Throws UsageError.
[[nodiscard]] std::int64_t bytesFromText(const std::string& text);

}  // namespace tavenhall
