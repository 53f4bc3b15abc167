#include "tests/faults/call_gate.h"

#include "tests/faults/call_filter.h"
#include "tests/faults/program_memory.h"
#include "tests/install/child_program.h"
#include "tests/support/children.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/sched.h>
#include <linux/seccomp.h>
#include <map>
#include <optional>
#include <poll.h>
#include <set>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace tavenhall::test {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kTimesFaster = 1000;

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

// ---- The program's start ----

// One descriptor, from the child to its parent. The child's sending must need none of the gated calls.
void sendDescriptor(int socket, int descriptor) {
  char byte = 0;
  iovec data{&byte, 1};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> room{};
  msghdr message{};
  message.msg_iov = &data;
  message.msg_iovlen = 1;
  message.msg_control = room.data();
  message.msg_controllen = room.size();
  cmsghdr* control = CMSG_FIRSTHDR(&message);
  control->cmsg_level = SOL_SOCKET;
  control->cmsg_type = SCM_RIGHTS;
  control->cmsg_len = CMSG_LEN(sizeof(int));
  std::memcpy(CMSG_DATA(control), &descriptor, sizeof descriptor);
  sendmsg(socket, &message, 0);
}

int receiveDescriptor(int socket) {
  char byte = 0;
  iovec data{&byte, 1};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> room{};
  msghdr message{};
  message.msg_iov = &data;
  message.msg_iovlen = 1;
  message.msg_control = room.data();
  message.msg_controllen = room.size();
  if (recvmsg(socket, &message, MSG_CMSG_CLOEXEC) <= 0 || CMSG_FIRSTHDR(&message) == nullptr) {
    errno = ENOSYS;
    fail("the kernel does not ask about system calls");
  }
  int descriptor = -1;
  std::memcpy(&descriptor, CMSG_DATA(CMSG_FIRSTHDR(&message)), sizeof descriptor);
  return descriptor;
}

