#include "host/base/files.h"

#include "host/base/build_facts.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "platform/host_system.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>
#include <sys/statvfs.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

}  // namespace

void requireNoSpecialFile(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status)) {
    throw UsageError(
        format(_("{0} is a pipe, a socket or a device; put a file in its place"), {path.string()}));
  }
}

void requireWritable(const fs::path& path) {
  std::error_code error;
  if (fs::is_directory(path, error)) {
    throw UsageError(format(_("cannot write {0}: it is a folder; name a file"), {path.string()}));
  }
  const fs::path probed = fs::exists(path, error) ? path : path.parent_path() / ".";
  if (access(probed.c_str(), W_OK) != 0) {
    throw UsageError(format(_("cannot write {0}: {1}"), {path.string(), std::strerror(errno)}));
  }
}

std::optional<std::int64_t> freeBytesAt(const std::string& path) {
  fs::path folder = path;
  struct statvfs disk {};
  while (statvfs(folder.c_str(), &disk) != 0) {
    if (!folder.has_relative_path()) {
      return std::nullopt;
    }
    folder = folder.parent_path();
  }
  return static_cast<std::int64_t>(disk.f_bavail) * static_cast<std::int64_t>(disk.f_frsize);
}

bool haveSameContents(const fs::path& left, const fs::path& right, const std::function<void()>& goOn) {
  std::error_code error;
  if (!fs::is_regular_file(left, error) || !fs::is_regular_file(right, error)) {
    return false;  // opening a pipe may block
  }
  const File leftFile{std::fopen(left.c_str(), "rbe"), std::fclose};
  const File rightFile{std::fopen(right.c_str(), "rbe"), std::fclose};
  if (!leftFile || !rightFile) {
    return false;
  }
  constexpr std::size_t kPiece = 262144;  // bytes
  const auto leftBytes = std::make_unique<std::array<char, kPiece>>();
  const auto rightBytes = std::make_unique<std::array<char, kPiece>>();
  while (true) {
    goOn();
    const std::size_t leftCount = std::fread(leftBytes->data(), 1, kPiece, leftFile.get());
    const std::size_t rightCount = std::fread(rightBytes->data(), 1, kPiece, rightFile.get());
    if (leftCount != rightCount || std::memcmp(leftBytes->data(), rightBytes->data(), leftCount) != 0 ||
        std::ferror(leftFile.get()) != 0 || std::ferror(rightFile.get()) != 0) {
      return false;
    }
    if (leftCount == 0) {
      return true;
    }
  }
}

void LineReader::read(const std::function<void(const std::string&)>& take) {
  std::array<char, 16384> buffer;
  const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
    return;
  }
  if (count <= 0) {
    descriptor_ = -1;
    if (!partialLine_.empty()) {
      take(std::exchange(partialLine_, {}));
    }
    return;
  }
  std::string_view rest(buffer.data(), static_cast<std::size_t>(count));
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    const std::size_t room = longest_ + 1 - partialLine_.size();
    partialLine_ += rest.substr(0, std::min(end, room));
    if (end == rest.size()) {
      return;
    }
    rest.remove_prefix(end + 1);
    take(std::exchange(partialLine_, {}));
  }
}

namespace {

// Relative to the program's own folder: installed, and in a build folder.
constexpr const char* kBundleFolders[] = {kInstalledBundles, ".."};
constexpr const char* kStandInFolders[] = {kInstalledStandIns, "../libexec/tavinstall"};

fs::path programFolder() { return programPath().parent_path(); }

}  // namespace

fs::path findBundle(const std::string& product) {
  const std::string suffix = product.empty() || product == kDefaultProduct ? "" : "-" + product;
  const fs::path name = "InstallDataPane" + suffix + ".bundle";
  std::vector<std::string> tried;
  for (const char* folder : kBundleFolders) {
    fs::path bundle = (programFolder() / folder / name).lexically_normal();
    std::error_code error;
    if (fs::is_directory(bundle, error)) {
      return bundle;
    }
    tried.push_back(bundle.string());
  }
  throw UsageError(format(_("no plug-in at {0} or {1}; --bundle names another"), {tried[0], tried[1]}));
}

fs::path findCatalogs() {
  fs::path catalogs = (programFolder() / kInstalledCatalogs).lexically_normal();
  std::error_code error;
  return fs::is_directory(catalogs, error) ? catalogs
                                           : (programFolder() / "../share/locale").lexically_normal();
}

fs::path findDocument(const std::string& name) {
  for (const char* folder : {kInstalledDocuments, "../share/doc/tavinstall"}) {
    fs::path document = (programFolder() / folder / name).lexically_normal();
    std::error_code error;
    if (fs::is_regular_file(document, error)) {
      return document;
    }
  }
  return {};
}

fs::path findStandIns() {
  for (const char* folder : kStandInFolders) {
    fs::path standIns = (programFolder() / folder).lexically_normal();
    std::error_code error;
    if (fs::is_directory(standIns, error)) {
      return standIns;
    }
  }
  return {};
}

}  // namespace tavenhall
