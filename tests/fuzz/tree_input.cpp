#include "tests/fuzz/tree_input.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <fcntl.h>
#include <ftw.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tavenhall::fuzz {

namespace {

constexpr int kMostEntries = 60;
constexpr std::size_t kLongestName = 255;
constexpr std::size_t kLongestTarget = 900;  // so that a link and the path to it fit the page's 1024 bytes
constexpr unsigned kMostBytes = 60000;

std::string_view takeUpTo(std::string_view& text, char end) {
  const std::size_t length = std::min(text.find(end), text.size());
  const std::string_view part = text.substr(0, length);
  text.remove_prefix(std::min(length + 1, text.size()));
  return part;
}

std::string contentsOf(std::string_view said) {
  std::string contents;
  if (said.starts_with('=')) {
    contents = said.substr(1);
    std::replace(contents.begin(), contents.end(), '|', '\n');
    return contents + "\n";
  }
  unsigned size = 0;
  std::from_chars(said.data(), said.data() + said.size(), size);
  for (unsigned i = 0; i < size % (kMostBytes + 1); ++i) {
    contents += static_cast<char>(i * 31 + (i >> 8U));
  }
  return contents;
}

// Goes down one folder, which is made if it is missing; `at` is closed.
int enterFolder(int at, const std::string& name) {
  mkdirat(at, name.c_str(), 0755);
  const int folder = openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  close(at);
  return folder;
}

void layLast(int at, const std::string& name, std::string_view said) {
  if (said.starts_with('>')) {
    static_cast<void>(symlinkat(std::string(said.substr(1, kLongestTarget)).c_str(), at, name.c_str()) == 0);
    return;
  }
  const int file = openat(at, name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0644);
  if (file >= 0) {
    const std::string contents = contentsOf(said);
    static_cast<void>(write(file, contents.data(), contents.size()) < 0);
    close(file);
  }
}

void layEntry(std::string_view line, const char* folder) {
  std::string_view path = takeUpTo(line, '\t');
  path = path.substr(0, path.find('\0'));
  int at = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  while (at >= 0 && !path.empty()) {
    const bool isFolder = path.find('/') != std::string_view::npos;
    const std::string name(takeUpTo(path, '/').substr(0, kLongestName));
    if (name.empty() || name == "." || name == "..") {
      continue;
    }
    if (isFolder) {
      at = enterFolder(at, name);
    } else {
      layLast(at, name, line);
    }
  }
  if (at >= 0) {
    close(at);
  }
}

}  // namespace

void layTree(std::string_view input, const char* folder) {
  for (int entries = 0; entries < kMostEntries && !input.empty(); ++entries) {
    layEntry(takeUpTo(input, '\n'), folder);
  }
}

void clearFolder(const char* folder) {
  const auto removeEntry = [](const char* path, const struct stat* /*found*/, int /*type*/, FTW* place) {
    const bool isGone = place->level == 0 || std::remove(path) == 0;
    return isGone || errno == ENOTEMPTY || errno == EEXIST ? 0 : errno;
  };
  constexpr int kMostOpenFolders = 16;
  if (const int error = nftw(folder, removeEntry, kMostOpenFolders, FTW_DEPTH | FTW_PHYS | FTW_MOUNT)) {
    throw std::system_error(error < 0 ? errno : error, std::generic_category(), folder);
  }
}

}  // namespace tavenhall::fuzz
