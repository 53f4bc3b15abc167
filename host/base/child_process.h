#pragma once

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

// Child processes and the pipes to them. One thread, unless a function says otherwise.
namespace tavenhall {

// A pipe's two ends, both with close-on-exec set; the caller closes them.
struct Pipe {
  int readEnd = -1;
  int writeEnd = -1;
};

// Throws std::system_error when the process is out of file descriptors.
[[nodiscard]] Pipe makePipe();

// Writes all of `text`, also after signals. Returns false if a write fails. Any thread.
bool writeAll(int descriptor, std::string_view text);

// The same, but gives up with false when `interrupt` becomes readable, or after `timeout` if it is not
// negative. Never blocks in write(2) itself, also where the descriptor is a full pipe. `interrupt` may be -1.
[[nodiscard]] bool writeUnless(int descriptor, std::string_view text, int interrupt,
                               std::chrono::milliseconds timeout = std::chrono::milliseconds(-1));

// Forks, after flushing the standard streams. SIGHUP, SIGINT and SIGTERM have their default actions in the
// child, if they are not ignored, from its first moment: a handler of this process would note there what nobody
// reads. Returns as fork(2) does.
[[nodiscard]] pid_t forkProcess();

// A process between this one and a program that it starts: the child, which runs the program in a process group
// of its own. On SIGTERM, also when this process ends, it ends that group with SIGKILL, thus also what would
// not end with the program. It has the program's exit status.
struct Guard {
  std::vector<std::string> afterwards;  // a command to run at the end, whatever has ended the program; or empty
};

// Runs `command` (a program of the PATH, and its arguments) in a child process, without a shell, after
// setsid() so that a terminal's Ctrl-C does not reach it, with these descriptors and no other. The child gets
// SIGTERM when this process ends, if the system supports that: up to once for each of its threads. Throws
// std::system_error if the process cannot be created; the child exits with kCannotRun if the program cannot be
// executed.
inline constexpr int kCannotRun = 127;
struct StandardStreams {
  int input;
  int output;
  int error;
  int kept = -1;  // stays open in the child under its own number
};
[[nodiscard]] pid_t startProgram(const std::vector<std::string>& command, const StandardStreams& streams,
                                 const std::optional<Guard>& guard = {});

// A child process with /dev/null as standard input, whose output is kept in memory. The destructor ends it.
class ToolProcess {
 public:
  enum class Keep { outputAndErrors, output };

  // Throws std::system_error if the process cannot be created.
  explicit ToolProcess(const std::vector<std::string>& command, Keep keep = Keep::outputAndErrors,
                       int keptDescriptor = -1, const std::optional<Guard>& guard = {});
  ToolProcess(const ToolProcess&) = delete;
  ToolProcess& operator=(const ToolProcess&) = delete;
  ~ToolProcess();

  [[nodiscard]] bool hasEnded();

  // Blocks until it has ended. Returns its exit status: kCannotRun when there is no such program, -1 when a
  // signal ended it.
  int wait();

  // Sends SIGTERM and waits.
  void end();

  // Its output so far.
  [[nodiscard]] std::string output() const;

  // The last line of its output, or an empty string.
  [[nodiscard]] std::string lastLine() const;

 private:
  void setStatus(int status);

  std::unique_ptr<std::FILE, int (*)(std::FILE*)> output_;
  pid_t pid_ = -1;  // -1 once it has ended
  int status_ = -1;
};

// The standard output of a program of the PATH, run to its end without input. Nothing when it cannot be run or
// fails.
[[nodiscard]] std::optional<std::string> outputOfTool(const std::vector<std::string>& command);

}  // namespace tavenhall
