// What a program in a sandbox may try to get out of it. Reads the values that it needs, one "KEY VALUE" a line,
// from the file "targets" in its working folder, and prints "NAME reached" or "NAME refused (REASON)" for each
// attempt. Outside a sandbox, as root, it reaches everything; so a change is made in no attempt but to files of
// the test's.
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <linux/keyctl.h>
#include <map>
#include <netinet/in.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/ipc.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::map<std::string, std::string> targets;

bool opens(const std::string& path, int flags) { return open(path.c_str(), flags | O_CLOEXEC, 0644) >= 0; }

bool connects(int family, const sockaddr* address, socklen_t size) {
  const int socket = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  return socket >= 0 && connect(socket, address, size) == 0;
}

bool connectsToPort() {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(targets["port"])));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return connects(AF_INET, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

// An abstract name begins with a NUL byte.
bool connectsToName(const std::string& name) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, name.data(), name.size());
  const std::size_t size = offsetof(sockaddr_un, sun_path) + name.size() + (name[0] == '\0' ? 0 : 1);
  return connects(AF_UNIX, reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(size));
}

// In a child process, whose namespaces and root the later attempts do not get.
bool inChild(const std::function<bool()>& attempt) {
  const pid_t child = fork();
  if (child == 0) {
    errno = 0;
    _exit(attempt() ? 0 : (errno != 0 ? errno : 255));
  }
  int status = 0;
  waitpid(child, &status, 0);
  errno = WEXITSTATUS(status);
  return status == 0;
}

bool entersNewUserNamespace() {
  return inChild([] { return unshare(CLONE_NEWUSER) == 0; });
}

bool entersNamespaceOfFirstProcess() {
  return inChild([] {
    const int space = open("/proc/1/ns/mnt", O_RDONLY | O_CLOEXEC);
    return space >= 0 && setns(space, CLONE_NEWNS) == 0 && opens(targets["secret"], O_RDONLY);
  });
}

bool mounts() {
  return inChild([] {
    return unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/usr", "tmpfs", 0, nullptr) == 0;
  });
}

// The system's programs, writable again.
bool remounts() {
  return inChild([] {
    return mount(nullptr, "/usr", nullptr, MS_BIND | MS_REMOUNT, nullptr) == 0 ||
           (unshare(CLONE_NEWNS) == 0 && mount("/usr", "/usr", nullptr, MS_BIND | MS_REC, nullptr) == 0 &&
            mount(nullptr, "/usr", nullptr, MS_BIND | MS_REMOUNT, nullptr) == 0);
  });
}

bool tracesAnotherProcess() {
  const pid_t other = fork();
  if (other == 0) {
    pause();
    _exit(0);
  }
  const bool isTraced = ptrace(PTRACE_SEIZE, other, nullptr, nullptr) == 0;
  const int error = errno;
  kill(other, SIGKILL);
  waitpid(other, nullptr, 0);
  errno = error;
  return isTraced;
}

bool opensByHandle() {
  alignas(file_handle) std::array<char, sizeof(file_handle) + MAX_HANDLE_SZ> bytes{};
  auto* handle = reinterpret_cast<file_handle*>(bytes.data());
  handle->handle_bytes = MAX_HANDLE_SZ;
  int mountId = 0;
  if (name_to_handle_at(AT_FDCWD, "/usr/bin", handle, &mountId, 0) != 0) {
    return false;
  }
  const int root = open("/usr", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  return open_by_handle_at(root, handle, O_RDONLY | O_CLOEXEC) >= 0;
}

bool makesDevice() {
  const std::string path = targets["scratch"] + "/device";
  return mknod(path.c_str(), S_IFCHR | 0600, static_cast<dev_t>(0x105)) == 0 &&
         unlink(path.c_str()) == 0;  // zero
}

bool makesSetuidProgram() {
  const std::string path = targets["scratch"] + "/program";
  return opens(path, O_WRONLY | O_CREAT) && chmod(path.c_str(), 04755) == 0 && unlink(path.c_str()) == 0;
}

bool readsSessionKeyring() {
  std::array<char, 256> text{};
  return syscall(SYS_keyctl, KEYCTL_DESCRIBE, KEY_SPEC_SESSION_KEYRING, text.data(), text.size(), 0) > 0;
}

// Its own terminal, which a process gets by opening one after setsid(). The same call types into the user's.
bool typesIntoTerminal() {
  return inChild([] {
    const int screen = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (setsid() < 0 || grantpt(screen) != 0 || unlockpt(screen) != 0) {
      return false;
    }
    const int terminal = open(ptsname(screen), O_RDWR | O_CLOEXEC);
    return terminal >= 0 && ioctl(terminal, TIOCSTI, "x") == 0;
  });
}

bool seesSharedMemory() { return shmget(std::stoi(targets["shared-memory"]), 0, 0) >= 0; }

bool seesProcess() { return kill(std::stoi(targets["process"]), 0) == 0 || errno == EPERM; }

struct Attempt {
  const char* name;
  std::function<bool()> run;
};

}  // namespace

