#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// An installer set: a folder with the package, its InstallationAttributes file, what lies beside the
// package, and the discs. Only reads. Any thread.
namespace tavenhall {

// A disc in the set's folder "discs": a folder with the volume's content, or an image.
struct Disc {
  int number = 0;          // from 1, the order in which they are asked for
  std::string volumeName;  // as it is mounted
  std::filesystem::path path;
  bool isImage = false;
  bool isMounted = false;  // `path` is where its image is mounted, which can only be read
};

struct InstallerSet {
  std::filesystem::path folder;   // absolute, without links
  std::filesystem::path package;  // absolute

  // The values in the set's rehearsal.json; empty where it has none.
  std::string product;
  std::string installType;
  std::string discSize;  // as discMedium() takes it

  std::vector<Disc> discs;                      // by number; no number twice
  std::vector<std::filesystem::path> notDiscs;  // what else lies in "discs", without hidden names
};

// Opens the set. Throws UsageError, naming what is missing and what to do.
[[nodiscard]] InstallerSet openInstallerSet(const std::filesystem::path& folder);

// The product that the set's rehearsal.json names, beside the package or one folder above; empty if it names
// none or cannot be read.
[[nodiscard]] std::string productOfSet(const std::filesystem::path& package);

// Finds the user's data folders in `installed`: if it is a home, in its "Library/Application
// Support/Tavenhall"; if it was kept by a rehearsal, in the home "Users/rehearsal" in it; otherwise in the
// folder itself. Throws UsageError if there is no such folder.
[[nodiscard]] std::string dataRootIn(const std::filesystem::path& installed);

// Parses "<number> <volume name>", with an extension for an image; none if the name has another form.
[[nodiscard]] std::optional<Disc> discFromName(const std::filesystem::path& path, bool isFolder);

}  // namespace tavenhall
