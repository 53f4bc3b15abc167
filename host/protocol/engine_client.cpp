#include "host/protocol/engine_client.h"

#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/protocol/json_form.h"
#include "host/protocol/run_socket.h"
#include "platform/host_system.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tavenhall {

using Clock = std::chrono::steady_clock;

EngineClient::EngineClient(const EngineConnection& connection) : connection_(connection) {
  std::signal(SIGPIPE, SIG_IGN);
}

void EngineClient::send(const Request& request) {
  if (connection_.requests >= 0) {
    writeAll(connection_.requests, encode(request));
  }
}

void EngineClient::closeRequests() {
  if (connection_.requests >= 0) {
    close(std::exchange(connection_.requests, -1));
  }
}

void EngineClient::readEvents(const std::function<void(const Event& event)>& handle) {
  events_.read([this, &handle](const std::string& line) {
    const auto event = decodeEvent(line);
    if (!event) {
      return;
    }
    if (const auto* past = std::get_if<event::Past>(&*event)) {
      eventTime_ = Clock::now() -
                   std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(past->seconds));
      isPast_ = true;
      return;
    }
    if (!std::exchange(isPast_, false)) {
      eventTime_ = Clock::now();
    }
    if (const auto* summary = std::get_if<event::Summary>(&*event)) {
      summaryStatus_ = static_cast<ExitStatus>(summary->status);
    }
    handle(*event);
  });
}

std::optional<ExitStatus> EngineClient::wait(const std::function<void(const std::string& line)>& handleError) {
  if (isAttached()) {
    return summaryStatus_;
  }
  int status = 0;
  while (waitpid(connection_.process, &status, 0) < 0) {
    if (errno != EINTR) {
      return std::nullopt;  // success cannot be known
    }
  }
  // Commands that outlive the engine may keep this open, so only what is there by now is read.
  pollfd source{errors_.descriptor(), POLLIN, 0};
  while (handleError && errors_.isOpen() && poll(&source, 1, 0) > 0) {
    errors_.read(handleError);
  }
  return WIFEXITED(status) ? std::optional(static_cast<ExitStatus>(WEXITSTATUS(status))) : std::nullopt;
}

void EngineClient::stop() {
  // It leads a process group of its own, except in its very first moments.
  if (kill(-connection_.process, SIGTERM) != 0) {
    kill(connection_.process, SIGTERM);
  }
}

namespace {

// How long an engine that runs takes to answer, on a machine that is busy.
constexpr std::chrono::seconds kPatience{5};

// Byte by byte, so that nothing behind the line is taken. Empty if none comes in time.
std::string readLine(int descriptor) {
  const auto end = Clock::now() + kPatience;
  std::string line;
  while (!line.ends_with('\n')) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    pollfd input{descriptor, POLLIN, 0};
    char byte = 0;
    if (left.count() <= 0 || poll(&input, 1, static_cast<int>(left.count())) == 0 ||
        (input.revents != 0 && read(descriptor, &byte, 1) <= 0)) {
      return {};
    }
    if (input.revents != 0) {
      line += byte;
    }
  }
  return line;
}

void closeAll(std::initializer_list<int> descriptors) {
  for (const int descriptor : descriptors) {
    if (descriptor >= 0) {
      close(descriptor);
    }
  }
}

[[noreturn]] void runBody(const EngineBody& body, const EngineEnds& ends) {
  try {
    exitProcess(body(ends));
  } catch (const UsageError& error) {
    showError(error);
    exitProcess(error.status());
  }
}

}  // namespace

std::optional<AttachedEngine> attachToEngine(const std::string& lockedFolder) {
  const int descriptor = connectToEngine(lockedFolder);
  if (descriptor < 0) {
    return std::nullopt;
  }
  const auto event = decodeEvent(readLine(descriptor));
  const auto* run = event ? std::get_if<event::Attached>(&*event) : nullptr;
  if (run == nullptr) {
    close(descriptor);
    throw UsageError(_("the installation does not answer"), ExitStatus::failure);
  }
  const int events = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
  if (events < 0) {
    throw std::system_error(errno, std::generic_category(), "fcntl");
  }
  return AttachedEngine{{.process = -1, .requests = descriptor, .events = events}, *run};
}

EngineConnection startEngineProcess(const EngineBody& body, const EngineProcessOptions& options) {
  const Pipe requests = makePipe();
  const Pipe events = makePipe();
  const Pipe errors = options.capturesErrors ? makePipe() : Pipe{};
  const PseudoTerminal terminal = options.hasPasswordTerminal ? openPseudoTerminal() : PseudoTerminal{};
  if (terminal.frontend >= 0) {
    forbidTracing();  // a password goes through this process, and the engine has the terminal open
  }
  const pid_t pid = forkProcess();
  if (pid < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (pid == 0) {
    closeAll({requests.writeEnd, events.readEnd, terminal.frontend});
    setsid();
    keepToOneLanguage();
    if (terminal.commands >= 0) {
      surviveSignal(SIGHUP);  // the terminal hangs up when its frontend goes
      setControllingTerminal(terminal.commands);
    }
    if (errors.writeEnd >= 0) {
      // A command must neither block nor get SIGPIPE when its errors are not read: this end never blocks, and
      // the other one stays open here.
      fcntl(errors.writeEnd, F_SETFL, O_NONBLOCK);
      dup2(errors.writeEnd, STDERR_FILENO);
    }
    runBody(body, {.requests = requests.readEnd, .events = events.writeEnd});
  }
  closeAll({requests.readEnd, events.writeEnd, errors.writeEnd, terminal.commands});
  return {.process = pid,
          .requests = requests.writeEnd,
          .events = events.readEnd,
          .errors = errors.readEnd,
          .passwords = terminal.frontend};
}

void surviveSignal(int signal) {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  sigaction(signal, &action, nullptr);
}

void exitProcess(ExitStatus status) {
  std::fflush(nullptr);
  _exit(static_cast<int>(status));
}

}  // namespace tavenhall