std::string contentsOf(int file) {
  struct stat found {};
  fstat(file, &found);
  std::string text(static_cast<std::size_t>(found.st_size), '\0');
  const ssize_t count = pread(file, text.data(), text.size(), 0);
  text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return text;
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {
    if (number_ < 0) {
      fail("a descriptor for a gated run");
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(number_); }
  operator int() const { return number_; }

 private:
  int number_;
};

// ---- The gate ----

class Gate {
 public:
  Gate(int listener, const std::string& program, const Judge& judge)
      : listener_(listener), program_(program), judge_(judge) {}

  // Answers until every process has ended; false at the limit.
  bool serve(Clock::time_point limit) {
    while (Clock::now() < limit) {
      wakeSleepers();
      pollfd source{listener_, POLLIN, 0};
      const int ready = poll(&source, 1, sleepers_.empty() ? 100 : 1);
      if (ready > 0 && (source.revents & POLLIN) != 0) {
        answerNext();
      } else if (ready > 0) {
        return true;  // nobody is left who could ask
      }
    }
    return false;
  }

 private:
  struct Sleeper {
    Clock::time_point end;
    __u64 question;
  };

  void answerNext() {
    seccomp_notif question{};
    if (ioctl(listener_, SECCOMP_IOCTL_NOTIF_RECV, &question) != 0) {
      return;  // the asker has ended meanwhile
    }
    const auto asker = static_cast<pid_t>(question.pid);
    if (const auto pause = pauseAskedFor(question)) {
      sleepers_.push_back({Clock::now() + *pause / kTimesFaster, question.id});
      return;
    }
    if (question.data.nr == SYS_rt_sigaction) {
      haveCallsRestarted(question);
    }
    const auto call = callOf(question);
    if (!call || ioctl(listener_, SECCOMP_IOCTL_NOTIF_ID_VALID, &question.id) != 0) {
      letThrough(question.id);
      return;
    }
    const Verdict verdict = judge_(*call);
    switch (verdict.kind) {
      case Verdict::Kind::pass: letThrough(question.id); break;
      case Verdict::Kind::fail: answer(question.id, 0, -verdict.error); break;
      case Verdict::Kind::kill: kill(processOf(asker), SIGKILL); break;
      case Verdict::Kind::shorten: shorten(question, call->kind); break;
    }
  }

  static std::optional<std::chrono::nanoseconds> pauseAskedFor(const seccomp_notif& question) {
    const int argument = question.data.nr == SYS_nanosleep ? 0 : 2;
    if (question.data.nr != SYS_nanosleep && question.data.nr != SYS_clock_nanosleep) {
      return std::nullopt;
    }
    timespec pause{};
    if (!readMemory(static_cast<pid_t>(question.pid), question.data.args[argument], &pause, sizeof pause) ||
        (argument == 2 && question.data.args[1] != 0)) {  // until a moment, which nobody here asks for
      return std::nullopt;
    }
    return std::chrono::seconds(pause.tv_sec) + std::chrono::nanoseconds(pause.tv_nsec);
  }

  // A call that has not been looked at yet can be interrupted, which without the gate no close or open is. A
  // shell that is told of its command's end just then would keep a pipe open and wait for it for ever.
  void haveCallsRestarted(const seccomp_notif& question) const {
    struct {
      __u64 handler;
      __u64 flags;
    } action{};
    const auto asker = static_cast<pid_t>(question.pid);
    if (question.data.args[0] == SIGCHLD && programOf(asker) != program_ &&
        readMemory(asker, question.data.args[1], &action, sizeof action)) {
      action.flags |= SA_RESTART;
      writeMemory(asker, question.data.args[1], &action, sizeof action);
    }
  }

  void wakeSleepers() {
    const auto now = Clock::now();
    std::erase_if(sleepers_, [&](const Sleeper& sleeper) {
      if (sleeper.end > now) {
        return false;
      }
      answer(sleeper.question, 0, 0);
      return true;
    });
  }

  std::optional<FileCall> callOf(const seccomp_notif& question) {
    const auto asker = static_cast<pid_t>(question.pid);
    const auto& arguments = question.data.args;
    if (question.data.nr == SYS_clone || question.data.nr == SYS_clone3) {
      __u64 flags = arguments[0];
      if (question.data.nr == SYS_clone3 && !readMemory(asker, arguments[0], &flags, sizeof flags)) {
        return std::nullopt;
      }
      if ((flags & CLONE_THREAD) == 0 && (flags & CLONE_VFORK) == 0) {
        return std::nullopt;  // a copy of the program, as a frontend makes one for the engine
      }
      if (!atWork_.contains(processOf(asker))) {
        return std::nullopt;  // still starting, where a sanitizer has threads of its own
      }
      return FileCall{(flags & CLONE_THREAD) != 0 ? CallKind::startThread : CallKind::startCommand, "", asker};
    }
    const auto calls = gatedCalls();
    const auto call = std::ranges::find(calls, static_cast<long>(question.data.nr), &GatedCall::number);
    if (call == calls.end()) {
      return std::nullopt;
    }
    std::string path;
    if (call->descriptorArgument >= 0) {
      path = pathOfDescriptor(asker, static_cast<int>(arguments[call->descriptorArgument]));
    } else {
      const int folder =
          call->folderArgument < 0 ? AT_FDCWD : static_cast<int>(arguments[call->folderArgument]);
      path = pathBelow(asker, folder, readText(asker, arguments[call->pathArgument]));
    }
    if (!isWatched(path) || programOf(asker) != program_) {
      return std::nullopt;
    }
    atWork_.insert(processOf(asker));
    return FileCall{call->kind, path, asker};
  }

  static bool isWatched(const std::string& path) {
    static constexpr std::array<std::string_view, 5> kFolders{"/tmp", "/Users", "/Volumes", "/Library",
                                                              "/Applications"};
    // ThreadSanitizer's own, before the program begins; it writes until it is no longer interrupted.
    static constexpr std::string_view kSanitizersFile = "/tmp/tsan.rodata.";
    const auto isBelow = [&path](std::string_view folder) {
      return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
    };
    return std::ranges::any_of(kFolders, isBelow) && !isBelow(TAVINSTALL_SOURCE_DIR) &&
           !isBelow(TAVINSTALL_BINARY_DIR) && !path.starts_with(kSanitizersFile);
  }

  // Does half of what was asked for in the caller's place. One byte, or none, cannot be halved.
  void shorten(const seccomp_notif& question, CallKind kind) {
    const auto asker = static_cast<pid_t>(question.pid);
    const std::size_t half = question.data.args[2] / 2;
    if (half == 0 || (question.data.nr != SYS_read && question.data.nr != SYS_write)) {
      letThrough(question.id);
      return;
    }
    const Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, processOf(asker), 0)));
    const Descriptor file(
        static_cast<int>(syscall(SYS_pidfd_getfd, static_cast<int>(process), question.data.args[0], 0)));
    std::vector<char> bytes(half);
    ssize_t count = -1;
    if (kind == CallKind::write) {
      count =
          readMemory(asker, question.data.args[1], bytes.data(), half) ? write(file, bytes.data(), half) : -1;
    } else {
      count = read(file, bytes.data(), half);
      if (count > 0) {
        writeMemory(asker, question.data.args[1], bytes.data(), static_cast<std::size_t>(count));
      }
    }
    answer(question.id, count < 0 ? 0 : count, count < 0 ? -errno : 0);
  }

  void letThrough(__u64 question) { answer(question, 0, 0, SECCOMP_USER_NOTIF_FLAG_CONTINUE); }

  // An asker that was killed meanwhile needs no answer.
  void answer(__u64 question, __s64 value, int error, unsigned flags = 0) {
    seccomp_notif_resp response{question, value, error, flags};
    ioctl(listener_, SECCOMP_IOCTL_NOTIF_SEND, &response);
  }

  pid_t processOf(pid_t thread) {
    const auto known = processes_.find(thread);
    if (known != processes_.end()) {
      return known->second;
    }
    return processes_[thread] = processOfThread(thread);
  }

  int listener_;
  const std::string& program_;
  const Judge& judge_;
  std::vector<Sleeper> sleepers_;
  std::map<pid_t, pid_t> processes_;  // of each thread
  std::set<pid_t> atWork_;            // the program's processes that have touched a file
};

