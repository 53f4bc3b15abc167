#pragma once

#include "host/base/exit_status.h"
#include "host/protocol/engine_client.h"

#include <functional>

namespace tavenhall {

// The engine's ends of the pipes to a frontend.
struct EngineEnds {
  int requests = -1;  // read
  int events = -1;    // written
};

// Runs in the child process. Returns the exit status; a UsageError is printed on standard error and exits with
// ExitStatus::badUsage.
using EngineBody = std::function<ExitStatus(const EngineEnds& ends)>;

struct EngineProcessOptions {
  bool capturesErrors = false;       // EngineConnection::errors is a pipe
  bool hasPasswordTerminal = false;  // its commands get a pseudo-terminal to ask for passwords on
};

// Forks a child process that no terminal can end, since it calls setsid(). Call it before any thread is
// started. Throws std::system_error if the system cannot start a process.
[[nodiscard]] EngineConnection startEngineProcess(const EngineBody& body, const EngineProcessOptions& options);

// Runs a handler that does nothing for the signal. Ignoring it instead would be inherited by every command.
void surviveSignal(int signal);

// Ends the process without running a destructor, since page threads may still run.
[[noreturn]] void exitProcess(ExitStatus status);

}  // namespace tavenhall
