#include "host/engine/engine_process.h"

#include "host/base/child_process.h"
#include "host/base/errors.h"
#include "host/base/text.h"
#include "host/engine/bundle_loader.h"
#include "host/engine/engine.h"
#include "host/engine/install_lock.h"
#include "host/engine/pre_install.h"
#include "host/protocol/command_terminal.h"
#include "host/protocol/json_events.h"
#include "host/protocol/quiet_events.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace tavenhall {

namespace {

// Commands that the page runs get nothing to read, and speak on standard error: the protocol's lines and the
// terminal are not theirs.
void shieldStandardStreams() {
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (nothing >= 0) {
    dup2(nothing, STDIN_FILENO);
    close(nothing);
  }
  std::fflush(stdout);
  dup2(STDERR_FILENO, STDOUT_FILENO);
}

// Keeps a stream of the process's own apart from what commands inherit; -1 stays -1.
int setAside(int descriptor) {
  constexpr int kFirstOwnDescriptor = 10;
  return descriptor < 0 ? -1 : fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstOwnDescriptor);
}

// Handled rather than ignored, since what is ignored stays so in the commands that the page runs.
void survive(int signal) {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  sigaction(signal, &action, nullptr);
}

Engine* theEngine = nullptr;

// A path that does not fit stops the process on the thread that met it: listeners first hear what came before.
void flushAtStop(int signal) {
  theEngine->flushAtStop();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

// `cannotWrite` is the text for that, with places for the file and the reason.
void writeSummary(const RunOptions& options, const EngineLines& lines, const std::string& summary,
                  const char* cannotWrite) {
  if (lines.summary >= 0) {
    writeAll(lines.summary, summary);
  }
  if (options.summary.empty()) {
    return;
  }
  const int file = open(options.summary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (file < 0 || !writeAll(file, summary)) {
    showError(UsageError(format(cannotWrite, {options.summary.string(), std::strerror(errno)})));
  }
}

// No destructor may run under a page thread that still does.
[[noreturn]] void endProcess(ExitStatus status) {
  std::fflush(nullptr);
  _exit(static_cast<int>(status));
}

}  // namespace

void runEngine(const RunOptions& options, const EngineLines& lines) {
  const PageFactory factory = loadBundle(options.bundle);
  const InstallLock lock(!options.package.empty());
  if (!options.package.empty()) {
    runPreInstallStep(options);
  }
  const EngineLines own{setAside(lines.commands), setAside(lines.events), lines.summary, -1};
  shieldStandardStreams();
  const char* cannotWriteSummary = _("cannot write the summary {0}: {1}");
  speakEnglish();    // the system's error texts go into the log
  survive(SIGPIPE);  // a reader that goes away must not end an install
  addStandInsToPath();

  std::unique_ptr<EventSink> events = std::make_unique<QuietEvents>();
  if (own.events >= 0) {
    events = std::make_unique<JsonEvents>(own.events);
  }
  const bool isObeying = own.commands >= 0;
  CommandSource commands =
      isObeying ? CommandSource(own.commands)
                : CommandSource({Command::title, Command::enter, Command::wait}, kAlertFirstButtonReturn);

  Engine engine(commands, *events, [&] {
    writeSummary(options, own, theEngine->summary(), cannotWriteSummary);
    endProcess(ExitStatus::noAnswer);
  });
  theEngine = &engine;
  std::signal(SIGABRT, flushAtStop);
  engine.makePage(factory);
  engine.run();
  const bool faceIsGone = options.face != Face::json && commands.isClosed();
  if ((!isObeying || faceIsGone) && engine.nextIsEnabled()) {
    commands.add(Command::forward);
    engine.run();
  }
  writeSummary(options, own, engine.summary(), cannotWriteSummary);
  // A program that speaks the lines itself judges the install itself.
  const bool isDone = options.face == Face::json || engine.record().isSuccess();
  endProcess(isDone ? ExitStatus::success : ExitStatus::failure);
}

namespace {

EngineProcess start(const EngineBody& body, Errors errors, const CommandTerminalEnds& terminal) {
  const Pipe commands = makePipe();
  const Pipe events = makePipe();
  const Pipe summary = makePipe();
  const Pipe said = errors == Errors::aLine ? makePipe() : Pipe{};
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (pid == 0) {
    close(commands.writeEnd);
    close(events.readEnd);
    close(summary.readEnd);
    setsid();
    keepToOneLanguage();
    if (terminal.commands >= 0) {
      close(terminal.face);
      survive(SIGHUP);  // that terminal goes when its face does
      takeCommandTerminal(terminal.commands);
    }
    if (said.writeEnd >= 0) {
      // A command must neither wait nor die because nobody listens, so it is never told: this end never waits,
      // and the other one stays open here.
      fcntl(said.writeEnd, F_SETFL, O_NONBLOCK);
      dup2(said.writeEnd, STDERR_FILENO);
    }
    try {
      endProcess(body({commands.readEnd, events.writeEnd, summary.writeEnd, -1}));
    } catch (const UsageError& error) {
      showError(error);
      endProcess(ExitStatus::badUsage);
    }
  }
  for (const int end :
       {commands.readEnd, events.writeEnd, summary.writeEnd, said.writeEnd, terminal.commands}) {
    if (end >= 0) {
      close(end);
    }
  }
  return {pid, {commands.writeEnd, events.readEnd, summary.readEnd, said.readEnd}, terminal.face};
}

// Lines of text may come from anywhere; a password is asked for where this process has a terminal.
bool canAskInSecret(Face face) {
  if (face == Face::terminal) {
    return true;
  }
  const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal >= 0) {
    close(terminal);
  }
  return terminal >= 0;
}

}  // namespace

EngineProcess startEngineProcess(const RunOptions& options) {
  return start([&options](const EngineLines& lines) -> ExitStatus { runEngine(options, lines); },
               options.face == Face::terminal ? Errors::aLine : Errors::shared,
               canAskInSecret(options.face) ? makeCommandTerminal() : CommandTerminalEnds{});
}

EngineProcess startEngineProcess(const EngineBody& body, Errors errors) { return start(body, errors, {}); }

void stopEngineProcess(const EngineProcess& process) {
  // It leads a process group of its own, save in its very first moments.
  if (kill(-process.pid, SIGTERM) != 0) {
    kill(process.pid, SIGTERM);
  }
}

ExitStatus waitForEngineProcess(const EngineProcess& process) {
  int status = 0;
  while (waitpid(process.pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? static_cast<ExitStatus>(WEXITSTATUS(status)) : ExitStatus::failure;
}

}  // namespace tavenhall
