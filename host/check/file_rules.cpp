#include "context/install_rules.h"
#include "context/placement_rules.h"
#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/check/bundles.h"
#include "host/check/rules.h"
#include "host/check/spelling.h"

#include <algorithm>
#include <array>
#include <map>

namespace tavenhall {

namespace {

constexpr std::size_t kChildPathSize = 1024;  // the page's buffers for a source and a destination

// Stands for a home whose length nobody knows: a name of 20 bytes.
constexpr std::string_view kLongHome = "/Users/12345678901234567890";

// A folder with everything below it that is copied to one place.
struct CopiedTree {
  const SourceTree& tree;
  std::string source;
  std::string destination;
  std::function<std::string(const std::string&)> shown;
  bool isSystemFolder;
};

// What systems leave lying about in folders, and nobody means to install.
bool isLitter(const std::string& name) {
  static constexpr std::array<std::string_view, 10> kLitter{
      ".DS_Store", ".localized",  ".Trashes",         ".Spotlight-V100", ".fseventsd",
      ".apdisk",   ".background", ".VolumeIcon.icns", ".TemporaryItems", ".InstallationAttributes.dat"};
  return name.starts_with("._") || std::find(kLitter.begin(), kLitter.end(), name) != kLitter.end();
}

bool isInHiddenFolder(const TreeEntry& entry) {
  const std::size_t slash = entry.path.rfind('/');
  const std::string folder = slash == std::string::npos ? std::string() : entry.path.substr(0, slash);
  return isHiddenName(folder) || folder.find("/.") != std::string::npos;
}

void checkHidden(const CopiedTree& copied, Remarks& remarks) {
  int files = 0;
  int litter = 0;
  std::string first;
  std::string firstLitter;
  for (const TreeEntry& entry : copied.tree.entries()) {
    if (!entry.isHidden || isInHiddenFolder(entry)) {
      continue;
    }
    const bool isLeftOver = isLitter(entry.name());
    std::string& place = isLeftOver ? firstLitter : first;
    place = place.empty() ? entry.path : place;
    ++(isLeftOver ? litter : files);
  }
  if (files > 0) {
    remarks.add("hidden-file", {copied.shown(first)},
                format(_("Files and folders whose names begin with a full stop are never installed: the user "
                         "does not get {0} of them here, of which this is the first."),
                       {std::to_string(files)}));
  }
  if (litter > 0) {
    remarks.add("hidden-litter", {copied.shown(firstLitter)},
                format(_("The system's own hidden files stay behind, as they should; there are {0} here that "
                         "only take up room."),
                       {std::to_string(litter)}));
  }
}

void checkKind(const CopiedTree& copied, const TreeEntry& entry, Remarks& remarks) {
  const Place place{copied.shown(entry.path)};
  switch (entry.kind) {
    case EntryKind::linkToFile:
      if (!copied.isSystemFolder || !isInBundle(entry.path)) {
        remarks.add("link-copied", place,
                    _("The link does not arrive as one: the user gets a copy of its file."));
      }
      break;
    case EntryKind::linkToFolder:
      remarks.add("link-to-folder", place,
                  _("A link to a folder arrives as an empty file, and the page says \"Failed to copy file.\""));
      break;
    case EntryKind::brokenLink:
      remarks.add(
          "link-broken", place,
          _("The link leads nowhere, so the page says \"Failed to open input file.\" and does not call the "
            "install done."));
      break;
    case EntryKind::other:
      remarks.add(
          "special-file", place,
          _("This is no file with contents, so the page says \"Failed to open input file.\" and does not call "
            "the install done."));
      break;
    case EntryKind::file:
      if (isAttributesFile(copied.source + "/" + entry.path)) {
        remarks.add(
            "file-skipped", place,
            _("The path has .InstallationAttributes.dat in it, so the page passes over the file and the "
              "user does not get it."));
      } else if ((entry.permissions & 0444U) == 0) {
        remarks.add(
            "not-readable", place,
            _("Nobody may read the file, so the page says \"Failed to open input file.\" and does not call the "
              "install done."));
      }
      break;
    case EntryKind::folder:
      if ((entry.permissions & 0444U) == 0 || (entry.permissions & 0111U) == 0) {
        remarks.add(
            "not-readable", place,
            _("Nobody may look into the folder, so nothing in it is installed, and the page says nothing."));
      }
      break;
  }
}

void checkLength(const CopiedTree& copied, const TreeEntry& entry, Remarks& remarks) {
  const std::size_t below = 1 + entry.path.size();
  const std::size_t slash = entry.path.rfind('/');
  const std::size_t parent = slash == std::string::npos ? 0 : 1 + slash;
  const std::size_t longer = std::max(copied.source.size(), copied.destination.size());
  // Where the folder above is too long already, it was said of that.
  if (longer + below >= kChildPathSize && longer + parent < kChildPathSize) {
    remarks.add(
        "path-too-long", {copied.shown(entry.path)},
        format(_("With this name a path gets {0} bytes, of which 1023 fit, and the installer ends at once."),
               {std::to_string(longer + below)}));
  }
}

std::string destinationAtLongHome(const CheckedVolume& volume) {
  std::string destination = volume.destination;
  return destination.replace(0, 1, kLongHome);  // in the place of the "~"
}

std::vector<CopiedTree> copiedTrees(const CheckedSet& checked) {
  std::vector<CopiedTree> trees;
  for (const CheckedVolume& volume : checked.volumes) {
    if (!volume.chosen.empty()) {
      trees.push_back({volume.tree, volume.source(), destinationAtLongHome(volume),
                       [&volume](const std::string& path) { return volume.shown(path); }, false});
    }
  }
  for (const CheckedFolder& folder : checked.systemFolders) {
    trees.push_back({folder.tree, folder.folder.source, folder.folder.destination,
                     [&folder](const std::string& path) { return folder.shownRoot + "/" + path; }, true});
  }
  return trees;
}

// Files of one destination whose names differ only in case: on most disks one replaces the other.
class CaseClashes {
 public:
  void check(const CopiedTree& copied, const TreeEntry& entry, Remarks& remarks) {
    const std::string path = copied.destination + "/" + entry.path;
    const auto [first, isNew] =
        first_.try_emplace(foldCase(path), First{path, entry.kind == EntryKind::folder});
    const bool bothFolders = first->second.isFolder && entry.kind == EntryKind::folder;
    if (!isNew && first->second.path != path && !bothFolders) {
      remarks.add("case-clash", {copied.shown(entry.path)},
                  format(_("Only the case of letters tells this from {0}, so on a usual disk the user gets one "
                           "file of the two."),
                         {quotedText(lastPart(first->second.path))}));
    }
  }

 private:
  struct First {
    std::string path;
    bool isFolder;
  };

  static std::string lastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

  std::map<std::string, First> first_;
};

}  // namespace

void checkFiles(const CheckedSet& checked, Remarks& remarks) {
  CaseClashes clashes;
  for (const CopiedTree& copied : copiedTrees(checked)) {
    checkHidden(copied, remarks);
    for (const TreeEntry& entry : copied.tree.entries()) {
      if (!entry.isHidden) {
        checkKind(copied, entry, remarks);
        checkLength(copied, entry, remarks);
        clashes.check(copied, entry, remarks);
      }
    }
  }
}

}  // namespace tavenhall
