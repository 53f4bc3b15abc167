#include "host/engine/run_engine.h"

#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/engine/engine.h"
#include "host/engine/pre_install.h"
#include "host/protocol/json_form.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace tavenhall {

namespace {

// The commands that the page runs read nothing and print on standard error: neither the protocol nor the
// terminal is theirs.
void shieldStandardStreams() {
  const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (null >= 0) {
    dup2(null, STDIN_FILENO);
    close(null);
  }
  std::fflush(stdout);
  dup2(STDERR_FILENO, STDOUT_FILENO);
}

// A copy of one of the protocol's descriptors that commands do not inherit.
int setAside(int descriptor) {
  constexpr int kAboveStandardStreams = 10;
  const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, kAboveStandardStreams);
  if (copy < 0) {
    throw std::system_error(errno, std::generic_category(), "fcntl");
  }
  return copy;
}

EventWriter* theEvents = nullptr;

// A path that does not fit its buffer aborts the process on the thread that met it; what was reported before
// still goes out.
void drainAndAbort(int signal) {
  constexpr std::chrono::seconds kPatience{2};
  theEvents->drain(kPatience);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

// `cannotWrite` is the text for a failure, with places for the file and the reason.
void writeSummaryFile(const std::filesystem::path& path, const event::Summary& summary,
                      const char* cannotWrite) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (file < 0 || !writeAll(file, encodeSummaryFile(summary))) {
    showError(UsageError(format(cannotWrite, {path.string(), std::strerror(errno)})));
  }
}

}  // namespace

void runEngine(const EngineOptions& options, Controller controller, const EngineEnds& ends) {
  const PageFactory factory = loadBundle(options.bundle);
  const InstallLock lock(!options.package.empty());
  if (!options.package.empty()) {
    runPreInstallStep(options.package, options.installType);
  }
  const bool isControlled = controller != Controller::nobody;
  const int requests = isControlled ? setAside(ends.requests) : -1;
  const int output = isControlled ? setAside(ends.events) : -1;
  shieldStandardStreams();
  const char* cannotWriteSummary = _("cannot write the summary {0}: {1}");
  speakEnglish();          // the system's error texts go into the log
  surviveSignal(SIGPIPE);  // a frontend that goes away must not end an install
  addStandInsToPath();
  EjectNote ejectNote;
  // Threads may run from here on: do not change the environment any more.

  std::unique_ptr<EventWriter> events;
  if (isControlled) {
    events = std::make_unique<EventWriter>(output);
    theEvents = events.get();
    std::signal(SIGABRT, drainAndAbort);
    for (const std::string& warning : options.warnings) {
      events->write(event::Warning{warning});
    }
  }
  Engine* theEngine = nullptr;
  const auto finish = [&](ExitStatus status) {
    const event::Summary summary = theEngine->summary();
    if (events) {
      events->write(summary);
    }
    if (!options.summary.empty()) {
      writeSummaryFile(options.summary, summary, cannotWriteSummary);
    }
    if (events) {
      events->finish();
    }
    theEngine->stopReading();
    InstallTypePlace::clear();  // of a page that was not entered
    exitProcess(status);
  };
  Engine engine(events.get(), ejectNote, [&finish] { finish(ExitStatus::noAnswer); });
  theEngine = &engine;
  engine.makePage(factory);
  if (isControlled) {
    engine.readRequests(requests);
  } else {
    engine.setRequests({Command::title, Command::enter, Command::wait}, Answer{kAlertFirstButtonReturn});
  }
  engine.run();
  const bool nobodyLeaves =
      controller == Controller::nobody || (controller == Controller::frontend && engine.inputIsClosed());
  if (nobodyLeaves && engine.nextIsEnabled()) {
    engine.add(Command::forward);
    engine.run();
  }
  if (engine.isIdle()) {
    engine.requireCopies(options.copies, options.failures);
  }
  const bool isDone = controller == Controller::program || engine.isSuccess();
  finish(isDone ? ExitStatus::success : ExitStatus::failure);
  std::abort();  // not reached
}

EngineConnection startEngine(const EngineOptions& options, const EngineProcessOptions& process) {
  const auto body = [&options](const EngineEnds& ends) -> ExitStatus {
    runEngine(options, Controller::frontend, ends);
  };
  return startEngineProcess(body, process);
}

}  // namespace tavenhall
