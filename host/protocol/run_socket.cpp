#include "host/protocol/run_socket.h"

#include "platform/host_system.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace tavenhall {

namespace {

constexpr mode_t kOwnersAlone = 0700;
constexpr int kMostWaiting = 8;

// Whether it is a folder, not a link to one, that this user owns and nobody else can enter.
bool isPrivateFolder(const std::string& path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode) && found.st_uid == geteuid() &&
         (found.st_mode & 077) == 0;
}

// Empty if there is none. With `mayMake`, makes it.
std::string socketFolder(bool mayMake) {
  const std::string runtime = runtimeFolder();
  const std::string folder = !runtime.empty() && isPrivateFolder(runtime)
                                 ? runtime + "/tavinstall"
                                 : "/tmp/tavinstall-" + std::to_string(geteuid());
  if (mayMake) {
    static_cast<void>(mkdir(folder.c_str(), kOwnersAlone));  // it may be there
  }
  return isPrivateFolder(folder) ? folder : std::string();
}

// The address for the socket; none where there is no folder for it, or its path is too long.
std::optional<sockaddr_un> socketAddress(const std::string& lockedFolder, bool mayMakeFolder) {
  struct stat found {};
  if (stat(lockedFolder.c_str(), &found) != 0) {
    return std::nullopt;
  }
  const std::string folder = socketFolder(mayMakeFolder);
  const std::string path = folder + "/run-" + std::to_string(found.st_dev) + "-" + std::to_string(found.st_ino);
  sockaddr_un address{};
  if (folder.empty() || path.size() >= sizeof address.sun_path) {
    return std::nullopt;
  }
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return address;
}

const sockaddr* general(const sockaddr_un& address) { return reinterpret_cast<const sockaddr*>(&address); }

// Not inherited by commands.
int openSocket() {
  const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
  if (descriptor >= 0) {
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  }
  return descriptor;
}

// Without blocking, also where the program that listens is suspended and its queue is full.
int connectTo(const sockaddr_un& address) {
  const int descriptor = openSocket();
  if (descriptor < 0) {
    return -1;
  }
  fcntl(descriptor, F_SETFL, O_NONBLOCK);
  if (connect(descriptor, general(address), sizeof address) != 0 || userAtOtherEnd(descriptor) != geteuid()) {
    close(descriptor);
    return -1;
  }
  fcntl(descriptor, F_SETFL, 0);
  return descriptor;
}

}  // namespace

RunSocket listenForFrontends(const std::string& lockedFolder) noexcept {
  const int descriptor = openSocket();  // before the folder is made: a sandbox may refuse it
  if (descriptor < 0) {
    return {};
  }
  const auto address = socketAddress(lockedFolder, true);
  const int other = address ? connectTo(*address) : -1;
  const bool isFree = address && other < 0;  // where the file system has no locks, another install may run
  if (isFree) {
    unlink(address->sun_path);
  }
  if (isFree && bind(descriptor, general(*address), sizeof *address) == 0 &&
      chmod(address->sun_path, kOwnersAlone) == 0 && listen(descriptor, kMostWaiting) == 0) {
    fcntl(descriptor, F_SETFL, O_NONBLOCK);  // a frontend may have gone before it is accepted
    return {descriptor, address->sun_path};
  }
  if (other >= 0) {
    close(other);
  }
  close(descriptor);
  return {};
}

int acceptFrontend(int socket) noexcept {
  const int descriptor = accept(socket, nullptr, nullptr);
  if (descriptor < 0) {
    return -1;
  }
  fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  fcntl(descriptor, F_SETFL, 0);
  const auto user = userAtOtherEnd(descriptor);
  if (!user || (*user != geteuid() && *user != 0)) {
    close(descriptor);
    return -1;
  }
  return descriptor;
}

int connectToEngine(const std::string& lockedFolder) noexcept {
  const auto address = socketAddress(lockedFolder, false);
  return address ? connectTo(*address) : -1;
}

}  // namespace tavenhall
