#include "host/manifest/repair.h"

#include "host/base/child_process.h"
#include "host/manifest/sha256.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kCopyPiece = 1048576;  // bytes of a read

class OpenFile {
 public:
  explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (descriptor_ >= 0) {
      close(descriptor_);
    }
  }
  [[nodiscard]] int get() const { return descriptor_; }

 private:
  int descriptor_;
};

// A file beside its place, under a name that the page and the instrument pass over. Removed unless it is put
// there.
class Draft {
 public:
  explicit Draft(const fs::path& place)
      : place_(place), path_(place.parent_path() / ".tavinstall-XXXXXX"), file_(mkstemp(path_.data())) {}
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;
  ~Draft() {
    if (!isPlaced_ && file_.get() >= 0) {
      unlink(path_.c_str());
    }
  }

  [[nodiscard]] int descriptor() const { return file_.get(); }

  bool place() {
    isPlaced_ = fsync(file_.get()) == 0 && std::rename(path_.c_str(), place_.c_str()) == 0;
    return isPlaced_;
  }

 private:
  const fs::path place_;
  std::string path_;
  OpenFile file_;
  bool isPlaced_ = false;
};

// The mode that the page leaves: the older file's, or that of a new file.
mode_t modeFor(const fs::path& installed) {
  struct stat found {};
  if (stat(installed.c_str(), &found) == 0) {
    return found.st_mode & 0777;
  }
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

std::string because(const char* what) { return std::string(what) + ": " + std::strerror(errno); }

}  // namespace

std::string repairFile(const fs::path& source, const fs::path& installed, const ManifestFile& file) {
  const OpenFile from(open(source.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat found {};
  if (from.get() < 0 || fstat(from.get(), &found) != 0) {
    return because("cannot be read");
  }
  if (!S_ISREG(found.st_mode) || found.st_size != file.size) {
    return "the source is not the file of the manifest";
  }
  std::error_code error;
  fs::create_directories(installed.parent_path(), error);
  if (fs::is_directory(installed, error)) {
    return "a folder is in its place";
  }
  Draft draft(installed);
  if (draft.descriptor() < 0) {
    return because("cannot be written");
  }
  Sha256 digest;
  digest.begin();
  std::vector<char> piece(kCopyPiece);
  while (true) {
    const ssize_t count = read(from.get(), piece.data(), piece.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      return because("cannot be read");
    }
    if (count == 0) {
      break;
    }
    digest.add(piece.data(), static_cast<std::size_t>(count));
    if (!writeAll(draft.descriptor(), std::string_view(piece.data(), static_cast<std::size_t>(count)))) {
      return because("cannot be written");
    }
  }
  if (digest.end() != file.digest) {
    return "the source is not the file of the manifest";
  }
  if (fchmod(draft.descriptor(), modeFor(installed)) != 0 || !draft.place()) {
    return because("cannot be written");
  }
  return {};
}

}  // namespace tavenhall
