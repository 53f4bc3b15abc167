#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tavenhall {

// A folder that the page copied: its paths in the log, as the page sees them, and the real paths of source and
// destination.
struct CopiedFolder {
  std::string source;
  std::string destination;
  std::filesystem::path sourceOutside;
  std::filesystem::path destinationOutside;
  int copy = 0;  // counts the top-level copies from 0: a volume, a library's part of one, a system folder
};

// Returns the real path of a path that the page sees; empty if there is none. `copy` as in CopiedFolder: it
// distinguishes two discs of the same name.
using Locate = std::function<std::filesystem::path(const std::string& path, int copy)>;

// Reads the folders that the page copied from its installation log, in order.
[[nodiscard]] std::vector<CopiedFolder> copiedFolders(const std::filesystem::path& log, const Locate& locate);

enum class Fate {
  same,         // installed, byte for byte
  differs,      // installed with different contents
  missing,      // not installed
  replaced,     // a later copy wrote the same contents to the same place
  overwritten,  // a later copy wrote other contents there
};

struct FileFate {
  std::string source;       // as the page sees it
  std::string destination;  // likewise
  std::filesystem::path sourceOutside;
  std::int64_t bytes = 0;
  int copy = 0;
  Fate fate = Fate::same;
  bool losesSetId = false;    // the source has a setuid or setgid bit that the installed file does not have
  bool losesPrivacy = false;  // only the owner may read the source, and others may read the installed file
};

// Compares the contents of each copied file with its source, in the order of the copies, in constant memory.
// This takes long; calls `goOn` regularly, which may throw.
[[nodiscard]] std::vector<FileFate> compareFiles(
    const std::vector<CopiedFolder>& folders, const std::function<void()>& goOn = [] {});

// Returns the files below `folder` that are not sources in `fates` and have no hidden name in their path,
// relative to it and sorted.
[[nodiscard]] std::vector<std::string> filesNotCopied(const std::filesystem::path& folder,
                                                      const std::vector<FileFate>& fates);

}  // namespace tavenhall
