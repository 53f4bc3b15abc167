#include "host/engine/other_users.h"

#include "host/base/text.h"
#include "platform/host_system.h"

#include <algorithm>
#include <array>
#include <grp.h>
#include <iterator>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kEntrySize = 16384;  // bytes for one entry of the users or groups

// Many systems give each user a private group of the same name.
bool isOwnersOwnGroup(const struct stat& found) {
  std::array<char, kEntrySize> userBuffer{};
  std::array<char, kEntrySize> groupBuffer{};
  passwd user{};
  group members{};
  passwd* foundUser = nullptr;
  group* foundGroup = nullptr;
  getpwuid_r(found.st_uid, &user, userBuffer.data(), userBuffer.size(), &foundUser);
  getgrgid_r(found.st_gid, &members, groupBuffer.data(), groupBuffer.size(), &foundGroup);
  return foundUser != nullptr && foundGroup != nullptr && std::string_view(user.pw_name) == members.gr_name &&
         members.gr_mem[0] == nullptr;
}

bool isReadOnly(const fs::path& path) {
  struct statvfs fileSystem {};
  return statvfs(path.c_str(), &fileSystem) == 0 && (fileSystem.f_flag & ST_RDONLY) != 0;
}

bool othersCanWrite(const fs::path& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) {
    return false;
  }
  const GroupWriters group = groupWritersOf(path.c_str(), found.st_mode, found.st_uid);
  const bool groupCanWrite = group.others || (group.owningGroup && !isOwnersOwnGroup(found));
  return ((found.st_mode & S_IWOTH) != 0 || groupCanWrite) && !isReadOnly(path);
}

std::string changeableText(const fs::path& path) {
  return format(_("other users can change {0} and thereby what is installed"),
                {path.lexically_normal().string()});
}

// Goes the way that the system goes to a path, to the first place on it that others can write, the path itself
// included. A link is no more to be trusted than the folder that it is in.
std::string wayChangeableByOthers(const fs::path& path) {
  constexpr int kMostLinks = 40;  // the system's own limit
  int links = 0;
  const fs::path whole = fs::absolute(path);
  std::vector<fs::path> ahead(whole.begin(), whole.end());
  std::reverse(ahead.begin(), ahead.end());
  fs::path at;
  while (!ahead.empty() && links <= kMostLinks) {
    // An absolute link begins with "/", which replaces what was before.
    const fs::path next = at / ahead.back();
    ahead.pop_back();
    std::error_code error;
    if (fs::is_symlink(next, error)) {
      ++links;
      const fs::path target = fs::read_symlink(next, error);
      ahead.insert(ahead.end(), std::make_reverse_iterator(target.end()),
                   std::make_reverse_iterator(target.begin()));
    } else if (at = next; othersCanWrite(at)) {
      return changeableText(at);
    }
  }
  return "";
}

std::string attributesFileOfOthers(const fs::path& file) {
  struct stat found {};
  if (stat(file.c_str(), &found) != 0) {
    return "";
  }
  if (std::string text = wayChangeableByOthers(file); !text.empty()) {
    return text;
  }
  return found.st_uid == geteuid() || found.st_uid == 0 || isReadOnly(file)
             ? ""
             : format(_("{0} belongs to another user, who decides what is installed"), {file.string()});
}

}  // namespace

std::string changeableByOthers(const fs::path& package) {
  std::error_code error;
  const fs::path folder = fs::canonical(package.parent_path(), error);
  if (error) {
    return "";
  }
  std::string text = wayChangeableByOthers(package.parent_path());
  // The page takes the second one where there is no first.
  for (const fs::path& place : {folder, folder.parent_path()}) {
    text = text.empty() ? attributesFileOfOthers(place / ".InstallationAttributes.dat") : text;
  }
  return text;
}

std::string sourceChangeableByOthers(const fs::path& folder, Depth depth) {
  std::string text = wayChangeableByOthers(folder);
  std::error_code error;
  if (depth == Depth::folderAlone || !text.empty()) {
    return text;
  }
  for (fs::recursive_directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    if (!at->is_symlink(error) && othersCanWrite(at->path())) {
      return changeableText(at->path());
    }
  }
  return "";
}

std::string writtenByOthers(const fs::path& file) {
  struct stat found {};
  if (lstat(file.c_str(), &found) != 0 || found.st_uid == geteuid() || found.st_uid == 0) {
    return "";
  }
  return format(_("{0} was written by another user"), {file.string()});
}

}  // namespace tavenhall
