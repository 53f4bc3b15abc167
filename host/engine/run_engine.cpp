#include "host/engine/run_engine.h"

#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/engine/engine.h"
#include "host/engine/frontend_server.h"
#include "host/engine/pre_install.h"
#include "host/protocol/json_form.h"
#include "host/protocol/run_record.h"
#include "platform/host_system.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <initializer_list>
#include <memory>
#include <poll.h>
#include <system_error>
#include <thread>
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

// How long an alert waits for a frontend to attach when the one that the run was started with has gone.
constexpr std::chrono::hours kLongestAlone{24};

// ---- Signals that end a run ----

WakeUp* stopWakeUp = nullptr;
std::atomic<int> stopSignal = 0;

// A second one ends the process at once.
void noteStop(int signal) {
  std::signal(signal, SIG_DFL);
  stopSignal = signal;
  stopWakeUp->signal();
}

// Calls `onStop` on a thread of its own when one of the signals has come. One that is ignored, as by nohup,
// stays so.
void watchSignals(std::initializer_list<int> signals, const std::function<void(int signal)>& onStop) {
  stopWakeUp = new WakeUp;  // as long as the process
  std::thread([onStop] {
    pollfd input{stopWakeUp->descriptor(), POLLIN, 0};
    while (poll(&input, 1, -1) <= 0) {
    }
    onStop(stopSignal);
  }).detach();
  struct sigaction action {};
  action.sa_handler = noteStop;
  action.sa_flags = SA_RESTART;
  for (const int signal : signals) {
    struct sigaction before {};
    if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
      sigaction(signal, &action, nullptr);
    }
  }
}

// Why the install failed, in a line.
std::string failureReason(const event::Summary& summary) {
  if (!summary.failedFiles.empty()) {
    const event::AuditFailure& first = summary.failedFiles.front();
    return "not installed: " + std::to_string(summary.audit.failures) + "; the first: " + first.source + " (" +
           first.problem + ")";
  }
  return summary.sheets.empty() ? "the page refused Continue" : summary.sheets.front().message;
}

// The end of a run.
class RunEnd {
 public:
  // Call it while texts are in the user's language.
  RunEnd(const EngineOptions& options, Controller controller) : options_(options), controller_(controller) {}

  // The page is about to be entered.
  void begin() { recorder_.begin(options_.facts); }

  // `first` is the events' writer of the frontend that the run was started with; null: there is none.
  void setEngine(Engine& engine, EventHub& hub, EventWriter* first) {
    engine_ = &engine;
    hub_ = &hub;
    first_ = first;
  }

  void setServer(FrontendServer& server) { server_ = &server; }

  // Reports the summary and ends the process. Any thread. If another thread does so already, waits for the end.
  [[noreturn]] void finish(ExitStatus status, const std::string& reason) {
    constexpr std::chrono::seconds kPatience{2};
    if (isEnding_.test_and_set()) {
      std::this_thread::sleep_for(kPatience);  // a reader that reads nothing may keep the other from its end
      exitProcess(status);
    }
    event::Summary summary = engine_->summary();
    if (controller_ == Controller::program && status == ExitStatus::success && !summary.isInstalled) {
      summary.status = static_cast<int>(ExitStatus::failure);
    } else {
      summary.status = static_cast<int>(status);
    }
    summary.reason = summary.status == static_cast<int>(ExitStatus::failure) ? failureReason(summary) : reason;
    summary.facts = options_.facts;
    if (status == ExitStatus::stopped) {
      summary.remaining = engine_->remainingOf(options_.copies);
    }
    hub_->write(summary);
    if (first_ == nullptr && status != ExitStatus::success) {
      showError(UsageError(summary.reason));
    }
    if (!options_.summary.empty()) {
      writeSummaryFile(options_.summary, summary, cannotWriteSummary_);
    }
    if (engine_->secondsSinceEntry()) {
      recorder_.end(summary);
    }
    if (server_ != nullptr) {
      server_->finish(kPatience);
    }
    const bool isEnd = status == ExitStatus::success || status == ExitStatus::failure;
    if (first_ != nullptr) {
      status == ExitStatus::stopped ? first_->drain(kPatience) : first_->finish();
    }
    if (isEnd || engine_->hasReadAll()) {
      engine_->stopReading();
    }
    InstallTypePlace::clear();  // of a page that was not entered
    exitProcess(status);
  }

