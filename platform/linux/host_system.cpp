#include "platform/host_system.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <linux/close_range.h>
#include <linux/magic.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace tavenhall {

std::filesystem::path programPath() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

int openMemoryFile() noexcept { return memfd_create("tavinstall", MFD_CLOEXEC); }

bool listsDots(int folder) noexcept {
  struct statfs found {};
  if (fstatfs(folder, &found) != 0) {
    return false;
  }
  switch (found.f_type) {
    case EXT4_SUPER_MAGIC:
    case TMPFS_MAGIC:
    case OVERLAYFS_SUPER_MAGIC:
    case XFS_SUPER_MAGIC:
    case BTRFS_SUPER_MAGIC:
    case ISOFS_SUPER_MAGIC:
    case UDF_SUPER_MAGIC:
    case SQUASHFS_MAGIC: return true;
    default: return false;  // a FUSE server may list neither
  }
}

bool hasInstaller() noexcept { return false; }

void forbidTracing() noexcept { prctl(PR_SET_DUMPABLE, 0); }

void closeDescriptorsOnExec() noexcept { close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC); }

bool endWithParentProcess(pid_t parent) noexcept {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  return getppid() == parent;
}

std::string runtimeFolder() {
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  return folder != nullptr && *folder != '\0' ? folder : "/run/user/" + std::to_string(geteuid());
}

std::optional<uid_t> userAtOtherEnd(int socket) noexcept {
  ucred found{};
  socklen_t size = sizeof found;
  const bool isKnown = getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &found, &size) == 0 && size == sizeof found;
  return isKnown ? std::optional(found.uid) : std::nullopt;
}

WakeUp::WakeUp() noexcept : readEnd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), writeEnd_(readEnd_) {
  if (readEnd_ < 0) {
    std::perror("tavinstall: eventfd");
    std::abort();
  }
}

WakeUp::~WakeUp() { close(readEnd_); }

void WakeUp::signal() noexcept {
  const int error = errno;
  const std::uint64_t one = 1;
  static_cast<void>(
      !write(writeEnd_, &one, sizeof one));  // fails only when the counter is full: already readable
  errno = error;
}

void WakeUp::clear() noexcept {
  std::uint64_t count = 0;
  static_cast<void>(!read(readEnd_, &count, sizeof count));  // fails only when the counter is 0: already clear
}

}  // namespace tavenhall
