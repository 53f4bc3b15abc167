#include "tests/support/private_root.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <linux/capability.h>
#include <sched.h>
#include <sstream>
#include <string_view>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace tavenhall::test {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 5> kReplaced = {"tmp", "Volumes", "Library", "Applications", "Users"};

// Where the real system hangs while the new root is built.
const fs::path kOldRoot = "/.old-root";

[[noreturn]] void giveUp(const std::string& what) {
  const int error = errno;
  std::fprintf(stderr, "the tests need a private mount namespace: %s: %s\n", what.c_str(),
               std::strerror(error));
  std::exit(2);
}

void require(bool succeeded, const std::string& what) {
  if (!succeeded) {
    giveUp(what);
  }
}

void writeMap(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
  file.close();
  require(file.good(), "writing " + path);
}

void enterNamespace() {
  if (geteuid() == 0 && unshare(CLONE_NEWNS) == 0) {
    return;
  }
  const std::string user = std::to_string(geteuid());
  const std::string group = std::to_string(getegid());
  require(unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "unshare");
  writeMap("/proc/self/setgroups", "deny");
  writeMap("/proc/self/uid_map", "0 " + user + " 1");
  writeMap("/proc/self/gid_map", "0 " + group + " 1");
}

void bind(const fs::path& from, const fs::path& to) {
  require(mount(from.c_str(), to.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0, "bind " + to.string());
}

// A tmpfs becomes the root, with the real one below kOldRoot.
void turnRootOver() {
  require(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private /");
  require(mount("tmpfs", "/tmp", "tmpfs", MS_NOSUID | MS_NODEV, "mode=755") == 0, "tmpfs");
  const std::string oldRoot = "/tmp" + kOldRoot.string();
  require(mkdir(oldRoot.c_str(), 0755) == 0, oldRoot);
  require(syscall(SYS_pivot_root, "/tmp", oldRoot.c_str()) == 0, "pivot_root");
  require(chdir("/") == 0, "chdir");
}

void showEntry(const fs::directory_entry& entry) {
  const fs::path place = "/" / entry.path().filename();
  if (entry.is_symlink()) {
    fs::create_symlink(fs::read_symlink(entry.path()), place);
    return;
  }
  if (entry.is_directory()) {
    fs::create_directory(place);
  } else {
    std::ofstream{place};
  }
  bind(entry.path(), place);
}

bool isReplaced(const fs::path& topLevelName) {
  return std::ranges::find(kReplaced, topLevelName.string()) != kReplaced.end();
}

// The folders that the tests themselves need, as far as they lie below a replaced one. They are looked up
// while the real root is still in place, since links on their way may not survive.
std::vector<fs::path> hiddenProjectFolders() {
  std::vector<fs::path> hidden;
  for (const fs::path& folder : {fs::path(TAVINSTALL_SOURCE_DIR), fs::path(TAVINSTALL_BINARY_DIR),
                                 fs::read_symlink("/proc/self/exe").parent_path()}) {
    std::error_code error;
    const fs::path real = fs::canonical(folder, error);
    if (!error && isReplaced(*std::next(real.begin()))) {
      hidden.push_back(real);
    }
  }
  return hidden;
}

void unsetLocale() {
  std::vector<std::string> names = {"LANG", "LANGUAGE", "TZ"};
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    if (text.starts_with("LC_")) {
      names.emplace_back(text.substr(0, text.find('=')));
    }
  }
  for (const std::string& name : names) {
    unsetenv(name.c_str());
  }
}

}  // namespace

void enterPrivateRoot() {
  const std::vector<fs::path> projectFolders = hiddenProjectFolders();
  enterNamespace();
  turnRootOver();

  for (const fs::directory_entry& entry : fs::directory_iterator(kOldRoot)) {
    if (!isReplaced(entry.path().filename())) {
      showEntry(entry);
    }
  }
  for (const std::string_view name : kReplaced) {
    fs::create_directory(fs::path("/") / name);
  }
  require(chmod("/tmp", 01777) == 0, "chmod /tmp");
  fs::create_directory(kHome);
  for (const fs::path& folder : projectFolders) {
    fs::create_directories(folder);
    bind(kOldRoot / folder.relative_path(), folder);
  }

  require(umount2(kOldRoot.c_str(), MNT_DETACH) == 0, "detaching the old root");
  require(rmdir(kOldRoot.c_str()) == 0, "removing the old root's folder");
  require(setenv("HOME", kHome, 1) == 0, "HOME");
  require(setenv("XDG_RUNTIME_DIR", "/nowhere", 1) == 0, "XDG_RUNTIME_DIR");
  unsetLocale();
}

void endWhatIsLeft() {
  const auto rootOf = [](const std::string& process) {
    std::error_code error;
    return fs::read_symlink("/proc/" + process + "/ns/mnt", error);
  };
  const fs::path own = rootOf("self");
  for (bool isAnybodyLeft = true; isAnybodyLeft;) {
    isAnybodyLeft = false;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
      const std::string process = entry.path().filename();
      const bool isOther = process.find_first_not_of("0123456789") == std::string::npos &&
                           std::stoi(process) != getpid() && rootOf(process) == own;
      isAnybodyLeft = (isOther && kill(std::stoi(process), SIGKILL) == 0) || isAnybodyLeft;
    }
  }
}

void dropOverridesOfPermissions() {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  std::array<__user_cap_data_struct, 2> none{};
  require(syscall(SYS_capset, &header, none.data()) == 0, "cannot give up capabilities");
}

bool isRealRoot() {
  std::ifstream map("/proc/self/uid_map");
  std::string inside;
  std::string outside;
  std::string count;
  map >> inside >> outside >> count;
  return geteuid() == 0 && inside == "0" && outside == "0" && count == "4294967295";
}

}  // namespace tavenhall::test
