#include "tests/support/files.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <sstream>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tavenhall::test {

namespace fs = std::filesystem;

namespace {

// The start of a record of this machine's log, up to its message.
std::regex recordStart() {
  char host[256] = {};
  gethostname(host, sizeof host - 1);
  const std::string literalHost =
      std::regex_replace(std::string(host), std::regex(R"([.^$|()\[\]{}*+?\\])"), R"(\$&)");
  return std::regex(
      "(January|February|March|April|May|June|July|August|September|October|November|December) "
      "[0-9]{2} [0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2} " +
      literalHost + ": ");
}

std::string nameInTree(const fs::directory_entry& entry, const fs::path& folder) {
  const std::string name = entry.path().lexically_relative(folder).string();
  if (entry.is_symlink()) {
    return name + " -> " + fs::read_symlink(entry.path()).string();
  }
  return entry.is_directory() ? name + "/" : name;
}

// A checkout may lie in one of the folders that are otherwise empty, and is bound back there; it is nothing
// that the program has left.
bool holdsTheProject(const fs::path& path) {
  for (const std::string project : {TAVINSTALL_SOURCE_DIR, TAVINSTALL_BINARY_DIR}) {
    if (project == path.native() || project.starts_with(path.native() + "/")) {
      return true;
    }
  }
  return false;
}

}  // namespace

void writeFile(const std::string& path, std::string_view contents) {
  makeFolder(fs::path(path).parent_path().string());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  file.close();
  EXPECT_TRUE(file.good()) << "could not write " << path;
}

void makeFolder(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  EXPECT_FALSE(error) << "could not make " << path << ": " << error.message();
}

std::string pathOfLength(std::size_t length, const std::string& folder, char filling) {
  std::string path = folder;
  while (path.size() < length) {
    const std::size_t rest = length - path.size();
    path += "/" + std::string(rest > 203 ? 200 : rest - 1, filling);
  }
  EXPECT_EQ(path.size(), length);
  return path;
}

std::ptrdiff_t openDescriptors() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << "could not open " << path;
  std::ostringstream contents;
  contents << file.rdbuf();
  return contents.str();
}

mode_t modeOf(const std::string& path) {
  struct stat found {};
  EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
  return found.st_mode & 07777;
}

bool exists(const std::string& path) {
  std::error_code error;
  return fs::symlink_status(path, error).type() != fs::file_type::not_found;
}

std::string someBytes(std::size_t size, unsigned seed) {
  std::string bytes(size, '\0');
  std::uint64_t state = (std::uint64_t{seed} + 1) * 0x9e3779b97f4a7c15U;
  std::ranges::generate(bytes, [&state] {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<char>(state >> 56U);
  });
  return bytes;
}

std::vector<std::string> treeOf(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (holdsTheProject(entry->path())) {
      entry.disable_recursion_pending();
    } else {
      names.push_back(nameInTree(*entry, folder));
    }
  }
  EXPECT_FALSE(error) << "could not list " << folder << ": " << error.message();
  std::ranges::sort(names);
  return names;
}

void setPackage(const std::string& packagePath) { writeFile("/tmp/TavInstallLoc", packagePath + "\n"); }

void setAttributes(std::string_view text) {
  setPackage(std::string(kSet) + "/Installer.pkg");
  writeFile(std::string(kSet) + "/.InstallationAttributes.dat", text);
}

std::vector<std::string> logMessages(const std::string& path) {
  std::vector<std::string> messages;
  if (!exists(path)) {
    return messages;
  }
  const std::regex start = recordStart();
  std::istringstream log(readFile(path));
  for (std::string line; std::getline(log, line);) {
    std::smatch match;
    if (std::regex_search(line, match, start, std::regex_constants::match_continuous)) {
      messages.push_back(match.suffix());
    } else if (!messages.empty()) {
      messages.back() += "\n" + line;
    } else {
      ADD_FAILURE() << "the log does not begin with a record: " << line;
    }
  }
  return messages;
}

}  // namespace tavenhall::test
