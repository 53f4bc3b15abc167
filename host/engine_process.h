#pragma once

#include "host/exit_status.h"
#include "host/run_options.h"

#include <functional>
#include <sys/types.h>

namespace tavenhall {

// The descriptors that an engine speaks through; -1 where it has no such way.
struct EngineLines {
  int commands = -1;  // JSON lines in
  int events = -1;    // JSON lines out
  int summary = -1;   // the summary, once, at the end
};

// Runs a whole engine in this process, to its end: loads the bundle, does the pre-install step, obeys the
// commands (or, without any, runs one install through), and writes the summary. The process ends here,
// since page threads may still run. Throws UsageError before anything is begun. Before any thread.
[[noreturn]] void runEngine(const RunOptions& options, const EngineLines& lines);

// An engine in a process of its own, which no terminal can end: it leads a new process group without one.
struct EngineProcess {
  pid_t pid = -1;
  EngineLines lines;  // this side's ends
};

// Starts one. Usage errors are shown by it on standard error, and its exit status tells. Before any thread.
// Throws std::system_error when there can be no process.
[[nodiscard]] EngineProcess startEngineProcess(const RunOptions& options);

// The same with something else that speaks an engine's lines: `body` runs in the new process, with the
// engine's ends, and its result is the exit status.
using EngineBody = std::function<ExitStatus(const EngineLines& lines)>;
[[nodiscard]] EngineProcess startEngineProcess(const EngineBody& body);

// Waits for it and gives its exit status; ExitStatus::failure when a signal ended it.
[[nodiscard]] ExitStatus waitForEngineProcess(const EngineProcess& process);

}  // namespace tavenhall
