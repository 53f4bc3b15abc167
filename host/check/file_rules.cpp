#include "context/install_rules.h"
#include "context/placement_rules.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/base/unicode.h"
#include "host/check/rules.h"
#include "host/check/spelling.h"
#include "host/set/set_boundary.h"

#include <algorithm>
#include <array>
#include <map>

namespace tavenhall {

namespace {

// A folder with everything below it that is copied to one place.
struct CopiedTree {
  const SourceTree& tree;
  std::string source;
  std::string destination;
  std::function<std::string(const std::string&)> shown;
  bool isSystemFolder;
  bool isOfDisc;
  std::filesystem::path folder;  // the source on this machine; empty in an image
};

bool isInHiddenFolder(const TreeEntry& entry) {
  const std::size_t slash = entry.path.rfind('/');
  const std::string folder = slash == std::string::npos ? std::string() : entry.path.substr(0, slash);
  return isHiddenName(folder) || folder.find("/.") != std::string::npos;
}

void checkHidden(const CopiedTree& copied, Diagnostics& diagnostics) {
  int files = 0;
  int litter = 0;
  std::string first;
  std::string firstLitter;
  for (const TreeEntry& entry : copied.tree.entries()) {
    if (!entry.isHidden || isInHiddenFolder(entry)) {
      continue;
    }
    const bool isLeftOver = isSystemLitter(entry.name());
    std::string& place = isLeftOver ? firstLitter : first;
    place = place.empty() ? entry.path : place;
    ++(isLeftOver ? litter : files);
  }
  if (files > 0) {
    diagnostics.add("hidden-file", {copied.shown(first)},
                    format(_("Files and folders whose names begin with a full stop are never installed: {0} of "
                             "them here, of which this is the first."),
                           {std::to_string(files)}));
  }
  if (litter > 0) {
    diagnostics.add(
        "hidden-litter", {copied.shown(firstLitter)},
        format(_("Hidden files of the system are not installed, as intended. {0} of them take up space here."),
               {std::to_string(litter)}));
  }
}

// Whether nobody may list the folder.
bool hasMissingPermission(const TreeEntry& entry) {
  return (entry.permissions & 0444U) == 0 || (entry.permissions & 0111U) == 0;
}

std::string unreadableFolderText() {
  return _("The folder cannot be opened, so nothing in it is installed and the page reports nothing.");
}

void checkKind(const CopiedTree& copied, const TreeEntry& entry, Diagnostics& diagnostics) {
  const Place place{copied.shown(entry.path)};
  switch (entry.kind) {
    case EntryKind::linkToFile:
      if (!copied.isSystemFolder || !isInBundle(entry.path)) {
        diagnostics.add("link-copied", place,
                        _("The link is not installed as a link: the user gets a copy of its file."));
      }
      break;
    case EntryKind::linkToFolder:
      diagnostics.add(
          "link-to-folder", place,
          _("A link to a folder is installed as an empty file, and the page shows \"Failed to copy file.\""));
      break;
    case EntryKind::brokenLink:
      diagnostics.add("link-broken", place,
                      _("The link is broken, so the page shows \"Failed to open input file.\" and the "
                        "installation fails."));
      break;
    case EntryKind::other:
      diagnostics.add("special-file", place,
                      _("This is not a regular file, so the page shows \"Failed to open input file.\" and the "
                        "installation fails."));
      break;
    case EntryKind::file:
      if (isAttributesFile(copied.source + "/" + entry.path)) {
        diagnostics.add(
            "file-skipped", place,
            _("The path contains .InstallationAttributes.dat, so the page does not install the file."));
      } else if ((entry.permissions & 0444U) == 0) {
        diagnostics.add("not-readable", place,
                        _("The file cannot be read, so the page shows \"Failed to open input file.\" and the "
                          "installation fails."));
      }
      break;
    case EntryKind::folder:
      if (hasMissingPermission(entry)) {
        diagnostics.add("not-readable", place, unreadableFolderText());
      }
      break;
  }
}

void checkLength(const CopiedTree& copied, const TreeEntry& entry, Diagnostics& diagnostics) {
  const std::size_t below = 1 + entry.path.size();
  const std::size_t slash = entry.path.rfind('/');
  const std::size_t parent = slash == std::string::npos ? 0 : 1 + slash;
  const std::size_t longer = std::max(copied.source.size(), copied.destination.size());
  // Skipped if the parent folder's path is too long: that one has the diagnostic.
  if (longer + below >= kFilePathSize && longer + parent < kFilePathSize) {
    diagnostics.add(
        "path-too-long", {copied.shown(entry.path)},
        format(_("With this name a path has {0} bytes. The limit is 1023, and the installer aborts."),
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
                       [&volume](const std::string& path) { return volume.shown(path); }, false,
                       volume.volume.isMounted, volume.folder});
    }
  }
  for (const CheckedFolder& folder : checked.systemFolders) {
    trees.push_back({folder.tree, folder.folder.source, folder.folder.destination,
                     [&folder](const std::string& path) { return folder.shownRoot + "/" + path; }, true, false,
                     folder.folder.source});
  }
  return trees;
}

// Files of one destination whose names differ only in case or composition: on most disks one replaces the
// other.
class CaseClashes {
 public:
  void check(const CopiedTree& copied, const TreeEntry& entry, Diagnostics& diagnostics) {
    const std::string path = copied.destination + "/" + entry.path;
    const auto [first, isNew] = first_.try_emplace(
        comparedName(path), First{path, copied.shown(entry.path), entry.kind == EntryKind::folder});
    const bool bothFolders = first->second.isFolder && entry.kind == EntryKind::folder;
    if (isNew || first->second.path == path || bothFolders) {
      return;
    }
    if (foldCase(first->second.path) == foldCase(path)) {
      diagnostics.add(
          "case-clash", {copied.shown(entry.path)},
          format(_("The name differs from {0} only in case, so most disks keep only one of the two files."),
                 {quotedText(lastPart(first->second.path))}));
    } else {
      diagnostics.add(
          "composition-clash", {copied.shown(entry.path)},
          format(_("The name looks like that of {0}, whose letters are composed in another way, so a "
                   "Mac keeps only one of the two files."),
                 {quotedText(first->second.shown)}));
    }
  }

