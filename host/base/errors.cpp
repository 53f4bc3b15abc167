#include "host/base/errors.h"

#include "host/base/text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace tavenhall {

namespace fs = std::filesystem;

void showError(const std::exception& error) {
  std::fprintf(stderr, "tavinstall: %s\n", printableLine(error.what()).c_str());
}

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

}  // namespace tavenhall
