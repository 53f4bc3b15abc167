#include "host/audit/tree_comparison.h"

#include "context/install_rules.h"
#include "context/placement_rules.h"
#include "platform/host_system.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tavenhall {

namespace {

// An open folder; -1 if it cannot be opened.
class FolderDescriptor {
 public:
  explicit FolderDescriptor(const std::string& path)
      : descriptor_(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}
  FolderDescriptor(const FolderDescriptor&) = delete;
  FolderDescriptor& operator=(const FolderDescriptor&) = delete;
  ~FolderDescriptor() {
    if (descriptor_ >= 0) {
      close(descriptor_);
    }
  }
  [[nodiscard]] int get() const { return descriptor_; }

 private:
  int descriptor_;
};

// One well-mixed number of two.
std::uint64_t mixed(std::uint64_t one, std::uint64_t other) {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
  std::uint64_t mix = (one + kOdd) * 0xBF58476D1CE4E5B9 + other;
  mix = (mix ^ (mix >> 30U)) * 0x94D049BB133111EB;
  return mix ^ (mix >> 31U);
}

std::uint64_t hashOf(std::string_view text) { return std::hash<std::string_view>()(text); }

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// The error of stat() for a name in a folder, or 0. A folder that cannot be opened for reading may still be
// searched, so its files are then found by their paths.
int statIn(int folder, const std::string& folderPath, const char* name, int flags, struct stat& found) {
  const int result = folder >= 0 ? fstatat(folder, name, &found, flags)
                                 : fstatat(AT_FDCWD, (folderPath + "/" + name).c_str(), &found, flags);
  return result == 0 ? 0 : errno;
}

// The error of opening a file for reading, or 0.
int errorOfReading(int folder, const char* name) {
  const int file = openat(folder, name, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) {
    return errno;
  }
  close(file);
  return 0;
}

}  // namespace

std::uint64_t identityOf(const struct stat& found) { return mixed(found.st_dev, found.st_ino); }

std::array<ComparedTree, 2> TreeComparison::run(const std::string& source, const std::string& destination) {
  std::array<ComparedTree, 2> found;
  compareFolder({source, destination}, found[0]);
  bool hasSeveralFolders = false;
  {
    const Lock lock(mutex_);
    hasSeveralFolders = pending_.size() > 1;
  }
  std::thread helper;
  if (hasSeveralFolders) {
    try {
      helper = std::thread([this, &found] { work(found[1]); });
    } catch (const std::system_error&) {
      // No thread can be started: this one does all.
    }
  }
  work(found[0]);
  if (helper.joinable()) {
    helper.join();
  }
  return found;
}

// Until no folder is left, and no thread can add one.
void TreeComparison::work(ComparedTree& found) {
  const Lock lock(mutex_);
  while (true) {
    while (pending_.empty() && busy_ > 0) {
      changed_.wait(mutex_);
    }
    if (pending_.empty()) {
      return;
    }
    const Folder folder = std::move(pending_.back());
    pending_.pop_back();
    ++busy_;
    mutex_.unlock();
    compareFolder(folder, found);
    mutex_.lock();
    --busy_;
    changed_.notifyAll();
  }
}

