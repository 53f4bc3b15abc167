#include "host/rehearse/driver.h"

#include "host/base/child_process.h"
#include "host/base/errors.h"
#include "host/base/line_reader.h"
#include "host/base/text.h"
#include "host/protocol/json_events.h"
#include "platform/installer_host.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tavenhall {

using nlohmann::ordered_json;

namespace {

const char* replyName(DiscTray::Reply reply) {
  switch (reply) {
    case DiscTray::Reply::inserted: return N_("inserted");
    case DiscTray::Reply::notYet: return N_("late");
    case DiscTray::Reply::notAccepted: return N_("not accepted");
    case DiscTray::Reply::noSuchDisc: break;
  }
  return N_("no such disc");
}

std::string command(const char* name) { return jsonLine({{"do", name}}); }

}  // namespace

Conductor::Conductor(std::vector<std::string> command, std::filesystem::path summaryFile, DiscTray& tray,
                     const EngineLines& face, const StopRequest& stop)
    : command_(std::move(command)),
      summaryFile_(std::move(summaryFile)),
      tray_(tray),
      face_(face),
      stop_(stop) {}

void Conductor::start() {
  const Pipe commands = makePipe();
  const Pipe events = makePipe();
  engine_.pid = startProgram(command_, {commands.readEnd, events.writeEnd, STDERR_FILENO});
  close(commands.readEnd);
  close(events.writeEnd);
  engine_.lines = {commands.writeEnd, events.readEnd, -1};
}

ExitStatus Conductor::run() {
  std::signal(SIGPIPE, SIG_IGN);
  start();
  if (face_.commands < 0) {
    for (const char* name : {"title", "enter", "wait"}) {
      tellEngine(command(name));
    }
  }
  LineReader engineLines(engine_.lines.events);
  LineReader faceLines(face_.commands);
  bool isStopping = false;
  while (engineLines.isOpen()) {
    std::array<pollfd, 3> sources{{{engineLines.descriptor(), POLLIN, 0},
                                   {faceLines.descriptor(), POLLIN, 0},
                                   {isStopping ? -1 : stop_.descriptor(), POLLIN, 0}}};
    if (poll(sources.data(), sources.size(), -1) <= 0) {
      continue;
    }
    if (sources[2].revents != 0) {
      isStopping = true;
      kill(engine_.pid, SIGTERM);
    }
    if (sources[0].revents != 0) {
      engineLines.read([this](const std::string& line) { hearEngine(line); });
    }
    if (sources[1].revents != 0) {
      faceLines.read([this](const std::string& line) { hearFace(line); });
      if (!faceLines.isOpen()) {
        closeCommands();
      }
    }
  }
  const ExitStatus status = waitForEngineProcess(engine_);
  stop_.throwIfCome();
  record_.insertedDiscs = tray_.inserted();
  takeSummary();
  return record_.missingDisc.empty() ? status : ExitStatus::failure;
}

void Conductor::hearEngine(const std::string& line) {
  const ordered_json event = ordered_json::parse(line, nullptr, false);
  const std::string name = event.is_object() ? event.value("event", std::string()) : std::string();
  if (name == "alert") {
    takeAlert(event.value("message", std::string()), event.value("informative", std::string()));
  } else if (name == "sheet") {
    record_.sheets.push_back(event.value("message", std::string()));
  } else if (name == "progress.max") {
    record_.addBarMaximum(event.value("value", 0.0));
  } else if (name == "progress.value") {
    record_.addBarValue(event.value("value", 0.0));
  } else if (name == "next") {
    nextIsEnabled_ = event.value("enabled", false);
  } else if (name == "exit") {
    record_.hasLeft = record_.hasLeft || (event.value("direction", 1) == 0 && event.value("allowed", false));
  } else if (name == "idle" && face_.commands < 0) {
    if (nextIsEnabled_) {
      tellEngine(command("forward"));
    }
    tellEngine(command("quit"));
  }
  if (face_.events >= 0) {
    writeAll(face_.events, line + "\n");
  }
}

void Conductor::takeAlert(const std::string& message, const std::string& informative) {
  record_.addAlert(message, informative);
  int answer = kAlertFirstButtonReturn;
  if (const auto volume = volumeAskedFor(message, informative)) {
    answer = answerFor(*volume, !informative.starts_with("Please insert "));
  }
  if (face_.commands < 0) {
    hearFace(jsonLine({{"answer", answer}}));
  }
}

// Moves the discs as the page asks; the answer is for where nobody else gives one.
int Conductor::answerFor(const std::string& volume, bool isOptional) {
  const DiscTray::Reply reply = tray_.ask(volume);
  record_.prompts.push_back({volume, replyName(reply)});
  const bool isThere = reply == DiscTray::Reply::inserted || reply == DiscTray::Reply::notYet;
  if (!isThere && !isOptional) {
    giveUpOn(volume, reply == DiscTray::Reply::notAccepted);
  }
  return isThere ? kAlertFirstButtonReturn : kAlertSecondButtonReturn;
}

// The page asks without end, so somebody must say that no disc will come.
void Conductor::giveUpOn(const std::string& volume, bool wasIn) {
  record_.missingDisc = volume;
  record_.missingDiscWasIn = wasIn;
  showError(
      UsageError(format(wasIn ? _("the page finds no data folder on the disc {0}, so the rehearsal ends here")
                              : _("the set has no disc {0}, so the rehearsal ends here"),
                        {volume})));
  kill(engine_.pid, SIGTERM);
}

void Conductor::hearFace(const std::string& line) {
  const ordered_json said = ordered_json::parse(line, nullptr, false);
  if (said.is_object() && said.contains("answer") && said["answer"].is_number_integer()) {
    record_.addAnswer(said["answer"]);
  }
  tellEngine(line.ends_with('\n') ? line : line + "\n");
}

void Conductor::tellEngine(const std::string& line) {
  if (engine_.lines.commands >= 0) {
    writeAll(engine_.lines.commands, line);
  }
}

void Conductor::closeCommands() {
  if (engine_.lines.commands >= 0) {
    close(engine_.lines.commands);
    engine_.lines.commands = -1;
  }
}

void Conductor::takeSummary() {
  std::ifstream file(summaryFile_);
  const ordered_json summary = ordered_json::parse(file, nullptr, false);
  if (!summary.is_object()) {
    return;
  }
  record_.seconds = summary.value("seconds", 0.0);
  record_.kBytesCopied = summary.value("kBytesCopied", std::int64_t{0});
  if (face_.summary >= 0) {
    writeAll(face_.summary, jsonLine(summary));
  }
}

}  // namespace tavenhall
