#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// The entries of a folder tree or of a disc image, without their contents. Reads only. Any thread.
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
  // Everything below `folder`; empty if it is not a folder. Does not follow links to folders.
  [[nodiscard]] static SourceTree ofFolder(const std::filesystem::path& folder);

  // Everything in a disc image; none if no tool here can list it.
  [[nodiscard]] static std::optional<SourceTree> ofImage(const std::filesystem::path& image);

  // Parses the output of `unsquashfs -lln`.
  [[nodiscard]] static SourceTree ofSquashfsListing(const std::string& listing);

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

}  // namespace tavenhall
