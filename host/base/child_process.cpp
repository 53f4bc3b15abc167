#include "host/base/child_process.h"

#include "host/base/text.h"
#include "platform/host_system.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace tavenhall {

namespace {

std::system_error startFailure(const std::string& program) {
  return {errno, std::generic_category(), format(_("starting {0}"), {program})};
}

// Opens /dev/null, with close-on-exec set, for the time of one start.
class NullDevice {
 public:
  NullDevice() : descriptor_(open("/dev/null", O_RDWR | O_CLOEXEC)) {}
  NullDevice(const NullDevice&) = delete;
  NullDevice& operator=(const NullDevice&) = delete;
  ~NullDevice() {
    if (descriptor_ >= 0) {
      close(descriptor_);
    }
  }

  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
};

// A command as execvp() takes it, made before fork(): in the child of a process with threads there may be no
// memory to be had.
class Arguments {
 public:
  explicit Arguments(const std::vector<std::string>& command) : words_(command) {
    for (std::string& word : words_) {
      pointers_.push_back(word.data());
    }
    pointers_.push_back(nullptr);
  }

  [[nodiscard]] bool isEmpty() const { return words_.empty(); }

  // Does not return.
  void execute() const {
    execvp(pointers_[0], pointers_.data());
    _exit(kCannotRun);
  }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

// Of the guard's process.
pid_t guardedProgram = -1;

void endGuarded(int /*signal*/) { kill(-guardedProgram, SIGKILL); }

void runToItsEnd(const Arguments& command) {
  const pid_t pid = fork();
  if (pid == 0) {
    command.execute();
  }
  waitpid(pid, nullptr, 0);
}

// Goes on in a child process, the first of a process group of its own. This one is the guard; SIGTERM to its
// own group does no more than to itself.
void goOnGuarded(const Arguments& afterwards) {
  sigset_t end;
  sigset_t before;
  sigemptyset(&end);
  sigaddset(&end, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &end, &before);
  guardedProgram = fork();
  if (guardedProgram < 0) {
    _exit(kCannotRun);
  }
  setpgid(guardedProgram, 0);  // in both, since neither knows whether the other one is as far
  if (guardedProgram > 0) {
    std::signal(SIGTERM, endGuarded);
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  if (guardedProgram == 0) {
    return;
  }
  int status = 0;
  const bool hasExited = waitpid(guardedProgram, &status, 0) >= 0 && WIFEXITED(status);
  if (!hasExited) {
    endGuarded(SIGTERM);
  }
  std::signal(SIGTERM, SIG_IGN);
  if (!afterwards.isEmpty()) {
    runToItsEnd(afterwards);
  }
  if (!hasExited) {
    raise(SIGKILL);
  }
  _exit(WEXITSTATUS(status));
}

}  // namespace

pid_t forkProcess() {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  std::fflush(nullptr);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const pid_t pid = fork();
  if (pid == 0) {
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
      struct sigaction action {};
      if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
        std::signal(signal, SIG_DFL);
      }
    }
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return pid;
}

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  for (const int end : ends) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
  }
  return {ends[0], ends[1]};
}

bool writeAll(int descriptor, std::string_view text) { return writeUnless(descriptor, text, -1); }

bool writeUnless(int descriptor, std::string_view text, int interrupt, std::chrono::milliseconds timeout) {
  constexpr std::size_t kRoom = 4096;  // bytes; a pipe that poll() calls writable has room for so many
  while (!text.empty()) {
    if (descriptor < 0) {
      return false;  // poll() would wait for it without end
    }
    std::array<pollfd, 2> ends{{{descriptor, POLLOUT, 0}, {interrupt, POLLIN, 0}}};
    const int ready = poll(ends.data(), ends.size(), static_cast<int>(timeout.count()));
    if (ready < 0 && errno == EINTR) {
      continue;
    }
    if (ready <= 0 || ends[1].revents != 0) {
      return false;
    }
    const ssize_t written = ::write(descriptor, text.data(), std::min(text.size(), kRoom));
    if (written > 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (written == 0 || (errno != EINTR && errno != EAGAIN)) {
      return false;
    }
  }
  return true;
}

pid_t startProgram(const std::vector<std::string>& command, const StandardStreams& streams,
                   const std::optional<Guard>& guard) {
  const Arguments arguments(command);
  const Arguments afterwards(guard ? guard->afterwards : std::vector<std::string>{});
  const pid_t self = getpid();
  const pid_t pid = forkProcess();
  if (pid < 0) {
    throw startFailure(command.front());
  }
  if (pid == 0) {
    if (!endWithParentProcess(self)) {
      _exit(kCannotRun);
    }
    setsid();
    if (guard) {
      goOnGuarded(afterwards);
    }
    dup2(streams.input, STDIN_FILENO);
    dup2(streams.output, STDOUT_FILENO);
    dup2(streams.error, STDERR_FILENO);
    closeDescriptorsOnExec();
    if (streams.kept >= 0) {
      fcntl(streams.kept, F_SETFD, 0);
    }
    arguments.execute();
  }
  return pid;
}

ToolProcess::ToolProcess(const std::vector<std::string>& command, Keep keep, int keptDescriptor,
                         const std::optional<Guard>& guard)
    : output_(std::tmpfile(), std::fclose) {
  if (!output_) {
    throw startFailure(command.front());
  }
  const NullDevice null;
  const int kept = fileno(output_.get());
  pid_ = startProgram(
      command, {null.descriptor(), kept, keep == Keep::output ? null.descriptor() : kept, keptDescriptor},
      guard);
}

ToolProcess::~ToolProcess() { end(); }

bool ToolProcess::hasEnded() {
  int status = 0;
  if (pid_ > 0 && waitpid(pid_, &status, WNOHANG) == pid_) {
    setStatus(status);
  }
  return pid_ < 0;
}

int ToolProcess::wait() {
  int status = 0;
  while (pid_ > 0) {
    if (waitpid(pid_, &status, 0) == pid_) {
      setStatus(status);
    } else if (errno != EINTR) {
      pid_ = -1;
    }
  }
  return status_;
}

void ToolProcess::end() {
  if (!hasEnded()) {
    kill(pid_, SIGTERM);
    wait();
  }
}

std::string ToolProcess::output() const {
  std::string text;
  std::array<char, 4096> piece{};
  std::rewind(output_.get());
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), output_.get())) {
    text.append(piece.data(), count);
  }
  return text;
}

std::string ToolProcess::lastLine() const {
  std::string text = output();
  text.erase(text.find_last_not_of(" \r\n") + 1);
  return text.substr(text.rfind('\n') + 1);
}

void ToolProcess::setStatus(int status) {
  pid_ = -1;
  status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::optional<std::string> outputOfTool(const std::vector<std::string>& command) {
  ToolProcess tool(command, ToolProcess::Keep::output);
  return tool.wait() == 0 ? std::optional(tool.output()) : std::nullopt;
}

}  // namespace tavenhall