// Ends and waits for all that has come of a run. What a process leaves behind comes to this one.
void endAll() {
  for (auto left = childrenOf(getpid()); !left.empty(); left = childrenOf(getpid())) {
    for (const pid_t process : left) {
      kill(process, SIGKILL);
      waitpid(process, nullptr, 0);
    }
  }
}

}  // namespace

GatedRun runGated(const std::vector<std::string>& commandLine, std::string_view input, const Judge& judge,
                  std::chrono::seconds limit) {
  const Descriptor in(memfd_create("standard input", MFD_CLOEXEC));
  const Descriptor out(memfd_create("standard output", MFD_CLOEXEC));
  const Descriptor error(memfd_create("standard error", MFD_CLOEXEC));
  if (pwrite(in, input.data(), input.size(), 0) != static_cast<ssize_t>(input.size())) {
    fail("the program's input");
  }
  std::array<int, 2> sockets{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0) {
    fail("socketpair");
  }
  std::vector<char*> arguments;
  for (const std::string& argument : commandLine) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);

  prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0);
  const pid_t child = fork();
  if (child == 0) {
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(error, STDERR_FILENO);
    umask(022);
    static_cast<void>(!chdir("/"));
    setenv("PATH", usualPath().c_str(), 1);
    const int listener = installCallFilter();
    if (listener >= 0) {
      fcntl(listener, F_SETFD, FD_CLOEXEC);
      sendDescriptor(sockets[1], listener);
      execvp(arguments[0], arguments.data());
    }
    _exit(127);
  }
  close(sockets[1]);
  const Descriptor socket(sockets[0]);
  if (child < 0) {
    fail("fork");
  }
  const Descriptor listener(receiveDescriptor(socket));

  GatedRun run;
  Gate gate(listener, commandLine.front(), judge);
  run.isHung = !gate.serve(Clock::now() + limit);
  if (run.isHung) {
    kill(child, SIGKILL);
  }
  int status = 0;
  waitpid(child, &status, 0);
  endAll();
  prctl(PR_SET_CHILD_SUBREAPER, 0, 0, 0, 0);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  run.output = contentsOf(out);
  run.error = contentsOf(error);
  return run;
}

}  // namespace tavenhall::test
