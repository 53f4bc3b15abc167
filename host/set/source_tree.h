#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// What lies in a folder, or in an image of one, to be looked at without being copied. Only reads. Any thread.
namespace tavenhall {

enum class EntryKind { file, folder, linkToFile, linkToFolder, brokenLink, other };

struct TreeEntry {
  std::string path;  // below the tree's top, without a leading '/'
  EntryKind kind = EntryKind::file;
  std::int64_t size = 0;  // bytes; of a link, those of the file it leads to
  std::uint32_t permissions = 0;
  bool isHidden = false;  // it or a folder above has a name that begins with '.'

  [[nodiscard]] std::string name() const { return path.substr(path.rfind('/') + 1); }
};

class SourceTree {
 public:
  // Everything below `folder`; empty where it is none. Links are not followed into.
  [[nodiscard]] static SourceTree ofFolder(const std::filesystem::path& folder);

  // Everything in a disc's image; none where it cannot be looked into here.
  [[nodiscard]] static std::optional<SourceTree> ofImage(const std::filesystem::path& image);

  // Reads what `unsquashfs -lln` prints.
  [[nodiscard]] static SourceTree ofSquashfsListing(const std::string& listing);

  [[nodiscard]] const std::vector<TreeEntry>& entries() const { return entries_; }  // sorted by path

  // The entry at `path`, or null.
  [[nodiscard]] const TreeEntry* find(const std::string& path) const;

  // Is there anything at `path` that a link or a name leads to?
  [[nodiscard]] bool exists(const std::string& path) const;

  // What lies below the folder `path`, with paths relative to it.
  [[nodiscard]] SourceTree below(const std::string& path) const;

  void keepOnly(const std::function<bool(const TreeEntry&)>& isKept);

 private:
  void sort();

  std::vector<TreeEntry> entries_;
};

}  // namespace tavenhall
