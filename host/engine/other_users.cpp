#include "host/engine/other_users.h"

#include "host/base/text.h"

#include <array>
#include <grp.h>
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

bool othersCanWrite(const fs::path& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0 || (S_ISDIR(found.st_mode) && (found.st_mode & S_ISVTX) != 0)) {
    return false;
  }
  const bool groupCanWrite = (found.st_mode & S_IWGRP) != 0 && !isOwnersOwnGroup(found);
  if ((found.st_mode & S_IWOTH) == 0 && !groupCanWrite) {
    return false;
  }
  struct statvfs fileSystem {};
  return statvfs(path.c_str(), &fileSystem) != 0 || (fileSystem.f_flag & ST_RDONLY) == 0;
}

}  // namespace

std::string changeableByOthers(const fs::path& package) {
  std::error_code error;
  const fs::path folder = fs::canonical(package.parent_path(), error);
  if (error) {
    return "";
  }
  std::vector<fs::path> paths{folder / ".InstallationAttributes.dat",
                              folder.parent_path() / ".InstallationAttributes.dat", folder};
  for (fs::path above = folder; above != above.root_path(); above = above.parent_path()) {
    paths.push_back(above.parent_path());
  }
  for (const fs::path& path : paths) {
    if (othersCanWrite(path)) {
      return format(_("other users can change {0} and thereby what is installed"), {path.string()});
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
