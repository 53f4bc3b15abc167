#include "host/set/disc_image.h"

#include "host/base/child_process.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <charconv>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kListedPermissions = 0777;

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

SourceTree treeOf(const std::map<std::string, ListedEntry>& listing) {
  std::vector<TreeEntry> entries;
  entries.reserve(listing.size());
  for (const auto& [path, listed] : listing) {
    entries.push_back(listed.entry);
    if (!listed.target.empty()) {
      followListedLink(entries.back(), listing);
    }
  }
  return SourceTree::ofEntries(std::move(entries));
}

ListedEntry listedEntry(archive_entry* found, const std::map<std::string, ListedEntry>& listing) {
  ListedEntry listed;
  const char* path = archive_entry_pathname(found);
  listed.entry.path = path != nullptr ? path : "";
  listed.entry.permissions = archive_entry_perm(found) & kListedPermissions;
  switch (archive_entry_filetype(found)) {
    case AE_IFDIR: listed.entry.kind = EntryKind::folder; break;
    case AE_IFLNK: {
      const char* target = archive_entry_symlink(found);
      listed.entry.kind = EntryKind::brokenLink;  // until it is followed
      listed.target = target != nullptr ? target : "";
      break;
    }
    case AE_IFREG: listed.entry.size = archive_entry_size(found); break;
    default: listed.entry.kind = EntryKind::other; break;
  }
  // Files of the same bytes are listed as links to the first of them, without a size.
  if (const char* first = archive_entry_hardlink(found); first != nullptr) {
    const auto other = listing.find(first);
    listed.entry.kind = other != listing.end() ? EntryKind::file : EntryKind::other;
    listed.entry.size = other != listing.end() ? other->second.entry.size : 0;
  }
  return listed;
}

std::optional<SourceTree> treeOfIso(const fs::path& image) {
  constexpr std::size_t kBlock = 65536;
  const std::unique_ptr<archive, int (*)(archive*)> iso(archive_read_new(), archive_read_free);
  archive_read_support_format_iso9660(iso.get());
  if (archive_read_open_filename(iso.get(), image.c_str(), kBlock) != ARCHIVE_OK) {
    return std::nullopt;
  }
  std::map<std::string, ListedEntry> listing;
  archive_entry* found = nullptr;
  int status = ARCHIVE_OK;
  while ((status = archive_read_next_header(iso.get(), &found)) == ARCHIVE_OK) {
    ListedEntry listed = listedEntry(found, listing);
    if (!listed.entry.path.empty() && listed.entry.path != ".") {
      listing[listed.entry.path] = std::move(listed);
    }
  }
  return status == ARCHIVE_EOF ? std::optional(treeOf(listing)) : std::nullopt;
}

}  // namespace

SourceTree treeOfSquashfsListing(const std::string& listing) {
  std::map<std::string, ListedEntry> listed;
  std::string_view rest = listing;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (ListedEntry entry; readListedLine(line, entry)) {
      listed[entry.entry.path] = entry;
    }
  }
  return treeOf(listed);
}

std::optional<SourceTree> treeOfImage(const fs::path& image) {
  if (image.extension() != ".squashfs") {
    return treeOfIso(image);
  }
  const std::optional<std::string> listing = outputOfTool({"unsquashfs", "-lln", image.string()});
  return listing ? std::optional(treeOfSquashfsListing(*listing)) : std::nullopt;
}

}  // namespace tavenhall
