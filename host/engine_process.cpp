#include "host/engine_process.h"

#include "host/bundle_loader.h"
#include "host/engine.h"
#include "host/json_events.h"
#include "host/pre_install.h"
#include "host/quiet_events.h"
#include "host/usage_error.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
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

// A reader that goes away must not end an install. Handled rather than ignored, since what is ignored stays
// so in the commands that the page runs.
void survivePipes() {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  sigaction(SIGPIPE, &action, nullptr);
}

// Puts the tools that stand in for missing ones where only a missing one is looked for.
void addStandInsToPath() {
  const std::string standIns = findStandIns().string();
  if (standIns.empty()) {
    return;
  }
  const char* path = std::getenv("PATH");
  setenv("PATH", ((path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin") + (":" + standIns)).c_str(), 1);
}

void writeSummary(const RunOptions& options, const EngineLines& lines, const std::string& summary) {
  if (lines.summary >= 0) {
    writeAll(lines.summary, summary);
  }
  if (options.summary.empty()) {
    return;
  }
  const int file = open(options.summary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (file < 0 || !writeAll(file, summary)) {
    std::fprintf(stderr, "tavinstall: cannot write the summary %s: %s\n", options.summary.c_str(),
                 std::strerror(errno));
  }
}

// No destructor may run under a page thread that still does.
[[noreturn]] void endProcess(ExitStatus status) {
  std::fflush(nullptr);
  _exit(static_cast<int>(status));
}

}  // namespace

void runEngine(const RunOptions& options, const EngineLines& given) {
  const PageFactory factory = loadBundle(options.bundle);
  if (!options.package.empty()) {
    runPreInstallStep(options);
  }
  const EngineLines lines{setAside(given.commands), setAside(given.events), given.summary};
  shieldStandardStreams();
  survivePipes();
  addStandInsToPath();

  std::unique_ptr<EventSink> events = std::make_unique<QuietEvents>();
  if (lines.events >= 0) {
    events = std::make_unique<JsonEvents>(lines.events);
  }
  const bool isObeying = lines.commands >= 0;
  CommandSource commands =
      isObeying ? CommandSource(lines.commands)
                : CommandSource({Command::title, Command::enter, Command::wait}, kAlertFirstButtonReturn);

  const Engine* running = nullptr;
  Engine engine(commands, *events, [&] {
    writeSummary(options, lines, running->summary());
    endProcess(ExitStatus::noAnswer);
  });
  running = &engine;
  engine.makePage(factory);
  engine.run();
  if (!isObeying && engine.nextIsEnabled()) {
    commands.add(Command::forward);
    engine.run();
  }
  writeSummary(options, lines, engine.summary());
  // A program that speaks the lines itself judges the install itself.
  const bool isDone = options.face == Face::json || engine.record().isSuccess();
  endProcess(isDone ? ExitStatus::success : ExitStatus::failure);
}

namespace {

struct Pipe {
  int readEnd;
  int writeEnd;
};

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

}  // namespace

EngineProcess startEngineProcess(const RunOptions& options) {
  return startEngineProcess([&options](const EngineLines& lines) -> ExitStatus { runEngine(options, lines); });
}

EngineProcess startEngineProcess(const EngineBody& body) {
  const Pipe commands = makePipe();
  const Pipe events = makePipe();
  const Pipe summary = makePipe();
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
    try {
      endProcess(body({commands.readEnd, events.writeEnd, summary.writeEnd}));
    } catch (const UsageError& error) {
      std::fprintf(stderr, "tavinstall: %s\n", error.what());
      endProcess(ExitStatus::badUsage);
    }
  }
  close(commands.readEnd);
  close(events.writeEnd);
  close(summary.writeEnd);
  return {pid, {commands.writeEnd, events.readEnd, summary.readEnd}};
}

ExitStatus waitForEngineProcess(const EngineProcess& process) {
  int status = 0;
  while (waitpid(process.pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? static_cast<ExitStatus>(WEXITSTATUS(status)) : ExitStatus::failure;
}

}  // namespace tavenhall
