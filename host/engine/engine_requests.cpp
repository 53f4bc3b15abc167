#include "host/engine/engine.h"
#include "host/protocol/json_form.h"
#include "platform/installer_host.h"

#include <utility>
#include <variant>

// What frontends and other programs request, and how alerts get their answers.
namespace tavenhall {

// ---- Requests ----

void Engine::accept(std::string_view line) {
  const auto request = decodeRequest(line);
  if (const auto* bad = std::get_if<BadRequest>(&request)) {
    const Lock lock(state_);
    report(event::Error{bad->message});
    return;
  }
  const Lock lock(main_);
  const auto& good = std::get<Request>(request);
  if (const auto* answer = std::get_if<Answer>(&good)) {
    answers_.push_back(*answer);
  } else if (const Command command = std::get<Command>(good); command == Command::stop) {
    isStopRequested_ = true;
  } else if (command == Command::noAnswers) {
    hasNoAnswers_ = true;
  } else {
    commands_.push_back(command);
  }
  changed_.notifyAll();
}

void Engine::acceptFromFrontend(std::string_view line, bool takesAnswers) {
  const auto request = decodeRequest(line);
  const auto* good = std::get_if<Request>(&request);
  if (good == nullptr) {
    return;  // an event would reach the other frontends, too
  }
  const Lock lock(main_);
  if (const auto* answer = std::get_if<Answer>(good)) {
    if (takesAnswers && answer->alert != 0) {
      answers_.push_back(*answer);
    }
  } else if (const Command command = std::get<Command>(*good); command == Command::stop) {
    isStopRequested_ = true;
  } else if (takesAnswers && isHeededFromFrontend(command)) {
    commands_.push_back(command);
  }
  changed_.notifyAll();
}

bool Engine::isHeededFromFrontend(Command command) const {
  const Lock lock(state_);
  return pageThreads_ == 0 && (command == Command::forward || (command == Command::quit && summary_.hasLeft));
}

void Engine::addFrontend(bool takesAnswers) {
  const Lock lock(main_);
  answeringFrontends_ += takesAnswers ? 1 : 0;
}

void Engine::removeFrontend(bool takesAnswers) {
  const Lock lock(main_);
  answeringFrontends_ -= takesAnswers ? 1 : 0;
  leftAloneAt_ = Clock::now();
  changed_.notifyAll();
}

void Engine::waitForFrontends(std::chrono::seconds patience) {
  const Lock lock(main_);
  patience_ = patience;
}

void Engine::stopIfRequested() {
  if (isStopRequested_) {
    onEnd_(ExitStatus::stopped, "stopped on request");
  }
}

void Engine::stopWhileIdle() {
  if (!isStopRequested_) {
    return;
  }
  bool mayLeave = false;
  {
    const Lock lock(state_);
    isQuitting_ = isOnPage_ || summary_.hasLeft;
    mayLeave = isOnPage_ && isNextEnabled_;
  }
  if (!isQuitting_) {
    stopIfRequested();
  }
  if (mayLeave) {
    leave(kDirectionForward);
  }
}

// ---- Answers ----

void Engine::answerUnattended(const UnattendedAnswers& answers) {
  const Lock lock(main_);
  unattended_ = answers;
}

std::optional<int> Engine::takeAnswer(std::int64_t alert) {
  while (!answers_.empty()) {
    const Answer answer = answers_.front();
    answers_.pop_front();
    if (answer.alert == 0 || answer.alert == alert) {
      return answer.button;
    }
  }
  return std::nullopt;
}

bool Engine::canBeAnswered() const {
  return answeringFrontends_ > 0 || (!isInputClosed_ && !hasNoAnswers_) ||
         (!hasNoAnswers_ && Clock::now() < leftAloneAt_ + patience_);
}

int Engine::unattendedAnswer(std::size_t buttons, const std::string& disc) {
  if (disc.empty()) {
    return kAlertFirstButtonReturn;
  }
  if (buttons > 1 && unattended_->skipsOptionalDiscs) {
    return kAlertSecondButtonReturn;
  }
  const auto now = Clock::now();
  if (missingDisc_ != disc) {
    missingDisc_ = disc;
    missingSince_ = now;
  }
  if (now - missingSince_ >= unattended_->discTimeout) {
    onEnd_(ExitStatus::discMissing, "disc " + disc + " was not found");
  }
  return kAlertFirstButtonReturn;  // the page waits, and looks again
}

int Engine::runModal(const Alert& alert) noexcept {
  main_.assertHeld();
  event::Alert shown{
      alert.messageText, alert.informativeText, {alert.buttons.begin(), alert.buttons.end()}, alert.style};
  std::string disc;
  {
    const Lock lock(state_);
    report(phases_.beginWaiting(Clock::now()));
    shown.number = static_cast<std::int64_t>(summary_.alerts.size()) + 1;
    report(shown);
    summary_.alerts.push_back({shown, 0});
    disc = phases_.disc();
  }
  std::optional<int> answer;
  if (unattended_) {
    answer = unattendedAnswer(shown.buttons.size(), disc);
  }
  isAlertUp_ = true;
  while (!answer && !(answer = takeAnswer(shown.number))) {
    stopIfRequested();
    if (!canBeAnswered()) {
      onEnd_(ExitStatus::noAnswer, "a prompt needed an answer: " + shown.informative);
    }
    if (isInputClosed_ && answeringFrontends_ == 0) {
      changed_.waitUntil(main_, leftAloneAt_ + patience_);
    } else {
      changed_.wait(main_);
    }
  }
  isAlertUp_ = false;
  changed_.notifyAll();
  const Lock lock(state_);
  phases_.end(Clock::now());
  summary_.alerts.back().answer = *answer;
  report(event::Answered{shown.number, *answer});
  return *answer;
}

}  // namespace tavenhall
