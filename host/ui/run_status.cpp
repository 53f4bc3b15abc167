#include "host/ui/run_status.h"

#include "host/base/text.h"
#include "host/protocol/json_form.h"

#include <nlohmann/json.hpp>
#include <utility>
#include <variant>

namespace tavenhall {

RunStatus::RunStatus(event::Attached run, Time now) : run_(std::move(run)), meter_(run_.barWraps) {
  if (run_.seconds) {
    meter_.start(now - std::chrono::duration_cast<ProgressMeter::Clock::duration>(
                           ProgressMeter::Seconds(*run_.seconds)));
  }
}

void RunStatus::handle(const Event& event, Time now) {
  std::visit(EventVisitor{[this](const event::ProgressMinimum& minimum) { meter_.setMinimum(minimum.value); },
                          [this](const event::ProgressMaximum& maximum) { meter_.setMaximum(maximum.value); },
                          [this, now](const event::ProgressValue& progress) {
                            copy_ = progress.copy;
                            meter_.setValue(progress.value);
                            meter_.setBytes(progress.copy.bytesWritten, now);
                          },
                          [this, now](const event::Phase& phase) {
                            latestPhase_ = phase;
                            phase_.set(phase, now);
                            meter_.setCopying(phase.kind == event::Phase::Kind::copying, now);
                          },
                          [this](const event::Alert& alert) { alert_ = alert; },
                          [this](const event::Answered& /*answered*/) { alert_.reset(); },
                          [this](const event::Sheet& /*sheet*/) { ++failures_; },
                          [this](const event::AuditFailure& failure) {
                            failures_ += failure.problem == "refused" ? 0 : 1;  // its sheet has counted
                          },
                          [this, now](const event::Idle& /*idle*/) {
                            isIdle_ = true;
                            meter_.finish(now);
                          },
                          [](const auto& /*other*/) {}},
             event);
}

std::string RunStatus::line(Time now) {
  std::string text = run_.facts.product.empty() ? run_.facts.package : run_.facts.product;
  text = printableLine(text) + ": ";
  if (isIdle_) {
    text += _("the installation has ended; its page is still open");
  } else if (!run_.seconds) {
    text += run_.takesAnswers ? _("waiting for Continue on the first page") : _("not begun");
  } else if (alert_) {
    text += format(_("waiting for an answer: {0}"), {printableLine(alert_->informative)});
  } else if (const auto phases = phase_.texts(now); !phases.empty()) {
    text += phases.front();
  } else {
    text += _("running");
  }
  if (const std::string amount = amountText(meter_); !amount.empty()) {
    text += ", " + amount;
  }
  if (const auto percent = meter_.percent(); percent && meter_.isStarted()) {
    text += " (" + std::to_string(*percent) + " %)";
  }
  if (const auto minutes = meter_.minutesLeft(now)) {
    text += ", " + timeLeftText(*minutes);
  }
  if (failures_ > 0) {
    text += ", " + plural("{0} failure", "{0} failures", failures_);
  }
  return text;
}

std::string RunStatus::json(Time now) {
  nlohmann::ordered_json object = {{"running", true},
                                   {"reachable", true},
                                   {"product", run_.facts.product},
                                   {"package", run_.facts.package},
                                   {"started", run_.facts.started},
                                   {"seconds", run_.seconds.value_or(0.0)},
                                   {"entered", run_.seconds.has_value()},
                                   {"idle", isIdle_},
                                   {"phase", nullptr},
                                   {"disc", nullptr},
                                   {"volume", nullptr},
                                   {"volumes", nullptr},
                                   {"bytes", copy_.bytesWritten},
                                   {"totalBytes", nullptr},
                                   {"files", copy_.filesDone},
                                   {"file", copy_.file},
                                   {"percent", nullptr},
                                   {"minutesLeft", nullptr},
                                   {"failures", failures_},
                                   {"takesAnswers", run_.takesAnswers},
                                   {"prompt", nullptr}};
  if (latestPhase_ && !isIdle_) {
    object["phase"] = phaseName(latestPhase_->kind);
    object["disc"] = latestPhase_->disc;
    object["volume"] = latestPhase_->volume;
    object["volumes"] = latestPhase_->volumeCount;
  }
  if (const auto total = meter_.total()) {
    object["totalBytes"] = static_cast<std::int64_t>(*total);
  }
  if (const auto percent = meter_.percent(); percent && meter_.isStarted()) {
    object["percent"] = *percent;
  }
  if (const auto minutes = meter_.minutesLeft(now)) {
    object["minutesLeft"] = *minutes;
  }
  if (alert_) {
    object["prompt"] = {
        {"message", alert_->message}, {"informative", alert_->informative}, {"buttons", alert_->buttons}};
  }
  return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace tavenhall
