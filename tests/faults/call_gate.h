#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

// Runs a program so that every system call by which it touches the page's files, or starts a thread or a
// command, is first shown to the test, which lets it through, answers it with an error, shortens it, or ends
// the process in the middle of it. The program is the built one, as it is; the kernel asks (seccomp's user
// notification), so nothing in it knows. Linux 5.19 or later.
//
// Its sleeps pass a thousand times faster, so that the page's waits for discs cost nothing.
namespace tavenhall::test {

enum class CallKind {
  open,     // a file or a folder
  read,     // from a file
  write,    // to a file
  reserve,  // room for a file, or its size
  close,    // a file or a folder
  stat,     // by path or descriptor
  makeFolder,
  list,    // a folder's next entries
  remove,  // a file or a folder
  rename,
  permissions,
  fileSystem,  // what the file system at a path is like
  readLink,
  seek,
  startThread,
  startCommand,
};

struct FileCall {
  CallKind kind;
  std::string path;  // absolute; empty for startThread and startCommand
  pid_t thread;      // the caller's identifier
};

struct Verdict {
  enum class Kind { pass, fail, shorten, kill };

  Kind kind = Kind::pass;
  int error = 0;  // for fail: an errno value
};

inline constexpr Verdict kPass{};
inline constexpr Verdict kKill{Verdict::Kind::kill, 0};
inline constexpr Verdict kShorten{Verdict::Kind::shorten, 0};  // half the bytes, for read and write
[[nodiscard]] constexpr Verdict failWith(int error) { return {Verdict::Kind::fail, error}; }

// Asked for every call of the program itself on a path below /tmp, /Users, /Volumes, /Library or
// /Applications, in the order in which they are made, on the thread of runGated. The project's own folders, a
// sanitizer's own file, and the calls of commands that the program runs, are not shown.
using Judge = std::function<Verdict(const FileCall&)>;

struct GatedRun {
  int status = -1;      // the exit status, or 128 and the signal's number
  bool isHung = false;  // was still running at the limit, and was ended
  std::string output;
  std::string error;
};

// Runs it to the end of all of its processes, in the root folder, with a umask of 022, and `input` as its
// standard input. One run at a time in a process. Throws std::system_error where the system cannot do this.
[[nodiscard]] GatedRun runGated(const std::vector<std::string>& commandLine, std::string_view input,
                                const Judge& judge, std::chrono::seconds limit = std::chrono::seconds(180));

}  // namespace tavenhall::test
