#include "host/engine/pre_install.h"

#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "platform/installer_pane.h"
#include "platform/system.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr const char* kBundleProgram = "Contents/MacOS/InstallDataPane";
constexpr std::size_t kLongestLocation = 1022;  // bytes that the page reads before the newline

// /tmp is world-writable: unlink first, then create with O_EXCL, so that no link, pipe or file that somebody
// else has put there is written into. What cannot be removed, or comes back in the meantime, is an error.
void writeLine(const char* path, const std::string& line) {
  const bool isRemoved = unlink(path) == 0 || errno == ENOENT;
  const int descriptor =
      isRemoved ? open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644) : -1;
  const std::string text = line + "\n";
  const bool isWritten =
      descriptor >= 0 && write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  const int error = errno;
  if (descriptor >= 0) {
    close(descriptor);
  }
  if (!isWritten) {
    struct stat found {};
    const bool isForeign = lstat(path, &found) == 0 && found.st_uid != geteuid();
    throw UsageError(
        format(_("cannot write {0}: {1}"),
               {path, isForeign ? _("another user's file is in its place") : std::strerror(error)}));
  }
}

void makeHomeFolder(SearchPath which) {
  std::string path;
  if (!firstUserSearchPath(which, path)) {
    throw UsageError(_("cannot find the home folder; set HOME"));
  }
  std::error_code error;
  fs::create_directories(path, error);
  if (error) {
    throw UsageError(format(_("cannot create the folder {0}: {1}"), {path, error.message()}));
  }
}

}  // namespace

fs::path packageLocation(const fs::path& package) {
  std::error_code error;
  if (!fs::exists(package, error)) {
    throw UsageError(
        format(_("no package at {0}; --package needs the path of an installer package"), {package.string()}));
  }
  fs::path location = package;
  if (package.is_relative()) {
    // A package that is a link keeps its name: the set is where the link is.
    const fs::path parent = package.has_parent_path() ? package.parent_path() : fs::path(".");
    location = package.filename() == ".." || package.filename() == "."
                   ? fs::canonical(package)
                   : fs::canonical(parent) / package.filename();
  }
  const std::string& text = location.native();
  if (text.find('\n') != std::string::npos) {
    throw UsageError(
        format(_("the package's path contains a line break, which the page cannot handle: move {0}"), {text}));
  }
  if (text.size() > kLongestLocation) {
    throw UsageError(
        format(_("the package's path is longer than {0} bytes, which the page cannot handle: move {1}"),
               {std::to_string(kLongestLocation), text}));
  }
  return location;
}

void runPreInstallStep(const fs::path& package, const std::string& installType) {
  makeHomeFolder(SearchPath::caches);
  makeHomeFolder(SearchPath::applicationSupport);
  writeLine(kLocationFile, packageLocation(package).native());
  if (!installType.empty()) {
    writeLine(kInstallTypeFile, installType);
  }
}

InstallTypePlace::InstallTypePlace() noexcept {
  static_cast<void>(
      symlink(kInstallTypeFile, kInstallTypeFile));  // fails where there is a file, which then counts
}

InstallTypePlace::~InstallTypePlace() { clear(); }

void InstallTypePlace::clear() noexcept {
  struct stat found {};
  std::array<char, 64> target{};
  const bool isLinkToItself = readlink(kInstallTypeFile, target.data(), target.size() - 1) > 0 &&
                              std::string_view(target.data()) == kInstallTypeFile;
  if (isLinkToItself && lstat(kInstallTypeFile, &found) == 0 && found.st_uid == geteuid()) {
    unlink(kInstallTypeFile);
  }
}

std::string installLockFolder() {
  std::string path;
  return firstUserSearchPath(SearchPath::applicationSupport, path) ? path : std::string();
}

InstallLock::InstallLock(bool mayMakeFolder) {
  const std::string path = installLockFolder();
  if (path.empty()) {
    return;
  }
  if (mayMakeFolder) {
    std::error_code ignored;  // the pre-install step says what is wrong
    std::filesystem::create_directories(path, ignored);
  }
  add(path, _("another installation of yours is running; see \"tavinstall status\""));
  for (const char* name : {"/Tavenhall/TANVO", "/Tavenhall/DOVA"}) {
    add(path + name,
        format(_("another installation to {0} is running; start this one after it has ended"), {path + name}));
  }
}

void InstallLock::add(const std::string& folder, const std::string& refusal) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  struct stat found {};
  if (descriptor < 0 || fstat(descriptor, &found) != 0) {
    return;
  }
  const bool isLocked = std::any_of(folders_.begin(), folders_.end(), [&found](int locked) {
    struct stat other {};
    return fstat(locked, &other) == 0 && other.st_dev == found.st_dev && other.st_ino == found.st_ino;
  });
  folders_.push_back(descriptor);
  if (isLocked) {
    return;  // one folder by two links; a second lock of this process would wait for the first
  }
  // installRuns() holds such a lock for a moment.
  constexpr int kMostTries = 10;
  for (int tries = 0; flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; ++tries) {
    if (tries == kMostTries) {
      close();
      throw UsageError(refusal, ExitStatus::alreadyRunning);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

bool installRuns() {
  const int descriptor = open(installLockFolder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool isLocked = descriptor >= 0 && flock(descriptor, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  if (descriptor >= 0) {
    ::close(descriptor);
  }
  return isLocked;
}

InstallLock::~InstallLock() { close(); }

void InstallLock::close() noexcept {
  for (const int folder : folders_) {
    ::close(folder);
  }
}

void requireBundle(const fs::path& bundle) {
  std::error_code error;
  if (!fs::exists(fs::absolute(bundle) / kBundleProgram, error)) {
    throw UsageError(format(_("cannot load {0}: it has no {1}; --bundle takes a plug-in's folder"),
                            {bundle.string(), kBundleProgram}));
  }
}

PageFactory loadBundle(const fs::path& bundle) {
  requireBundle(bundle);
  const fs::path program = fs::absolute(bundle) / kBundleProgram;
  requireNoSpecialFile(program);
  void* handle = dlopen(program.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    throw UsageError(format(_("cannot load {0}: {1}"), {bundle.string(), dlerror()}));
  }
  auto factory = reinterpret_cast<PageFactory>(dlsym(handle, kPageFactoryName));
  if (factory == nullptr) {
    throw UsageError(
        format(_("cannot load {0}: it makes no page ({1} is missing)"), {bundle.string(), kPageFactoryName}));
  }
  return factory;
}

}  // namespace tavenhall