void TreeComparison::compareFolder(const Folder& folder, ComparedTree& found) {
  const FolderDescriptor destination(folder.destination);
  struct stat top {};
  if (stat(folder.destination.c_str(), &top) != 0) {
    fail({AuditProblem::missing, folder.source, folder.destination, errno}, found);
  } else if (!S_ISDIR(top.st_mode)) {
    fail({AuditProblem::wrongType, folder.source, folder.destination}, found);
  } else {
    ++found.counts.folders;
  }
  DIR* listing = opendir(folder.source.c_str());
  if (listing == nullptr) {
    fail({AuditProblem::notListed, folder.source, folder.destination, errno}, found);
    return;
  }
  const OpenFolder open{folder, dirfd(listing), destination.get(), hashOf(folder.destination),
                        isAttributesFile(folder.source)};
  bool isListed = false;
  while (true) {
    errno = 0;
    const dirent* entry = readdir(listing);
    if (entry == nullptr) {
      break;
    }
    isListed = true;
    const char* name = entry->d_name;
    if (isHiddenName(name)) {
      found.counts.skipped += std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0 ? 1 : 0;
    } else if (entry->d_type == DT_DIR) {
      struct stat link {};
      const bool isLink = statIn(destination.get(), folder.destination, name, AT_SYMLINK_NOFOLLOW, link) == 0 &&
                          S_ISLNK(link.st_mode);
      add({folder.source + "/" + name, folder.destination + "/" + name, folder.isBehindLink || isLink});
    } else {
      compareFile(open, name, found);
    }
  }
  // readdir() takes ENOENT for the end. But most file systems list "." and ".." even in an empty folder.
  const int error = errno;
  if (error != 0 || (!isListed && listsDots(dirfd(listing)))) {
    fail({AuditProblem::notListed, folder.source, folder.destination, error}, found);
  }
  closedir(listing);
}

void TreeComparison::compareFile(const OpenFolder& folder, const char* name, ComparedTree& found) {
  const auto reject = [&](AuditProblem problem, int error = 0, std::int64_t sourceSize = 0,
                          std::int64_t destinationSize = 0) {
    fail({problem, folder.paths.source + "/" + name, folder.paths.destination + "/" + name, error, sourceSize,
          destinationSize},
         found);
  };
  struct stat source {};
  if (const int error = statIn(folder.source, folder.paths.source, name, 0, source); error != 0) {
    reject(AuditProblem::notReadable, error);
    return;
  }
  found.listing +=
      mixed(folder.destinationHash, mixed(hashOf(name), static_cast<std::uint64_t>(source.st_size)));
  if (folder.isSkipped) {
    reject(AuditProblem::skipped);
    return;
  }
  if (isAttributesFile(name)) {
    ++found.counts.skipped;
    return;
  }
  if (!S_ISREG(source.st_mode)) {
    reject(S_ISDIR(source.st_mode) ? AuditProblem::folderAsFile : AuditProblem::notReadable);
    return;
  }
  struct stat destination {};
  int error = statIn(folder.destination, folder.paths.destination, name, AT_SYMLINK_NOFOLLOW, destination);
  const bool isLink = error == 0 && S_ISLNK(destination.st_mode);
  if (isLink) {
    error = statIn(folder.destination, folder.paths.destination, name, 0, destination);
  }
  const bool isRefused = !refused_.empty() && refused_.contains(folder.paths.source + "/" + name);
  const int readError = error != 0 || isRefused ? errorOfReading(folder.source, name) : 0;
  if (readError != 0) {
    reject(AuditProblem::notReadable, readError);
  } else if (error != 0) {
    reject(isRefused ? AuditProblem::refused : AuditProblem::missing, error);
  } else if (!S_ISREG(destination.st_mode)) {
    reject(AuditProblem::wrongType);
  } else if (isSameFile(source, destination)) {
    reject(AuditProblem::isSource);
  } else if (source.st_size != destination.st_size) {
    reject(AuditProblem::wrongSize, 0, source.st_size, destination.st_size);
  } else if (isRefused) {
    reject(AuditProblem::refused);
  } else {
    const Audit::Installed entry{identityOf(destination), mixed(copy_, identityOf(source)),
                                 mixed(folder.destinationHash, hashOf(name))};
    found.installed.push_back(entry);
    if (isLink || folder.paths.isBehindLink || destination.st_nlink > 1) {
      found.suspects.push_back(
          {entry, folder.paths.source + "/" + name, folder.paths.destination + "/" + name});
    }
    ++found.counts.files;
    found.counts.bytes += destination.st_size;
  }
}

void TreeComparison::add(Folder folder) {
  const Lock lock(mutex_);
  pending_.push_back(std::move(folder));
  changed_.notifyAll();
}

void TreeComparison::fail(const AuditFailure& failure, ComparedTree& found) {
  ++found.counts.failures;
  const Lock lock(mutex_);
  report_(failure);
}

}  // namespace tavenhall
