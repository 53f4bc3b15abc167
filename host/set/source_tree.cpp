#include "host/set/source_tree.h"

#include "context/install_rules.h"

#include <algorithm>
#include <array>
#include <sys/stat.h>
#include <utility>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kPermissionBits = 07777;

bool hasHiddenPart(const std::string& path) {
  return isHiddenName(path) || path.find("/.") != std::string::npos;
}

EntryKind kindOfLink(const fs::path& path, std::int64_t& size) {
  struct stat target {};
  if (stat(path.c_str(), &target) != 0) {
    return EntryKind::brokenLink;
  }
  size = target.st_size;
  if (S_ISDIR(target.st_mode)) {
    size = 0;
    return EntryKind::linkToFolder;
  }
  return S_ISREG(target.st_mode) ? EntryKind::linkToFile : EntryKind::other;
}

TreeEntry entryAt(const fs::path& path, std::string below) {
  TreeEntry entry;
  entry.path = std::move(below);
  entry.isHidden = hasHiddenPart(entry.path);
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0) {
    entry.kind = EntryKind::other;
    return entry;
  }
  entry.permissions = found.st_mode & kPermissionBits;
  if (S_ISDIR(found.st_mode)) {
    entry.kind = EntryKind::folder;
  } else if (S_ISLNK(found.st_mode)) {
    entry.kind = kindOfLink(path, entry.size);
  } else if (S_ISREG(found.st_mode)) {
    entry.size = found.st_size;
  } else {
    entry.kind = EntryKind::other;
  }
  return entry;
}

}  // namespace

bool isSystemLitter(std::string_view name) {
  static constexpr std::array<std::string_view, 10> kLitter{
      ".DS_Store", ".localized",  ".Trashes",         ".Spotlight-V100", ".fseventsd",
      ".apdisk",   ".background", ".VolumeIcon.icns", ".TemporaryItems", ".InstallationAttributes.dat"};
  return name.starts_with("._") || std::find(kLitter.begin(), kLitter.end(), name) != kLitter.end();
}

SourceTree SourceTree::ofFolder(const fs::path& folder) {
  SourceTree tree;
  std::vector<std::string> toList{""};
  while (!toList.empty()) {
    const std::string below = std::move(toList.back());
    toList.pop_back();
    std::error_code error;
    for (fs::directory_iterator at(folder / below, error), end; !error && at != end; at.increment(error)) {
      const std::string name = at->path().filename().string();
      tree.entries_.push_back(entryAt(at->path(), below.empty() ? name : below + "/" + name));
      if (tree.entries_.back().kind == EntryKind::folder) {
        toList.push_back(tree.entries_.back().path);
      }
    }
    if (error && !(below.empty() && error == std::errc::no_such_file_or_directory)) {
      tree.unlisted_.push_back(below);
    }
  }
  tree.sort();
  return tree;
}

SourceTree SourceTree::ofEntries(std::vector<TreeEntry> entries) {
  SourceTree tree;
  tree.entries_ = std::move(entries);
  for (TreeEntry& entry : tree.entries_) {
    entry.isHidden = hasHiddenPart(entry.path);
  }
  tree.sort();
  return tree;
}

void SourceTree::sort() {
  std::sort(entries_.begin(), entries_.end(),
            [](const TreeEntry& one, const TreeEntry& other) { return one.path < other.path; });
}

const TreeEntry* SourceTree::find(const std::string& path) const {
  const auto found =
      std::lower_bound(entries_.begin(), entries_.end(), path,
                       [](const TreeEntry& entry, const std::string& wanted) { return entry.path < wanted; });
  return found != entries_.end() && found->path == path ? &*found : nullptr;
}

bool SourceTree::exists(const std::string& path) const {
  const TreeEntry* entry = find(path);
  return entry != nullptr && entry->kind != EntryKind::brokenLink;
}

SourceTree SourceTree::below(const std::string& path) const {
  SourceTree tree;
  const std::string start = path + "/";
  for (const TreeEntry& entry : entries_) {
    if (entry.path.starts_with(start)) {
      tree.entries_.push_back(entry);
      TreeEntry& taken = tree.entries_.back();
      taken.path.erase(0, start.size());
      taken.isHidden = hasHiddenPart(taken.path);
    }
  }
  for (const std::string& folder : unlisted_) {
    if (folder == path || path.starts_with(folder + "/") || folder.empty()) {
      tree.unlisted_.emplace_back();
    } else if (folder.starts_with(start)) {
      tree.unlisted_.push_back(folder.substr(start.size()));
    }
  }
  return tree;
}

void SourceTree::keepOnly(const std::function<bool(const TreeEntry&)>& isKept) {
  std::erase_if(entries_, [&isKept](const TreeEntry& entry) { return !isKept(entry); });
}

std::optional<std::string> differenceBetween(const SourceTree& one, const SourceTree& other) {
  for (const TreeEntry& entry : one.entries()) {
    const TreeEntry* found = other.find(entry.path);
    if (found == nullptr || found->kind != entry.kind ||
        (entry.kind == EntryKind::file && found->size != entry.size)) {
      return entry.path;
    }
  }
  for (const TreeEntry& entry : other.entries()) {
    if (one.find(entry.path) == nullptr) {
      return entry.path;
    }
  }
  return std::nullopt;
}

}  // namespace tavenhall