 private:
  struct First {
    std::string path;
    std::string shown;
    bool isFolder;
  };

  static std::string lastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

  std::map<std::string, First> first_;
};

// The same path on two discs: the later disc's file replaces the earlier one's.
class ReplacedFiles {
 public:
  void check(const CopiedTree& copied, const TreeEntry& entry, Diagnostics& diagnostics) {
    const std::filesystem::path file = copied.folder.empty() ? "" : copied.folder / entry.path;
    const auto [first, isNew] = first_.try_emplace(copied.destination + "/" + entry.path,
                                                   First{copied.shown(entry.path), file, entry.size});
    if (isNew) {
      return;
    }
    const bool canCompare = !file.empty() && !first->second.file.empty();
    if (first->second.size != entry.size || (canCompare && !haveSameContents(first->second.file, file))) {
      diagnostics.add("file-differs", {copied.shown(entry.path)},
                      format(_("This file replaces {0}, which has the same path but other contents."),
                             {quotedText(first->second.shown)}));
    }
  }

 private:
  struct First {
    std::string shown;
    std::filesystem::path file;
    std::int64_t size;
  };

  std::map<std::string, First> first_;
};

void checkName(const CopiedTree& copied, const TreeEntry& entry, Diagnostics& diagnostics) {
  if (!isValidUtf8(entry.name())) {
    diagnostics.add("name-not-utf8", {copied.shown(entry.path)},
                    _("The name is not UTF-8, which a Mac refuses, so the file is not installed there."));
  }
}

// Modes that somebody has set on purpose.
class LostModes {
 public:
  void check(const CopiedTree& copied, const TreeEntry& entry) {
    if (entry.kind != EntryKind::file) {
      return;
    }
    if ((entry.permissions & 07000U) != 0) {
      special_.add(copied.shown(entry.path));
    } else if ((entry.permissions & 0400U) != 0 && (entry.permissions & 0077U) == 0) {
      private_.add(copied.shown(entry.path));
    }
  }

  void addTo(Diagnostics& diagnostics) const {
    if (special_.count > 0) {
      diagnostics.add(
          "mode-bits-lost", {special_.first},
          plural("{0} file loses its setuid, setgid or sticky bit, because the copy keeps none.",
                 "{0} files lose their setuid, setgid or sticky bits, because the copy keeps none. This is "
                 "the first.",
                 special_.count));
    }
    if (private_.count > 0) {
      diagnostics.add(
          "mode-bits-lost", {private_.first},
          plural("{0} file that only its owner may read can be read by others when it is installed.",
                 "{0} files that only their owner may read can be read by others when they are installed. "
                 "This is the first.",
                 private_.count));
    }
  }

