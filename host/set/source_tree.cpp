#include "host/set/source_tree.h"

#include "context/install_rules.h"
#include "host/base/child_process.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <sys/stat.h>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kPermissionBits = 0777;

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

// The target of a link at `path`, relative to the same top; empty if it is outside.
std::string targetWithin(const std::string& path, const std::string& target) {
  if (target.starts_with('/')) {
    return {};
  }
  std::string joined = (fs::path(path).parent_path() / target).lexically_normal().generic_string();
  if (joined.ends_with('/')) {
    joined.pop_back();
  }
  return joined == ".." || joined.starts_with("../") ? std::string() : joined;
}

// The limit for links to links; systems have one too.
constexpr int kMostLinks = 16;

// The permissions as `ls` shows them, "rwxr-xr-x".
std::uint32_t permissionsFrom(std::string_view letters) {
  std::uint32_t permissions = 0;
  for (const char letter : letters) {
    permissions = permissions << 1U | (letter == '-' || letter == 'S' || letter == 'T' ? 0U : 1U);
  }
  return permissions;
}

std::string_view takeField(std::string_view& line) {
  const std::size_t start = std::min(line.find_first_not_of(' '), line.size());
  line.remove_prefix(start);
  const std::string_view field = line.substr(0, line.find(' '));
  line.remove_prefix(field.size());
  return field;
}

struct ListedEntry {
  TreeEntry entry;
  std::string target;  // of a link
};

// Parses one line of a listing; false if it describes no entry.
bool readListedLine(std::string_view line, ListedEntry& listed) {
  constexpr std::string_view kTop = " squashfs-root/";
  const std::size_t top = line.find(kTop);
  const std::string_view mode = takeField(line);
  if (mode.size() != 10 || top == std::string_view::npos) {
    return false;
  }
  takeField(line);  // the owner
  const std::string_view size = takeField(line);
  std::from_chars(size.data(), size.data() + size.size(), listed.entry.size);
  listed.entry.permissions = permissionsFrom(mode.substr(1));
  const std::string_view rest = line.substr(line.find(kTop) + kTop.size());
  const std::size_t arrow = mode[0] == 'l' ? rest.find(" -> ") : std::string_view::npos;
  listed.entry.path = rest.substr(0, arrow);
  listed.entry.isHidden = hasHiddenPart(listed.entry.path);
  if (arrow != std::string_view::npos) {
    listed.target = rest.substr(arrow + 4);
  }
  switch (mode[0]) {
    case 'd': listed.entry.kind = EntryKind::folder; break;
    case 'l': listed.entry.kind = EntryKind::brokenLink; break;  // until it is followed
    case '-': listed.entry.kind = EntryKind::file; break;
    default: listed.entry.kind = EntryKind::other; break;
  }
  if (mode[0] != '-') {
    listed.entry.size = 0;
  }
  return true;
}

// Follows the entry's own link, and the links that it leads to.
void followListedLink(TreeEntry& entry, const std::map<std::string, ListedEntry>& listing) {
  std::string path = entry.path;
  for (int links = 0; links < kMostLinks; ++links) {
    const auto found = listing.find(path);
    if (found == listing.end()) {
      return;
    }
    if (found->second.target.empty()) {
      entry.kind =
          found->second.entry.kind == EntryKind::folder ? EntryKind::linkToFolder : EntryKind::linkToFile;
      entry.size = found->second.entry.size;
      return;
    }
    path = targetWithin(path, found->second.target);
  }
}

}  // namespace

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

SourceTree SourceTree::ofSquashfsListing(const std::string& listing) {
  std::map<std::string, ListedEntry> listed;
  std::string_view rest = listing;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (ListedEntry entry; readListedLine(line, entry)) {
      listed[entry.entry.path] = entry;
    }
  }
  SourceTree tree;
  for (auto& [path, entry] : listed) {
    tree.entries_.push_back(entry.entry);
    if (!entry.target.empty()) {
      followListedLink(tree.entries_.back(), listed);
    }
  }
  tree.sort();
  return tree;
}

std::optional<SourceTree> SourceTree::ofImage(const fs::path& image) {
  if (image.extension() != ".squashfs") {
    return std::nullopt;
  }
  const std::optional<std::string> listing = outputOfTool({"unsquashfs", "-lln", image.string()});
  return listing ? std::optional(ofSquashfsListing(*listing)) : std::nullopt;
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

}  // namespace tavenhall
