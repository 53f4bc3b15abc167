#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The files that an installation starts from: what discs and packages hold, and what the user already has.
namespace tavenhall::test {

struct Entry {
  enum class Kind { file, folder, link, pipe };

  Kind kind;
  std::string path;  // below the folder that it is laid in
  std::string text;  // a file's contents, a link's target
};

// A file of `size` bytes that no other file has.
[[nodiscard]] Entry file(std::string_view path, std::size_t size);
[[nodiscard]] Entry textFile(std::string_view path, std::string_view contents);
[[nodiscard]] Entry folder(std::string_view path);
[[nodiscard]] Entry link(std::string_view path, std::string_view target);
[[nodiscard]] Entry pipe(std::string_view path);

// Makes the entries, with the folders above them (0755; files 0644), in an order that makes the system list
// each folder in the order of the names. The page follows the listing, so its log and its events are the
// same wherever the tests run. Lay all that goes into one folder at once. Throws where this cannot be had.
void layTree(const std::string& folder, const std::vector<Entry>& entries);

// Every path below `folders`, sorted, with its permissions, and for a file the laid file that it equals byte
// for byte:
//   drwxr-xr-x /Library/Audio
//   -rw-r--r-- /Library/Audio/a.db = /Volumes/Disc/a.db
//   -rw------- /Library/Audio/b.db (as it was)          laid there, and not changed since
//   -rw-r--r-- /Library/Audio/c.db (empty)
//   lrwxrwxrwx /Library/Audio/d -> a.db
[[nodiscard]] std::vector<std::string> describeTree(const std::vector<std::string>& folders);

}  // namespace tavenhall::test
