#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tavenhall {

// A folder that the page copied, as its log names it (paths as the page saw them), and where both sides
// really lie.
struct CopiedFolder {
  std::string source;
  std::string destination;
  std::filesystem::path sourceOutside;
  std::filesystem::path destinationOutside;
  int copy = 0;  // counts the top-level copies from 0: a volume, a library's part of one, a system folder
};

// Where a path of the page's really lies; empty for what is nowhere. `copy` as in CopiedFolder: two discs of
// one name differ in it.
using Locate = std::function<std::filesystem::path(const std::string& path, int copy)>;

// Reads the folders that the page copied from its installation log, in order.
[[nodiscard]] std::vector<CopiedFolder> copiedFolders(const std::filesystem::path& log, const Locate& locate);

enum class Fate {
  same,      // installed, byte for byte
  differs,   // installed with other contents
  missing,   // not installed
  replaced,  // a later copy brought another file for the same place
};

struct FileFate {
  std::string source;       // as the page saw it
  std::string destination;  // likewise
  std::filesystem::path sourceOutside;
  std::int64_t bytes = 0;
  int copy = 0;
  Fate fate = Fate::same;
};

// What became of each file, in the order in which they were copied: compares contents, whatever their size,
// without holding them in memory. It takes long; `goOn` is called every now and then, and may throw.
[[nodiscard]] std::vector<FileFate> compareFiles(
    const std::vector<CopiedFolder>& folders, const std::function<void()>& goOn = [] {});

// The files below `folder` that are none of the sources in `fates` and have no hidden name on their way, as
// paths below it, sorted.
[[nodiscard]] std::vector<std::string> filesNotCopied(const std::filesystem::path& folder,
                                                      const std::vector<FileFate>& fates);

}  // namespace tavenhall
