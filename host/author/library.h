#pragma once

#include "host/author/disc_layout.h"
#include "host/set/disc_medium.h"
#include "host/set/source_tree.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tavenhall {

// A sample library as it is to be installed.
struct SourceLibrary {
  std::filesystem::path folder;
  std::string place;                  // where its content goes on a disc, "TANVO" or "TANVO/My Library"
  SourceTree tree;                    // of `folder`
  std::vector<LibraryEntry> entries;  // by their paths on a disc; without hidden names
  std::int64_t bytes = 0;             // of all files
  std::vector<std::string> leftOut;   // what is beside the data folder

  [[nodiscard]] std::filesystem::path source(const LibraryEntry& entry) const;
};

// Reads a library: `folder` is the data folder itself (called `dataFolder`, "TANVO"), holds it, or is one
// library in it. Throws UsageError if there is no such folder, or no content in it.
[[nodiscard]] SourceLibrary readLibrary(const std::filesystem::path& folder, const std::string& dataFolder);

// Why it cannot be put on such discs, with `reserve` bytes left free: sentences in the current language, each
// with the path it is about. Empty: it can.
[[nodiscard]] std::vector<std::string> libraryProblems(const SourceLibrary& library, const DiscMedium& medium,
                                                       std::int64_t reserve);

}  // namespace tavenhall
