#include "host/manifest/repair.h"

#include "host/base/child_process.h"
#include "host/base/regular_file.h"
#include "host/manifest/sha256.h"

#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kCopyPiece = 1048576;  // bytes of a read

std::string because(const char* what, int error) { return std::string(what) + ": " + std::strerror(error); }

}  // namespace

std::string repairFile(const fs::path& source, const fs::path& installed, const ManifestFile& file) {
  RegularFile from(source);
  if (from.error() != 0) {
    return because("cannot be read", from.error());
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
    return because("cannot be written", errno);
  }
  Sha256 digest;
  digest.begin();
  std::vector<char> piece(kCopyPiece);
  for (std::string_view bytes = from.read(piece); !bytes.empty(); bytes = from.read(piece)) {
    digest.add(bytes.data(), bytes.size());
    if (!writeAll(draft.descriptor(), bytes)) {
      return because("cannot be written", errno);
    }
  }
  if (from.error() != 0) {
    return because("cannot be read", from.error());
  }
  if (digest.end() != file.digest) {
    return "the source is not the file of the manifest";
  }
  if (!draft.place()) {
    return because("cannot be written", errno);
  }
  return {};
}

}  // namespace tavenhall
