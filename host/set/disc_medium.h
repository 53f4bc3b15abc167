#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavenhall {

// What a disc holds, and what its file system takes of that. All in bytes.
struct DiscSpace {
  std::int64_t capacity = 0;     // for files, folders and their names
  std::int64_t block = 1;        // a file takes a multiple of it
  std::int64_t perEntry = 0;     // for the name of a file or folder, whatever its length,
  std::int64_t perNameByte = 0;  // and for each byte of the name
  std::int64_t perFolder = 0;
};

// What a file or folder takes on a disc, without the folders above it. Only the last part of the path counts.
[[nodiscard]] std::int64_t fileBytesOnDisc(std::string_view path, std::int64_t size, const DiscSpace& space);
[[nodiscard]] std::int64_t folderBytesOnDisc(std::string_view path, const DiscSpace& space);

// A kind of disc. Its file system is ISO 9660 with Rock Ridge, Joliet and HFS+ on an optical one, exFAT on a
// flash drive.
struct DiscMedium {
  std::string given;          // what discMedium() was given
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
