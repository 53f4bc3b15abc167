#include "host/manifest/repair.h"

#include "host/base/child_process.h"
#include "host/base/regular_file.h"
#include "host/manifest/sha256.h"

#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kCopyPiece = 1048576;  // bytes of a read

std::string because(const char* what) { return std::string(what) + ": " + std::strerror(errno); }

}  // namespace

std::string repairFile(const fs::path& source, const fs::path& installed, const ManifestFile& file) {
  const RegularFile from(source);
  if (from.error() != 0) {
    return std::string("cannot be read: ") + std::strerror(from.error());
  }
  if (from.facts().st_size != file.size) {
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
    const ssize_t count = read(from.descriptor(), piece.data(), piece.size());
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
  if (!draft.place()) {
    return because("cannot be written");
  }
  return {};
}

}  // namespace tavenhall