 private:
  const EngineOptions& options_;
  RunRecorder recorder_;
  Controller controller_;
  EventWriter* first_ = nullptr;
  EventHub* hub_ = nullptr;
  Engine* engine_ = nullptr;
  FrontendServer* server_ = nullptr;
  std::atomic_flag isEnding_;
  const char* cannotWriteSummary_ = _("cannot write the summary {0}: {1}");
};

[[noreturn]] void playEngine(const EngineOptions& options, Controller controller, const EngineEnds& ends) {
  const PageFactory factory = loadBundle(options.bundle);
  const InstallLock lock(!options.package.empty());
  if (!options.package.empty()) {
    runPreInstallStep(options.package, options.installType);
  }
  const bool isControlled = controller != Controller::nobody;
  const int requests = isControlled ? setAside(ends.requests) : -1;
  const int output = isControlled ? setAside(ends.events) : -1;
  shieldStandardStreams();
  RunEnd end(options, controller);
  speakEnglish();          // the system's error texts go into the log
  surviveSignal(SIGPIPE);  // a frontend that goes away must not end an install
  addStandInsToPath();
  EjectNote ejectNote;
  // Threads may run from here on: do not change the environment any more.

  std::unique_ptr<EventWriter> first;
  if (isControlled) {
    first = std::make_unique<EventWriter>(output);
    theEvents = first.get();
    std::signal(SIGABRT, drainAndAbort);
  }
  EventHub hub(first.get());
  for (const std::string& warning : options.warnings) {
    hub.write(event::Warning{warning});
  }
  Engine engine(hub, ejectNote,
                [&end](ExitStatus status, const std::string& reason) { end.finish(status, reason); });
  end.setEngine(engine, hub, first.get());
  engine.setOnEntry([&end] { end.begin(); });
  engine.makePage(factory);
  const auto stop = [&end](int signal) {
    end.finish(ExitStatus::stopped, "stopped by signal " + std::to_string(signal));
  };
  if (controller == Controller::frontend) {
    watchSignals({SIGTERM, SIGINT}, stop);  // the engine outlives its terminal
  } else {
    watchSignals({SIGTERM, SIGINT, SIGHUP}, stop);
  }
  if (options.unattended) {
    leaveControllingTerminal();
    engine.answerUnattended(*options.unattended);
  }
  const bool takesAnswers = controller == Controller::frontend && !options.unattended;
  FrontendServer server(hub, engine, {options.facts, options.barWraps, takesAnswers, std::nullopt});
  end.setServer(server);
  if (takesAnswers && server.isListening()) {
    engine.waitForFrontends(kLongestAlone);
  }
  if (isControlled) {
    engine.readRequests(requests);
  } else {
    engine.setCommands({Command::title, Command::enter, Command::wait});
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
  end.finish(isDone ? ExitStatus::success : ExitStatus::failure, "");
}

}  // namespace

void writeSummary(const EngineOptions& options, const event::Summary& summary) {
  if (!options.summary.empty()) {
    writeSummaryFile(options.summary, summary, _("cannot write the summary {0}: {1}"));
  }
}

void writeRefusal(const EngineOptions& options, const UsageError& reason) {
  event::Summary summary;
  summary.status = static_cast<int>(reason.status());
  summary.reason = reason.what();
  summary.facts = options.facts;
  writeSummary(options, summary);
}

void runEngine(const EngineOptions& options, Controller controller, const EngineEnds& ends) {
  try {
    playEngine(options, controller, ends);
  } catch (const UsageError& error) {
    writeRefusal(options, error);
    throw;
  }
}

EngineConnection startEngine(const EngineOptions& options, const EngineProcessOptions& process) {
  const auto body = [&options](const EngineEnds& ends) -> ExitStatus {
    runEngine(options, Controller::frontend, ends);
  };
  return startEngineProcess(body, process);
}

}  // namespace tavenhall
