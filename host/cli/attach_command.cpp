#include "host/cli/attach_command.h"

#include "host/base/text.h"
#include "host/engine/pre_install.h"
#include "host/plain/plain_frontend.h"
#include "host/protocol/engine_client.h"
#include "host/terminal/terminal_frontend.h"
#include "host/ui/run_result.h"
#include "host/ui/run_status.h"
#include "platform/host_system.h"

#include <CLI/CLI.hpp>
#include <array>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <poll.h>
#include <string>
#include <unistd.h>

// The commands that speak with an install that runs already.
namespace tavenhall {

namespace {

std::chrono::steady_clock::time_point now() { return std::chrono::steady_clock::now(); }

constexpr std::chrono::seconds kPatience{5};  // until an engine has told its past

// Reads events until `isEnough`, or for as long as `patience`; a negative one has no end. Returns false if
// neither comes: the engine has ended, or does not answer.
bool readEvents(EngineClient& engine, std::chrono::milliseconds patience,
                const std::function<bool(const Event& event)>& isEnough) {
  const auto end = now() + patience;
  bool hasEnough = false;
  while (!hasEnough && !engine.hasEnded()) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - now()).count();
    const bool isEndless = patience.count() < 0;
    pollfd input{engine.eventsDescriptor(), POLLIN, 0};
    if (!isEndless && left <= 0) {
      return false;
    }
    if (poll(&input, 1, isEndless ? -1 : static_cast<int>(left)) > 0) {
      engine.readEvents([&](const Event& event) { hasEnough = isEnough(event) || hasEnough; });
    }
  }
  return hasEnough;
}

AttachedEngine attachOrThrow() {
  if (const auto attached = attachToEngine(installLockFolder())) {
    return *attached;
  }
  throw UsageError(installRuns() ? _("an installation is running, but it cannot be reached")
                                 : _("no installation is running"),
                   ExitStatus::failure);
}

// Passes on the past of the run. Throws UsageError if the engine does not tell it in time.
void readPast(EngineClient& engine, const std::function<void(const Event& event)>& handle) {
  const bool isKnown = readEvents(engine, kPatience, [&handle](const Event& event) {
    handle(event);
    return std::holds_alternative<event::Present>(event);
  });
  if (!isKnown) {
    throw UsageError(_("the installation does not answer"), ExitStatus::failure);
  }
}

// What the run does now; closes the connection. Throws UsageError if the engine does not answer.
RunStatus statusOfRun(const AttachedEngine& attached) {
  EngineClient engine(attached.connection);
  RunStatus status(attached.run, now());
  readPast(engine, [&](const Event& event) { status.handle(event, engine.eventTime()); });
  close(attached.connection.requests);
  close(attached.connection.events);
  return status;
}

ExitStatus showStatus(bool asJson) {
  const auto attached = attachToEngine(installLockFolder());
  if (!attached) {
    const bool isRunning = installRuns();
    if (asJson) {
      std::printf("{\"running\":%s,\"reachable\":false}\n", isRunning ? "true" : "false");
    } else {
      std::puts(isRunning ? _("An installation is running, but it cannot be reached.")
                          : _("No installation is running."));
    }
    return isRunning ? ExitStatus::success : ExitStatus::failure;
  }
  RunStatus status = statusOfRun(*attached);
  std::fputs(asJson ? status.json(now()).c_str() : (status.line(now()) + "\n").c_str(), stdout);
  return status.prompt() != nullptr ? ExitStatus::warnings : ExitStatus::success;
}

ExitStatus attach(Frontend frontend, const NoticeAbilities& notices) {
  const AttachedEngine attached = attachOrThrow();
  RunDescription description;
  description.notices = notices;
  description.attached = attached.run;
  description.isUnattended = !attached.run.takesAnswers;
  const event::RunFacts& facts = attached.run.facts;
  description.introduction.productName = facts.product;
  description.introduction.pageTitle = facts.product;
  description.introduction.destination = facts.destination;
  description.introduction.barWraps = attached.run.barWraps;
  description.log = facts.log;
  return frontend == Frontend::terminal ? runTerminalFrontend(attached.connection, description)
                                        : runPlainFrontend(attached.connection, description);
}

ExitStatus stop() {
  EngineClient engine(attachOrThrow().connection);
  bool isCopying = false;
  readPast(engine, [&isCopying](const Event& event) {
    if (const auto* phase = std::get_if<event::Phase>(&event)) {
      isCopying = phase->kind == event::Phase::Kind::copying;
    }
  });
  engine.send(Command::stop);
  if (isCopying) {
    std::puts(_("The installation stops when the current file is copied."));
    std::fflush(stdout);
  }
  std::optional<event::Summary> summary;
  static_cast<void>(readEvents(engine, std::chrono::milliseconds(-1), [&](const Event& event) {
    if (const auto* last = std::get_if<event::Summary>(&event)) {
      summary = *last;
    }
    return summary.has_value();
  }));
  if (!summary) {
    throw UsageError(_("the installation ended without a summary"), ExitStatus::failure);
  }
  if (summary->status != static_cast<int>(ExitStatus::stopped)) {
    std::puts(summary->isInstalled ? _("The installation had ended before: everything is installed.")
                                   : _("The installation had ended before, but not everything is installed."));
    return ExitStatus::failure;
  }
  std::puts(stoppedText(*summary, RunDescription().afterStop).c_str());
  for (const std::string& line : remainingTexts(summary->remaining)) {
    std::printf("  %s\n", printableLine(line).c_str());
  }
  return ExitStatus::success;
}

}  // namespace

std::optional<ExitStatus> offerRunningInstall(Frontend frontend, const NoticeAbilities& notices) {
  if (!installRuns()) {
    return std::nullopt;
  }
  const auto attached = attachToEngine(installLockFolder());
  if (!attached) {
    return std::nullopt;
  }
  std::printf("%s\n%s ", statusOfRun(*attached).line(now()).c_str(),
              _("Another installation of yours is running. Show it? [Y/n]"));
  std::fflush(stdout);
  std::array<char, 16> line{};
  const bool isRead = std::fgets(line.data(), line.size(), stdin) != nullptr;
  if (!isRead || line[0] == 'n' || line[0] == 'N') {
    return std::nullopt;
  }
  return attach(frontend, notices);
}

void addAttachCommands(CommandLine& commandLine) {
  const auto asJson = std::make_shared<bool>(false);
  CLI::App* status = commandLine.program.add_subcommand("status", _("Tell what a running installation does"));
  status->add_flag("--json", *asJson, _("Print it as JSON"));
  status->callback([&commandLine, asJson] { commandLine.chosen = [asJson] { return showStatus(*asJson); }; });

  struct AttachArguments {
    std::string ui;
    bool isWithoutNotices = false;
  };
  const auto arguments = std::make_shared<AttachArguments>();
  CLI::App* attachCommand =
      commandLine.program.add_subcommand("attach", _("Show a running installation and answer its prompts"));
  attachCommand->add_option("--ui", arguments->ui, _("Frontend: plain or terminal"))
      ->check(oneOf({"plain", "terminal"}))
      ->type_name("FRONTEND");
  addNotifyOption(*attachCommand, arguments->isWithoutNotices);
  attachCommand->callback([&commandLine, arguments] {
    commandLine.chosen = [arguments] {
      return attach(frontendFor(arguments->ui), noticesFor(arguments->isWithoutNotices));
    };
  });

  CLI::App* stopCommand =
      commandLine.program.add_subcommand("stop", _("Stop a running installation after the current file"));
  stopCommand->callback([&commandLine] { commandLine.chosen = [] { return stop(); }; });
}

}  // namespace tavenhall