int main() {
  std::ifstream file("targets");
  for (std::string key, value; file >> key >> value;) {
    targets[key] = value;
  }
  const std::string abstractName = std::string(1, '\0') + targets["abstract-socket"];
  const std::array attempts{
      Attempt{"network", connectsToPort},
      Attempt{"socket-in-run", [] { return connectsToName(targets["run-socket"]); }},
      Attempt{"socket-in-set", [] { return connectsToName("socket"); }},
      Attempt{"abstract-socket", [&abstractName] { return connectsToName(abstractName); }},
      Attempt{"vsock", [] { return socket(AF_VSOCK, SOCK_STREAM | SOCK_CLOEXEC, 0) >= 0; }},
      Attempt{"netlink", [] { return socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, 0) >= 0; }},
      Attempt{"process", seesProcess},
      Attempt{"ptrace", tracesAnotherProcess},
      Attempt{"shared-memory", seesSharedMemory},
      Attempt{"keyring", readsSessionKeyring},
      Attempt{"terminal", typesIntoTerminal},
      Attempt{"mount", mounts},
      Attempt{"remount", remounts},
      Attempt{"user-namespace", entersNewUserNamespace},
      Attempt{"namespace-of-first-process", entersNamespaceOfFirstProcess},
      Attempt{"root-of-first-process", [] { return opens("/proc/1/root" + targets["secret"], O_RDONLY); }},
      Attempt{"change-root", [] { return inChild([] { return chroot("/usr") == 0; }); }},
      Attempt{"open-by-handle", opensByHandle},
      Attempt{"make-device", makesDevice},
      Attempt{"setuid-program", makesSetuidProgram},
      Attempt{"kernel-log", [] { return opens("/dev/kmsg", O_WRONLY); }},
      Attempt{"fuse", [] { return opens("/dev/fuse", O_RDWR); }},
      Attempt{"kernel-settings", [] { return opens("/proc/sys/kernel/core_pattern", O_WRONLY); }},
      Attempt{"sysrq", [] { return opens("/proc/sysrq-trigger", O_WRONLY); }},
      Attempt{"system-bus-of-the-kernel", [] { return opens("/sys/kernel", O_RDONLY); }},
      Attempt{"write-to-usr", [] { return access("/usr", W_OK) == 0; }},
      Attempt{"write-to-etc", [] { return access("/etc", W_OK) == 0; }},
      Attempt{"write-to-set", [] { return opens("written", O_WRONLY | O_CREAT); }},
      Attempt{"read-secret", [] { return opens(targets["secret"], O_RDONLY); }},
      Attempt{"read-shadow", [] { return opens("/etc/shadow", O_RDONLY); }},
      Attempt{"read-variables", [] { return opens("/var/lib", O_RDONLY); }},
      Attempt{"inherited-descriptor",
              [] { return openat(std::stoi(targets["descriptor"]), "secret", O_RDONLY | O_CLOEXEC) >= 0; }},
      Attempt{"environment", [] { return std::getenv("ESCAPE_SECRET") != nullptr; }},
  };
  for (const Attempt& attempt : attempts) {
    errno = 0;
    const bool isReached = attempt.run();
    if (isReached) {
      std::printf("%s reached\n", attempt.name);
    } else {
      std::printf("%s refused (%s)\n", attempt.name, std::strerror(errno));
    }
    std::fflush(stdout);
  }
  _exit(0);  // without a leak check, which would trace this process
}