 private:
  struct Files {
    void add(const std::string& path) {
      first = count == 0 ? path : first;
      ++count;
    }

    std::string first;
    int count = 0;
  };

  Files special_;
  Files private_;
};

void checkUnlisted(const CopiedTree& copied, Diagnostics& diagnostics) {
  for (const std::string& folder : copied.tree.unlisted()) {
    const TreeEntry* entry = copied.tree.find(folder);
    if (entry == nullptr || !hasMissingPermission(*entry)) {  // that is a diagnostic of its own
      diagnostics.add("not-readable", {copied.shown(folder)}, unreadableFolderText());
    }
  }
}

// The files whose paths the page gives to a shell, but for those in /Applications (see bundle_rules):
// signatures, between double quotes, and whatever an update's data folder has in a folder "Applications".
class ShellPaths {
 public:
  explicit ShellPaths(const CheckedSet& checked) : checked_(checked) {}

  void check(const CopiedTree& copied, const TreeEntry& entry, Diagnostics& diagnostics) {
    const bool isOpened = checked_.whole.mode == kModeProductUpdater && !copied.isSystemFolder &&
                          isApplicationDestination(copied.destination + "/" + entry.path);
    if (isOpened && hasShellCharacter(entry.path)) {
      diagnostics.add(
          "app-path-shell", {copied.shown(entry.path)},
          _("The path contains a shell metacharacter, so the command that sets the permissions does "
            "something else."));
    }
    if (entry.kind != EntryKind::folder && isAaxSignature(copied.source + "/" + entry.path)) {
      checkSignature(copied, entry, diagnostics);
    }
  }

 private:
  static bool isReadInQuotes(std::string_view path) {
    return path.find_first_of("$`\"\\") != std::string_view::npos;
  }

  void checkSignature(const CopiedTree& copied, const TreeEntry& entry, Diagnostics& diagnostics) {
    const std::string text =
        _("The path contains a shell metacharacter, so the command that copies the plug-in's signature does "
          "something else.");
    if (isReadInQuotes(entry.path)) {
      diagnostics.add("signature-path-shell", {copied.shown(entry.path)}, text);
    } else if (isReadInQuotes(copied.source) && !isPackageNamed_) {
      isPackageNamed_ = true;
      diagnostics.add("signature-path-shell", {checked_.set.package.string()}, text);
    }
  }

  const CheckedSet& checked_;
  bool isPackageNamed_ = false;  // its own path is that of every signature
};

std::string outsideText(const OutsideReference& reference) {
  switch (reference.kind) {
    case OutsideReference::Kind::link:
      return format(
          _("The link leads to {0}, which is not in the set or not on this disc, so it leads nowhere for the "
            "user of the installer."),
          {quotedText(reference.target)});
    case OutsideReference::Kind::package: return _("The package is not in the set's folder.");
    case OutsideReference::Kind::attributesFile:
      return _("The page reads this attributes file, but it is not in the set's folder.");
    case OutsideReference::Kind::relativePath: break;
  }
  return format(_("{0} is not in the set's folder, so the user of the installer does not get the data."),
                {quotedText(reference.target)});
}

}  // namespace

void checkBoundary(const CheckedSet& checked, Diagnostics& diagnostics) {
  if (checked.allowsOutside) {
    return;
  }
  for (const OutsideReference& reference : outsideReferences(checked.set, checked.whole)) {
    diagnostics.add("outside-set", {checked.shown(reference.place), reference.line}, outsideText(reference));
  }
}

void checkFiles(const CheckedSet& checked, Diagnostics& diagnostics) {
  CaseClashes clashes;
  ReplacedFiles replaced;
  ShellPaths shellPaths(checked);
  LostModes lostModes;
  for (const CopiedTree& copied : copiedTrees(checked)) {
    checkHidden(copied, diagnostics);
    checkUnlisted(copied, diagnostics);
    for (const TreeEntry& entry : copied.tree.entries()) {
      if (!entry.isHidden) {
        checkKind(copied, entry, diagnostics);
        checkLength(copied, entry, diagnostics);
        checkName(copied, entry, diagnostics);
        lostModes.check(copied, entry);
        clashes.check(copied, entry, diagnostics);
        shellPaths.check(copied, entry, diagnostics);
        const bool isFile = entry.kind == EntryKind::file || entry.kind == EntryKind::linkToFile;
        if (copied.isOfDisc && isFile) {
          replaced.check(copied, entry, diagnostics);
        }
      }
    }
  }
  lostModes.addTo(diagnostics);
}

}  // namespace tavenhall
