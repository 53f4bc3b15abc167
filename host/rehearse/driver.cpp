#include "host/rehearse/driver.h"

#include "host/base/child_process.h"
#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/protocol/json_form.h"
#include "platform/installer_host.h"
#include "platform/installer_pane.h"

#include <array>
#include <poll.h>
#include <unistd.h>
#include <utility>
#include <variant>

namespace tavenhall {

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

}  // namespace

RehearsalDriver::RehearsalDriver(SandboxCommand command, DiscTray& tray, const EngineEnds& frontend,
                                 const StopRequest& stop)
    : command_(std::move(command)), tray_(tray), frontend_(frontend), stop_(stop) {}

EngineConnection RehearsalDriver::start() const {
  const Pipe requests = makePipe();
  const Pipe events = makePipe();
  const pid_t process = startProgram(
      command_.words, {requests.readEnd, events.writeEnd, STDERR_FILENO, command_.filter}, Guard{});
  close(requests.readEnd);
  close(events.writeEnd);
  return {.process = process, .requests = requests.writeEnd, .events = events.readEnd};
}

ExitStatus RehearsalDriver::run() {
  engine_.emplace(start());
  if (hasFrontend()) {
    frontendEvents_.emplace(frontend_.events, stop_.descriptor());
  } else {
    for (const Command command : {Command::title, Command::enter, Command::wait}) {
      engine_->send(command);
    }
  }
  LineReader requests(frontend_.requests);
  bool isStopping = false;
  while (!engine_->hasEnded()) {
    std::array<pollfd, 3> sources{{{engine_->eventsDescriptor(), POLLIN, 0},
                                   {requests.descriptor(), POLLIN, 0},
                                   {isStopping ? -1 : stop_.descriptor(), POLLIN, 0}}};
    if (poll(sources.data(), sources.size(), -1) <= 0) {
      continue;
    }
    if (sources[2].revents != 0) {
      isStopping = true;
      engine_->stop();
    }
    if (sources[0].revents != 0) {
      engine_->readEvents([this](const Event& event) { handle(event); });
    }
    if (sources[1].revents != 0) {
      requests.read([this](const std::string& line) { handleRequest(line); });
      if (!requests.isOpen()) {
        engine_->closeRequests();
      }
    }
  }
  const ExitStatus status = engine_->wait().value_or(ExitStatus::failure);
  if (frontendEvents_) {
    frontendEvents_->finish();
  }
  stop_.throwIfCome();
  record_.insertedDiscs = tray_.inserted();
  return record_.missingDisc.empty() ? status : ExitStatus::failure;
}

void RehearsalDriver::handle(const Event& event) {
  if (frontendEvents_) {
    frontendEvents_->write(event);
  }
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - startedAt_;
  record_.addEvent(passed.count(), encode(event), std::holds_alternative<event::ProgressValue>(event));
  std::visit(EventVisitor{
                 [this](const event::Alert& alert) { handleAlert(alert); },
                 [this](const event::Sheet& sheet) { record_.sheets.push_back(sheet.message); },
                 [this](const event::AuditFailure& failure) {
                   record_.auditFailures.add({failure.problem, failure.source, failure.detail});
                 },
                 [this](const event::ProgressMaximum& maximum) { record_.addBarMaximum(maximum.value); },
                 [this](const event::ProgressValue& value) { record_.addBarValue(value.value); },
                 [this](const event::NextEnabled& next) { nextIsEnabled_ = next.isEnabled; },
                 [this](const event::Exit& exit) {
                   record_.hasLeft = record_.hasLeft || (exit.direction == kDirectionForward && exit.isAllowed);
                 },
                 [this](const event::Idle& /*idle*/) {
                   if (!hasFrontend() && nextIsEnabled_) {
                     engine_->send(Command::forward);
                   }
                   if (!hasFrontend()) {
                     engine_->send(Command::quit);
                   }
                 },
                 [this](const event::Summary& summary) { record_.seconds = summary.seconds; },
                 [](const auto& /*other*/) {}},
             event);
}

void RehearsalDriver::handleAlert(const event::Alert& alert) {
  record_.addAlert(alert.message, alert.informative);
  int button = kAlertFirstButtonReturn;
  if (const auto volume = volumeAskedFor(alert.message, alert.informative)) {
    button = answerFor(*volume, !alert.informative.starts_with("Please insert "));
  }
  if (!hasFrontend()) {
    answer(Answer{button});
  }
}

// Moves the discs as the page asks. The answer is for when no frontend gives one.
int RehearsalDriver::answerFor(const std::string& volume, bool isOptional) {
  const DiscTray::Reply reply = tray_.ask(volume);
  record_.prompts.push_back({volume, replyName(reply)});
  const bool isThere = reply == DiscTray::Reply::inserted || reply == DiscTray::Reply::notYet;
  if (!isThere && !isOptional) {
    giveUpOn(volume, reply == DiscTray::Reply::notAccepted);
  }
  return isThere ? kAlertFirstButtonReturn : kAlertSecondButtonReturn;
}

// The page would ask for the disc for ever.
void RehearsalDriver::giveUpOn(const std::string& volume, bool wasIn) {
  record_.missingDisc = volume;
  record_.missingDiscWasIn = wasIn;
  showError(
      UsageError(format(wasIn ? _("the page finds no data folder on the disc {0}, so the rehearsal ends here")
                              : _("the set has no disc {0}, so the rehearsal ends here"),
                        {volume})));
  engine_->stop();
}

void RehearsalDriver::handleRequest(const std::string& line) {
  const auto request = decodeRequest(line);
  if (const auto* bad = std::get_if<BadRequest>(&request)) {
    frontendEvents_->write(event::Error{bad->message});
    return;
  }
  const auto& good = std::get<Request>(request);
  if (const auto* given = std::get_if<Answer>(&good)) {
    answer(*given);
  } else {
    engine_->send(good);
  }
}

void RehearsalDriver::answer(Answer answer) {
  record_.addAnswer(answer.button);
  engine_->send(answer);
}

}  // namespace tavenhall
