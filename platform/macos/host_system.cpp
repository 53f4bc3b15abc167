#include "platform/host_system.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fcntl.h>
#include <iterator>
#include <libproc.h>
#include <mach-o/dyld.h>
#include <string>
#include <string_view>
#include <sys/mount.h>
#include <unistd.h>

// The rest of platform/host_system.h is POSIX's (posix/host_system.cpp).
namespace tavenhall {

std::filesystem::path programPath() {
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);
  std::string path(size, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) {
    return {};
  }
  std::error_code error;
  return std::filesystem::canonical(path.c_str(), error);
}

bool listsDots(int folder) noexcept {
  struct statfs found {};
  if (fstatfs(folder, &found) != 0) {
    return false;
  }
  const std::string_view type = found.f_fstypename;
  constexpr std::string_view kTypes[] = {"apfs", "hfs", "cd9660", "udf"};
  return std::find(std::begin(kTypes), std::end(kTypes), type) != std::end(kTypes);
}

// There are no seccomp filters.
int openSandboxFilter() noexcept { return -1; }

bool hasInstaller() noexcept { return true; }

// Another program of the user cannot read this one's memory: the system demands a debugger's entitlement and an
// administrator for that.
void forbidTracing() noexcept {}

// The limit of descriptors may be "unlimited", so the open ones are listed.
void closeDescriptorsOnExec() noexcept {
  constexpr std::size_t kMost = 4096;
  static proc_fdinfo open[kMost];  // not on the heap, which is not to be touched after fork
  const int bytes = proc_pidinfo(getpid(), PROC_PIDLISTFDS, 0, open, sizeof open);
  const std::size_t count = static_cast<std::size_t>(std::max(bytes, 0)) / sizeof open[0];
  for (std::size_t i = 0; i < count; ++i) {
    if (open[i].proc_fd > STDERR_FILENO) {
      fcntl(open[i].proc_fd, F_SETFD, FD_CLOEXEC);
    }
  }
}

// There is no such request. A process whose parent has ended notices its closed pipe.
bool endWithParentProcess(pid_t parent) noexcept { return getppid() == parent; }

std::string runtimeFolder() {
  std::array<char, 1024> folder{};
  const std::size_t size = confstr(_CS_DARWIN_USER_TEMP_DIR, folder.data(), folder.size());
  return size > 0 && size <= folder.size() ? folder.data() : "";
}

std::optional<uid_t> userAtOtherEnd(int socket) noexcept {
  uid_t user = 0;
  gid_t group = 0;
  return getpeereid(socket, &user, &group) == 0 ? std::optional(user) : std::nullopt;
}

}  // namespace tavenhall
