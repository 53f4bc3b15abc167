#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The entries of a folder tree, without their contents. Reads only. Any thread.
namespace tavenhall {

enum class EntryKind { file, folder, linkToFile, linkToFolder, brokenLink, other };

struct TreeEntry {
  std::string path;  // below the tree's top, without a leading '/'
  EntryKind kind = EntryKind::file;
  std::int64_t size = 0;          // bytes; of a link, those of the file it leads to
  std::uint32_t permissions = 0;  // with the setuid, setgid and sticky bits, where they are known
  bool isHidden = false;          // it or a folder above has a name that begins with '.'

  [[nodiscard]] std::string name() const { return path.substr(path.rfind('/') + 1); }
};

// Whether it is a hidden file that a system creates in folders by itself.
[[nodiscard]] bool isSystemLitter(std::string_view name);

class SourceTree {
 public:
  // Everything below `folder`; empty if it is not a folder. Does not follow links to folders.
  [[nodiscard]] static SourceTree ofFolder(const std::filesystem::path& folder);

  // Of entries whose `isHidden` is not set yet.
  [[nodiscard]] static SourceTree ofEntries(std::vector<TreeEntry> entries);

  [[nodiscard]] const std::vector<TreeEntry>& entries() const { return entries_; }  // sorted by path

  // The folders that could not be listed, so that their content is unknown; empty for the top.
  [[nodiscard]] const std::vector<std::string>& unlisted() const { return unlisted_; }

  // The entry at `path`, or null.
  [[nodiscard]] const TreeEntry* find(const std::string& path) const;

  // Whether `path` exists and, if it is a link, its target too.
  [[nodiscard]] bool exists(const std::string& path) const;

  // The entries below the folder `path`, with paths relative to it.
  [[nodiscard]] SourceTree below(const std::string& path) const;

  void keepOnly(const std::function<bool(const TreeEntry&)>& isKept);

 private:
  void sort();

  std::vector<TreeEntry> entries_;
  std::vector<std::string> unlisted_;
};

// The path of an entry that is not in both, or with another kind or size; none if they are the same.
[[nodiscard]] std::optional<std::string> differenceBetween(const SourceTree& one, const SourceTree& other);

}  // namespace tavenhall
