#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>

// What a host program needs of the operating system beyond what the page does (platform/system.h). Every
// backend implements all of it.
namespace tavenhall {

// The executable of this process, absolute and without links; empty if unknown. Any thread.
[[nodiscard]] std::filesystem::path programPath();

// The current user's home folder: HOME, or else the entry in the user database. Returns false, with `home`
// untouched, when there is neither. Any thread.
[[nodiscard]] bool homeFolder(std::string& home) noexcept;

// Opens an unnamed temporary file for reading and writing, in memory where the system can, with close-on-exec
// set. The caller closes it. -1 on failure. Any thread.
[[nodiscard]] int openMemoryFile() noexcept;

// Whether the file system of an open folder is known to list "." and ".." in every folder. Any thread.
[[nodiscard]] bool listsDots(int folder) noexcept;

// Returns a seccomp program, in a memory file with close-on-exec set, that refuses a program in a sandbox every
// system call by which it could get out. The caller closes it. -1 if the system has no such filters. Any
// thread.
[[nodiscard]] int openSandboxFilter() noexcept;

// Keeps the other processes of this user from reading this process's memory, and that of its children until
// they execute a program; it then leaves no core dump. Does nothing on systems without such a request.
void forbidTracing() noexcept;

// Sets close-on-exec for every descriptor above standard error. Call it in the child after fork.
void closeDescriptorsOnExec() noexcept;

// Who may write a file besides its owner and everybody.
struct GroupWriters {
  bool owningGroup = false;
  bool others = false;  // a user or a group that a POSIX ACL names, but this user and root
};

// `mode` and `owner` are those of the file. Systems without POSIX ACLs have only the mode. Any thread.
[[nodiscard]] GroupWriters groupWritersOf(const char* path, mode_t mode, uid_t owner) noexcept;

// Whether the system has an installer of its own that shows the page. It takes no lock of this program's.
[[nodiscard]] bool hasInstaller() noexcept;

// Asks the system to send this process SIGTERM when its parent process ends, where systems take such a request.
// Call it in the child after fork. False if `parent` has ended by now.
[[nodiscard]] bool endWithParentProcess(pid_t parent) noexcept;

// A private folder of this user's for sockets and the like, which the system makes at log-in and empties; empty
// if there is none. Any thread.
[[nodiscard]] std::string runtimeFolder();

// The user at the other end of a connected Unix socket, as the system has recorded it; none if the system
// cannot tell. Any thread.
[[nodiscard]] std::optional<uid_t> userAtOtherEnd(int socket) noexcept;

// Wakes a thread that waits in poll. Not copyable; closes its descriptors when destroyed.
class WakeUp {
 public:
  // Aborts when the process is out of file descriptors, since no wait could ever end.
  WakeUp() noexcept;
  WakeUp(const WakeUp&) = delete;
  WakeUp& operator=(const WakeUp&) = delete;
  ~WakeUp();

  // Readable from the first signal() until clear(). The waiting thread polls it for input.
  [[nodiscard]] int descriptor() const noexcept { return readEnd_; }

  void signal() noexcept;  // any thread, and signal handlers
  void clear() noexcept;   // the waiting thread

 private:
  int readEnd_ = -1;
  int writeEnd_ = -1;
};

}  // namespace tavenhall
