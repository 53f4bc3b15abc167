#include "host/base/regular_file.h"

#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

mode_t modeFor(const fs::path& place) {
  struct stat found {};
  if (stat(place.c_str(), &found) == 0) {
    return found.st_mode & 0777;
  }
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

OwnedDescriptor::~OwnedDescriptor() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

RegularFile::RegularFile(const fs::path& path) : file_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
  if (file_.get() < 0 || fstat(file_.get(), &facts_) != 0) {
    error_ = errno;
  } else if (!S_ISREG(facts_.st_mode)) {
    error_ = EINVAL;
  }
}

std::string_view RegularFile::read(std::span<char> piece) {
  ssize_t count = -1;
  while (error_ == 0 && (count = ::read(file_.get(), piece.data(), piece.size())) < 0) {
    error_ = errno == EINTR ? 0 : errno;
  }
  return {piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

Draft::Draft(const fs::path& place)
    : place_(place), path_(place.parent_path() / ".tavinstall-XXXXXX"), file_(mkstemp(path_.data())) {}

Draft::~Draft() {
  if (!isPlaced_ && file_.get() >= 0) {
    unlink(path_.c_str());
  }
}

bool Draft::place() {
  isPlaced_ = fchmod(file_.get(), modeFor(place_)) == 0 && fsync(file_.get()) == 0 &&
              std::rename(path_.c_str(), place_.c_str()) == 0;
  return isPlaced_;
}

void replaceFile(const fs::path& file, std::string_view bytes) {
  Draft draft(file);
  if (draft.descriptor() < 0 || !writeAll(draft.descriptor(), bytes) || !draft.place()) {
    throw UsageError(format(_("cannot write {0}: {1}"), {file.string(), std::strerror(errno)}));
  }
}

}  // namespace tavenhall
