#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// An installer set: a folder with the package, its InstallationAttributes file, what lies beside the
// package, and the discs. Only reads. Any thread.
namespace tavenhall {

// A disc in the set's folder "discs": a folder that holds what the volume holds, or an image of it.
struct Disc {
  int number = 0;          // from 1, the order in which they are asked for
  std::string volumeName;  // as it is mounted
  std::filesystem::path path;
  bool isImage = false;
};

struct InstallerSet {
  std::filesystem::path folder;   // absolute, without links
  std::filesystem::path package;  // absolute

  // What the set's rehearsal.json says; empty where it says nothing.
  std::string product;
  std::string installType;

  std::vector<Disc> discs;                      // by number; no number twice
  std::vector<std::filesystem::path> notDiscs;  // what else lies in "discs", without hidden names
};

// Opens the set. Throws UsageError, naming what is missing and what to do.
[[nodiscard]] InstallerSet openInstallerSet(const std::filesystem::path& folder);

// Where the user's data folders lie in `installed`: in "Library/Application Support/Tavenhall" of a home, which
// it is itself or, as what a rehearsal has kept, holds as "Users/rehearsal"; else in itself. Throws UsageError
// where there is no such folder.
[[nodiscard]] std::string dataRootIn(const std::filesystem::path& installed);

// Reads "<number> <volume name>", for an image with its extension; none where the name is not of that form.
[[nodiscard]] std::optional<Disc> discFromName(const std::filesystem::path& path, bool isFolder);

}  // namespace tavenhall
