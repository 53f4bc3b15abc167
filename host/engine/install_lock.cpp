#include "host/engine/install_lock.h"

#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "platform/system.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/file.h>
#include <unistd.h>

namespace tavenhall {

InstallLock::InstallLock(bool mayMakeFolder) {
  std::string path;
  if (!firstUserSearchPath(SearchPath::applicationSupport, path)) {
    return;
  }
  if (mayMakeFolder) {
    std::error_code ignored;  // the pre-install step says what is wrong
    std::filesystem::create_directories(path, ignored);
  }
  folder_ = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder_ >= 0 && flock(folder_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    close(folder_);
    throw UsageError(_("another installation of yours is running; start this one after it has ended"));
  }
}

InstallLock::~InstallLock() {
  if (folder_ >= 0) {
    close(folder_);
  }
}

}  // namespace tavenhall
