#include "host/engine/run_record.h"

#include "host/protocol/json_events.h"

#include <nlohmann/json.hpp>

namespace tavenhall {

namespace {

// To the millisecond: what is finer is noise.
double secondsBetween(std::chrono::steady_clock::time_point start, std::chrono::steady_clock::time_point end) {
  return static_cast<double>(std::chrono::round<std::chrono::milliseconds>(end - start).count()) / 1000.0;
}

}  // namespace

void RunRecord::alertShown(const Alert& alert) {
  const std::lock_guard lock(mutex_);
  alerts_.push_back(
      {alert.messageText, alert.informativeText, {alert.buttons.begin(), alert.buttons.end()}, std::nullopt});
}

void RunRecord::alertAnswered(int answer) {
  const std::lock_guard lock(mutex_);
  alerts_.back().answer = answer;
}

void RunRecord::sheetShown(const Sheet& sheet) {
  const std::lock_guard lock(mutex_);
  sheets_.push_back({sheet.defaultButton, sheet.message});
}

void RunRecord::copyStarted() {
  const std::lock_guard lock(mutex_);
  copies_.push_back({Clock::now(), std::nullopt});
}

void RunRecord::copyEnded(std::int32_t result) {
  const std::lock_guard lock(mutex_);
  copies_.back().end = Clock::now();
  aCopyFailed_ = aCopyFailed_ || result == 0;
}

bool RunRecord::isSuccess() const {
  const std::lock_guard lock(mutex_);
  return isLeft_ && !aCopyFailed_ && sheets_.empty();  // every sheet of the page tells of a failure
}

std::string RunRecord::summary(const PaneSnapshot& pane) const {
  const std::lock_guard lock(mutex_);
  const Clock::time_point now = Clock::now();
  auto copies = nlohmann::ordered_json::array();
  for (const Copy& copy : copies_) {
    copies.push_back({{"seconds", secondsBetween(copy.start, copy.end.value_or(now))}});
  }
  auto alerts = nlohmann::ordered_json::array();
  for (const ShownAlert& alert : alerts_) {
    alerts.push_back(
        {{"message", alert.message}, {"informative", alert.informative}, {"buttons", alert.buttons}});
    if (alert.answer) {
      alerts.back()["answer"] = *alert.answer;
    }
  }
  auto sheets = nlohmann::ordered_json::array();
  for (const ShownSheet& sheet : sheets_) {
    sheets.push_back({{"button", sheet.button}, {"message", sheet.message}});
  }
  return jsonLine({{"left", isLeft_},
                   {"ready", pane.readyToProceed},
                   {"mode", pane.installMode},
                   {"seconds", secondsBetween(start_, now)},
                   {"kBytesCopied", pane.kBytesCopied},
                   {"copies", copies},
                   {"alerts", alerts},
                   {"sheets", sheets}});
}

}  // namespace tavenhall
