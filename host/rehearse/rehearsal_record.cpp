#include "host/rehearse/rehearsal_record.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace tavenhall {

using nlohmann::ordered_json;

void RehearsalRecord::addEvent(double atSeconds, std::string line, bool isProgress) {
  if (!events.empty() && ((isProgress && endsInProgress_) || events.size() == kMostEvents)) {
    events.pop_back();
  }
  events.push_back({atSeconds, std::move(line)});
  endsInProgress_ = isProgress;
}

void RehearsalRecord::addAlert(const std::string& message, const std::string& informative) {
  alerts.push_back({message, informative, 0});
  if (!earlyAnswers_.empty()) {
    alerts.back().answer = earlyAnswers_.front();
    earlyAnswers_.pop_front();
  }
}

void RehearsalRecord::addAnswer(int answer) {
  for (Alert& alert : alerts) {
    if (alert.answer == 0) {
      alert.answer = answer;
      return;
    }
  }
  earlyAnswers_.push_back(answer);
}

void RehearsalRecord::addBarMaximum(double maximum) { bars.push_back({maximum, 0.0}); }

void RehearsalRecord::addBarValue(double value) {
  if (!bars.empty()) {
    bars.back().highest = std::max(bars.back().highest, value);
  }
}

std::vector<std::pair<std::string, int>> RehearsalRecord::countedSheets() const {
  std::vector<std::pair<std::string, int>> counted;
  for (const std::string& sheet : sheets) {
    const auto known = std::find_if(counted.begin(), counted.end(),
                                    [&sheet](const auto& kind) { return kind.first == sheet; });
    if (known != counted.end()) {
      ++known->second;
    } else {
      counted.emplace_back(sheet, 1);
    }
  }
  return counted;
}

ordered_json RehearsalRecord::toJson() const {
  ordered_json json = {{"left", hasLeft},
                       {"seconds", seconds},
                       {"sheets", sheets},
                       {"missingDisc", missingDisc},
                       {"missingDiscWasIn", missingDiscWasIn},
                       {"insertedDiscs", insertedDiscs},
                       {"events", ordered_json::array()},
                       {"prompts", ordered_json::array()},
                       {"alerts", ordered_json::array()},
                       {"bars", ordered_json::array()},
                       {"auditFailures", ordered_json::array()}};
  for (const TimedEvent& event : events) {
    json["events"].push_back({{"at", event.seconds}, {"line", event.line}});
  }
  for (const Prompt& prompt : prompts) {
    json["prompts"].push_back({{"volume", prompt.volume}, {"reply", prompt.reply}});
  }
  for (const Alert& alert : alerts) {
    json["alerts"].push_back(
        {{"message", alert.message}, {"informative", alert.informative}, {"answer", alert.answer}});
  }
  for (const Bar& bar : bars) {
    json["bars"].push_back({{"maximum", bar.maximum}, {"highest", bar.highest}});
  }
  for (const FailedEntry& failure : auditFailures.first) {
    json["auditFailures"].push_back(
        {{"problem", failure.problem}, {"name", failure.name}, {"detail", failure.detail}});
  }
  return json;
}

RehearsalRecord RehearsalRecord::fromJson(const ordered_json& json) {
  RehearsalRecord record;
  record.hasLeft = json.at("left");
  record.seconds = json.at("seconds");
  record.sheets = json.at("sheets").get<std::vector<std::string>>();
  record.missingDisc = json.at("missingDisc");
  record.missingDiscWasIn = json.at("missingDiscWasIn");
  record.insertedDiscs = json.at("insertedDiscs").get<std::vector<std::size_t>>();
  for (const auto& event : json.at("events")) {
    record.events.push_back({event.at("at"), event.at("line")});
  }
  for (const auto& prompt : json.at("prompts")) {
    record.prompts.push_back({prompt.at("volume"), prompt.at("reply")});
  }
  for (const auto& alert : json.at("alerts")) {
    record.alerts.push_back({alert.at("message"), alert.at("informative"), alert.at("answer")});
  }
  for (const auto& bar : json.at("bars")) {
    record.bars.push_back({bar.at("maximum"), bar.at("highest")});
  }
  for (const auto& failure : json.at("auditFailures")) {
    record.auditFailures.add({failure.at("problem"), failure.at("name"), failure.at("detail")});
  }
  return record;
}

}  // namespace tavenhall
