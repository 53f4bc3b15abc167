#pragma once

#include "host/base/exit_status.h"
#include "host/engine/run_options.h"

#include <functional>
#include <sys/types.h>

namespace tavenhall {

// The descriptors that an engine speaks through; -1 where it has no such way.
struct EngineLines {
  int commands = -1;  // JSON lines in
  int events = -1;    // JSON lines out
  int summary = -1;   // the summary, once, at the end
  int errors = -1;    // what it, and the commands it runs, say on standard error
};

// Runs a whole engine in this process, to its end: loads the bundle, does the pre-install step, obeys the
// commands (or, without any, runs one install through), and writes the summary. Where a face of this program
// goes away, the page is left forwards for it. The process ends here, since page threads may still run.
// Throws UsageError before anything is begun, also when this user installs already. Before any thread.
[[noreturn]] void runEngine(const RunOptions& options, const EngineLines& lines);

// An engine in a process of its own, which no terminal can end: it leads a new process group without one.
struct EngineProcess {
  pid_t pid = -1;
  EngineLines lines;         // this side's ends
  int commandTerminal = -1;  // this side's end of its commands' terminal; see CommandTerminal
};

// Starts one. Usage errors are shown by it on standard error, and its exit status tells; for the terminal face,
// standard error is one of its lines. Its commands have a terminal where the face has a user to ask. Before any
// thread. Throws std::system_error when there can be no process.
[[nodiscard]] EngineProcess startEngineProcess(const RunOptions& options);

// The same with something else that speaks an engine's lines: `body` runs in the new process, with the
// engine's ends, and its result is the exit status.
using EngineBody = std::function<ExitStatus(const EngineLines& lines)>;
enum class Errors { shared, aLine };  // standard error is this process's, or one of the lines
[[nodiscard]] EngineProcess startEngineProcess(const EngineBody& body, Errors errors = Errors::shared);

// Tells it to end, and the command that it may be running. What was copied stays as it is.
void stopEngineProcess(const EngineProcess& process);

// Waits for it and gives its exit status; ExitStatus::failure when a signal ended it.
[[nodiscard]] ExitStatus waitForEngineProcess(const EngineProcess& process);

}  // namespace tavenhall
