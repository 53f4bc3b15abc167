#pragma once

#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/protocol/messages.h"
#include "host/protocol/password_terminal.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

namespace tavenhall {

// An engine in another process, and the frontend's ends of the pipes.
struct EngineConnection {
  pid_t process = -1;  // a child process; -1: the frontend has attached to the engine
  int requests = -1;   // written; JSON lines
  int events = -1;     // read; JSON lines
  int errors = -1;     // read; the standard error of the engine and its commands. -1: it is this process's own
  int passwords = -1;  // the master side of the commands' pseudo-terminal. -1: there is none
};

// The client end of the protocol: sends requests to an engine and reads its events. One thread.
class EngineClient {
 public:
  // Ignores SIGPIPE from now on: an engine that has ended shows as the end of its events.
  explicit EngineClient(const EngineConnection& connection);

  void send(const Request& request);

  [[nodiscard]] bool isAttached() const { return connection_.process < 0; }

  // Closes the requests. An alert that waits for an answer, or comes later, then ends the engine.
  void closeRequests();

  // Poll them for input; -1 once closed.
  [[nodiscard]] int eventsDescriptor() const { return events_.descriptor(); }
  [[nodiscard]] int errorsDescriptor() const { return errors_.descriptor(); }

  // Read once. Call them when the descriptor is readable. While an event is handled, eventTime() is when it
  // happened.
  void readEvents(const std::function<void(const Event& event)>& handle);
  [[nodiscard]] std::chrono::steady_clock::time_point eventTime() const { return eventTime_; }
  void readErrors(const std::function<void(const std::string& line)>& handle) { errors_.read(handle); }

  // Whether the engine has closed its events, as it does at its end.
  [[nodiscard]] bool hasEnded() const { return !events_.isOpen(); }

  // Blocks until the engine's process has ended and returns its exit status; none if a signal ended it, also
  // after the summary. Before that, passes on what is left of its standard error. Of an engine that was
  // attached to: the status in its summary, without blocking; none if no summary has come.
  [[nodiscard]] std::optional<ExitStatus> wait(
      const std::function<void(const std::string& line)>& handleError = {});

  // Sends SIGTERM to the engine, a child process, and the command that it may be running. What was copied
  // stays.
  void stop();

  [[nodiscard]] PasswordTerminal& passwords() { return passwords_; }

 private:
  EngineConnection connection_;
  std::chrono::steady_clock::time_point eventTime_;
  bool isPast_ = false;  // eventTime_ is the next event's
  std::optional<ExitStatus> summaryStatus_;
  LineReader events_{connection_.events, LineReader::kAnyLength};  // the summary lists every sheet
  LineReader errors_{connection_.errors};
  PasswordTerminal passwords_{connection_.passwords};
};

// Connects to the running install of this user that has locked the folder; none if there is none, or if it
// cannot be reached. Throws UsageError if it does not answer.
struct AttachedEngine {
  EngineConnection connection;
  event::Attached run;
};
[[nodiscard]] std::optional<AttachedEngine> attachToEngine(const std::string& lockedFolder);

// The engine's ends of the pipes to a frontend.
struct EngineEnds {
  int requests = -1;  // read
  int events = -1;    // written
};

// Runs in the child process. Returns the exit status; a UsageError is printed on standard error and exits with
// its status.
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
