#include "host/file_checks.h"

#include "host/text.h"
#include "host/usage_error.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace tavenhall {

namespace fs = std::filesystem;

void requireNoSpecialFile(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status)) {
    throw UsageError(
        filled(_("{0} is a pipe, a socket or a device; put a file in its place"), {path.string()}));
  }
}

void requireWritable(const fs::path& path) {
  std::error_code error;
  if (fs::is_directory(path, error)) {
    throw UsageError(filled(_("cannot write {0}: it is a folder; name a file"), {path.string()}));
  }
  const fs::path asked = fs::exists(path, error) ? path : path.parent_path() / ".";
  if (access(asked.c_str(), W_OK) != 0) {
    throw UsageError(filled(_("cannot write {0}: {1}"), {path.string(), std::strerror(errno)}));
  }
}

}  // namespace tavenhall
