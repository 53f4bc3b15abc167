#include "tests/install/source_tree.h"

#include "tests/support/files.h"

#include <algorithm>
#include <dirent.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace tavenhall::test {

namespace fs = std::filesystem;

namespace {

// The contents of every laid file, by its path.
std::map<std::string, std::string>& laidFiles() {
  static std::map<std::string, std::string> files;
  return files;
}

std::vector<std::string> listing(const std::string& folder) {
  std::vector<std::string> names;
  DIR* open = opendir(folder.c_str());
  if (open == nullptr) {
    throw std::runtime_error("cannot list " + folder);
  }
  while (const dirent* entry = readdir(open)) {
    if (const std::string name = entry->d_name; name != "." && name != "..") {
      names.push_back(name);
    }
  }
  closedir(open);
  return names;
}

// Does the system list the newest entry first? Folders in memory are listed so or the other way round,
// depending on the system's version.
bool listsNewestFirst(const std::string& folder) {
  const std::string probe = folder + "/.order";
  fs::create_directories(probe + "/1");
  fs::create_directories(probe + "/2");
  const bool newestFirst = listing(probe).front() == "2";
  fs::remove_all(probe);
  return newestFirst;
}

struct Node {
  const Entry* entry = nullptr;  // none for a folder that only lies above others
  std::map<std::string, Node> children;
};

bool isFolder(const Node& node) {
  return node.entry == nullptr || node.entry->kind == Entry::Kind::folder || !node.children.empty();
}

void makeEntry(const std::string& path, const Node& node) {
  if (isFolder(node)) {
    fs::create_directory(path);
    return;
  }
  switch (node.entry->kind) {
    case Entry::Kind::file:
      writeFile(path, node.entry->text);
      laidFiles()[path] = node.entry->text;
      break;
    case Entry::Kind::link: fs::create_symlink(node.entry->text, path); break;
    case Entry::Kind::pipe: EXPECT_EQ(mkfifo(path.c_str(), 0644), 0) << path; break;
    case Entry::Kind::folder: break;
  }
}

void makeChildren(const std::string& folder, const Node& node, bool newestFirst) {
  std::vector<std::string> names;
  for (const auto& [name, child] : node.children) {
    names.push_back(name);
  }
  std::vector<std::string> order = names;
  if (newestFirst) {
    std::ranges::reverse(order);
  }
  for (const std::string& name : order) {
    makeEntry(folder + "/" + name, node.children.at(name));
  }
  std::vector<std::string> listed = listing(folder);
  std::erase_if(listed, [&](const std::string& name) { return !node.children.contains(name); });
  if (listed != names) {
    throw std::runtime_error("the system does not list " + folder + " in an order that a test can choose");
  }
  for (const auto& [name, child] : node.children) {
    if (isFolder(child)) {
      makeChildren(folder + "/" + name, child, newestFirst);
    }
  }
}

std::string permissionsText(const struct stat& found) {
  std::string text = S_ISDIR(found.st_mode)   ? "d"
                     : S_ISLNK(found.st_mode) ? "l"
                     : S_ISREG(found.st_mode) ? "-"
                                              : "?";
  for (int bit = 8; bit >= 0; --bit) {
    text += (found.st_mode >> bit & 1U) != 0 ? "xwr"[bit % 3] : '-';
  }
  return text;
}

std::string contentsText(const std::string& path) {
  const std::string contents = readFile(path);
  const auto& files = laidFiles();
  if (const auto laid = files.find(path); laid != files.end() && laid->second == contents) {
    return " (as it was)";
  }
  if (contents.empty()) {
    return " (empty)";
  }
  for (const auto& [laidPath, laidContents] : files) {
    if (laidContents == contents) {
      return " = " + laidPath;
    }
  }
  for (const auto& [laidPath, laidContents] : files) {
    if (laidContents.starts_with(contents)) {
      return " (the first " + std::to_string(contents.size()) + " bytes of " + laidPath + ")";
    }
  }
  return " (" + std::to_string(contents.size()) + " bytes that were not laid)";
}

std::string describe(const fs::path& path) {
  struct stat found {};
  EXPECT_EQ(lstat(path.c_str(), &found), 0) << path;
  std::string line = permissionsText(found) + " " + path.string();
  if (S_ISLNK(found.st_mode)) {
    line += " -> " + fs::read_symlink(path).string();
  } else if (S_ISREG(found.st_mode)) {
    line += contentsText(path);
  }
  return line;
}

}  // namespace

Entry file(std::string_view path, std::size_t size) {
  static unsigned seed = 0;
  return {Entry::Kind::file, std::string(path), someBytes(size, ++seed)};
}

Entry textFile(std::string_view path, std::string_view contents) {
  return {Entry::Kind::file, std::string(path), std::string(contents)};
}

Entry folder(std::string_view path) { return {Entry::Kind::folder, std::string(path), ""}; }

Entry link(std::string_view path, std::string_view target) {
  return {Entry::Kind::link, std::string(path), std::string(target)};
}

Entry pipe(std::string_view path) { return {Entry::Kind::pipe, std::string(path), ""}; }

void layTree(const std::string& folder, const std::vector<Entry>& entries) {
  umask(022);
  makeFolder(folder);
  Node top;
  for (const Entry& entry : entries) {
    Node* node = &top;
    for (const fs::path& name : fs::path(entry.path)) {
      node = &node->children[name.string()];
    }
    node->entry = &entry;
  }
  makeChildren(folder, top, listsNewestFirst(folder));
}

std::vector<std::string> describeTree(const std::vector<std::string>& folders) {
  std::vector<fs::path> paths;
  for (const std::string& folder : folders) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
      paths.push_back(entry.path());
    }
  }
  std::ranges::sort(paths, {}, [](const fs::path& path) { return path.string(); });
  std::vector<std::string> lines;
  for (const fs::path& path : paths) {
    lines.push_back(describe(path));
  }
  return lines;
}

}  // namespace tavenhall::test
