#pragma once

#include "host/set/disc_medium.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Divides a library between discs. Pure. Any thread.
namespace tavenhall {

// A file of the library, or a folder with nothing in it.
struct LibraryEntry {
  std::string path;       // below the library, "Soundsources/Factory/a.db"
  std::int64_t size = 0;  // bytes
  bool isFolder = false;
};

struct DiscLayout {
  struct DiscPart {
    std::vector<std::size_t> entries;  // indexes of the library's, by path
    std::int64_t bytes = 0;            // with what the file system takes
  };
  std::vector<DiscPart> discs;
  std::size_t fewestPossible = 0;           // discs; a lower bound, whatever the layout
  std::vector<std::string> dividedFolders;  // that would fit on one disc, but are on several
};

// The bytes that an entry takes on a disc, without the folders above it.
[[nodiscard]] std::int64_t bytesOnDisc(const LibraryEntry& entry, const DiscSpace& space);

// Puts each entry on one disc. A folder that fits on a disc stays together, unless that would cost two discs or
// more. The result does not depend on the order of `entries`, except for their indexes. Each entry must fit on
// a disc with the folders above it: see fitsOnDisc().
[[nodiscard]] DiscLayout layOut(std::span<const LibraryEntry> entries, const DiscSpace& space);
[[nodiscard]] bool fitsOnDisc(const LibraryEntry& entry, const DiscSpace& space);

}  // namespace tavenhall
