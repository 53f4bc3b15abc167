#pragma once

#include "host/set/install_plan.h"
#include "host/set/installer_set.h"
#include "host/set/source_tree.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// A set with everything that the rules of a check examine.
namespace tavenhall {

struct CheckRequest {
  std::filesystem::path folder;
  std::string product;              // empty: the set's own, else the default one
  std::string installType;          // empty: the set's own, else what lies in /tmp
  std::filesystem::path installed;  // what the user has already; empty: nothing is known of it

  // The attributes file, instead of what it contains.
  std::optional<std::string> attributes = {};

  // For a sandbox, in whose /tmp there is no choice of edition.
  bool isRehearsal = false;

  bool allowsOutside = false;  // what the set refers to may lie outside its folder
};

// A volume of the whole install, and its files.
struct CheckedVolume {
  PlannedVolume volume;
  std::string folderName;
  std::string destination;
  std::string shownRoot;  // as a diagnostic names it
  bool isThere = false;   // the disc or folder exists
  bool isListed = false;  // it could be looked into
  bool hasPrimary = false;
  bool hasAlternate = false;
  std::vector<std::string> top;  // the names at the root, where they were listed
  std::string chosen;            // the data folder that the page takes, below the root; empty: neither is there
  std::filesystem::path folder;  // the data folder on this machine; empty in an image
  SourceTree tree;               // what the page would copy of it, hidden names included
  std::vector<std::string> leftOut;  // at its top, what the page passes over, since no library is called so

  // The location of the data folder, or of `path` in it, for a diagnostic.
  [[nodiscard]] std::string shown(const std::string& path = {}) const;
  [[nodiscard]] std::string source() const { return volume.root + "/" + chosen; }
};

// "Library" or "Applications" beside the package of an update.
struct CheckedFolder {
  PlannedFolder folder;
  std::string shownRoot;
  SourceTree tree;
};

// Bytes that are copied; none if a part could not be read.
struct RealSizes {
  std::optional<std::int64_t> whole;
  std::optional<std::int64_t> component;  // the first one, which is all that a Lite edition has
  std::int64_t systemFolders = 0;

  // Whether an announced size matches the real one, of the whole or of the component. The system folders of an
  // update may be included or not: they are copied, but are not data.
  [[nodiscard]] bool areClose(std::int64_t announced, std::int64_t real) const;
};

struct CheckedSet {
  InstallerSet set;
  Product product;
  bool isProductAssumed = false;
  bool isInstalledKnown = false;
  bool allowsOutside = false;
  std::string dataRoot;  // the user's, where it is known
  InstallPlan plan;      // what was asked for
  InstallPlan whole;     // the full edition, for a user of whom nothing is known
  std::vector<CheckedVolume> volumes;
  std::vector<CheckedFolder> systemFolders;

  // A path for a diagnostic: relative to the set's folder if it is in there.
  [[nodiscard]] std::string shown(const std::filesystem::path& path) const;
  // The place of a line, or of a part of it that was read.
  [[nodiscard]] Place attributesPlace(const AttributesPiece* piece = nullptr, std::string_view part = {}) const;

  [[nodiscard]] RealSizes realSizes() const;
};

// Opens the set and reads its whole content. Throws UsageError.
[[nodiscard]] CheckedSet openCheckedSet(const CheckRequest& request);

// The same for a set that is already open.
[[nodiscard]] CheckedSet openCheckedSet(InstallerSet set, const CheckRequest& request);

}  // namespace tavenhall
