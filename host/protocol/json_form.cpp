#include "host/protocol/json_form.h"

#include "host/base/files.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

namespace tavenhall {

using nlohmann::ordered_json;

namespace {

std::string jsonText(const ordered_json& value) {
  return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

// ---- Written by hand for speed: these two are emitted for each file ----

void appendString(std::string& line, std::string_view text) {
  const bool isPlain = std::all_of(text.begin(), text.end(),
                                   [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
  if (isPlain) {
    line.append(1, '"').append(text).append(1, '"');
  } else {
    line += jsonText(ordered_json(text));
  }
}

void appendInteger(std::string& line, std::int64_t value) {
  std::array<char, 24> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  line.append(digits.data(), end);
}

void appendNumber(std::string& line, double value) {
  constexpr double kWholeAndShort = 1e15;
  if (value >= 0.0 && value < kWholeAndShort && value == std::floor(value)) {
    appendInteger(line, static_cast<std::int64_t>(value));
    line += ".0";
  } else {
    line += jsonText(value);
  }
}

std::string line(const event::ProgressValue& progress) {
  std::string text = R"({"event":"progress.value","value":)";
  appendNumber(text, progress.value);
  text += R"(,"volume":)";
  appendInteger(text, progress.copy.volume);
  text += R"(,"volumes":)";
  appendInteger(text, progress.copy.volumeCount);
  text += R"(,"bytes":)";
  appendInteger(text, progress.copy.bytesWritten);
  text += R"(,"files":)";
  appendInteger(text, progress.copy.filesDone);
  text += R"(,"file":)";
  appendString(text, progress.copy.file);
  return text + "}\n";
}

std::string line(const event::Status& status) {
  std::string text = R"({"event":"status","text":)";
  appendString(text, status.text);
  return text + "}\n";
}

// ---- All others ----

std::string line(const ordered_json& object) { return jsonText(object) + "\n"; }

ordered_json namedObject(const char* name) { return {{"event", name}}; }

ordered_json textObject(const char* name, const std::string& text) { return {{"event", name}, {"text", text}}; }

std::string line(const event::Title& title) { return line(textObject("title", title.text)); }
std::string line(const event::Instructions& text) { return line(textObject("instructions", text.text)); }
std::string line(const event::Entered& /*entered*/) { return line(namedObject("entered")); }
std::string line(const event::Idle& /*idle*/) { return line(namedObject("idle")); }

std::string line(const event::Exit& exit) {
  return line(ordered_json{{"event", "exit"}, {"direction", exit.direction}, {"allowed", exit.isAllowed}});
}

std::string line(const event::PreviousEnabled& button) {
  return line(ordered_json{{"event", "previous"}, {"enabled", button.isEnabled}});
}

std::string line(const event::NextEnabled& button) {
  return line(ordered_json{{"event", "next"}, {"enabled", button.isEnabled}});
}

std::string line(const event::ProgressMinimum& minimum) {
  return line(ordered_json{{"event", "progress.min"}, {"value", minimum.value}});
}

std::string line(const event::ProgressMaximum& maximum) {
  return line(ordered_json{{"event", "progress.max"}, {"value", maximum.value}});
}

std::string line(const event::CopyBegin& copy) {
  return line(ordered_json{{"event", "copy.begin"},
                           {"source", copy.source},
                           {"destination", copy.destination},
                           {"volume", copy.volume},
                           {"volumes", copy.volumeCount}});
}

std::string line(const event::CopyEnd& copy) {
  return line(ordered_json{{"event", "copy.end"},
                           {"source", copy.source},
                           {"destination", copy.destination},
                           {"copied", copy.isCopied},
                           {"bytes", copy.bytesWritten},
                           {"files", copy.filesDone}});
}

ordered_json auditFields(const event::Audit& audit) {
  return {{"files", audit.files},
          {"folders", audit.folders},
          {"bytes", audit.bytes},
          {"skipped", audit.skipped},
          {"failures", audit.failures}};
}

std::string line(const event::Audit& audit) {
  ordered_json object = {{"event", "audit"},
                         {"source", audit.source},
                         {"destination", audit.destination},
                         {"volume", audit.volume}};
  object.update(auditFields(audit));
  return line(object);
}

ordered_json failureFields(const event::AuditFailure& failure) {
  return {{"problem", failure.problem},
          {"source", failure.source},
          {"destination", failure.destination},
          {"volume", failure.volume},
          {"detail", failure.detail}};
}

std::string line(const event::AuditFailure& failure) {
  ordered_json object = {{"event", "audit.failure"}};
  object.update(failureFields(failure));
  return line(object);
}

std::string line(const event::Phase& phase) {
  return line(ordered_json{{"event", "phase"},
                           {"phase", phaseName(phase.kind)},
                           {"volume", phase.volume},
                           {"volumes", phase.volumeCount},
                           {"disc", phase.disc},
                           {"seconds", phase.seconds}});
}

std::string line(const event::Alert& alert) {
  return line(ordered_json{{"event", "alert"},
                           {"message", alert.message},
                           {"informative", alert.informative},
                           {"buttons", alert.buttons},
                           {"style", alert.style},
                           {"number", alert.number}});
}

std::string line(const event::Answered& answered) {
  return line(ordered_json{{"event", "answered"}, {"number", answered.number}, {"button", answered.button}});
}

std::string line(const event::Sheet& sheet) {
  return line(ordered_json{
      {"event", "sheet"}, {"button", sheet.button}, {"message", sheet.message}, {"file", sheet.file}});
}

std::string line(const event::Assertion& assertion) {
  return line(ordered_json{
      {"event", "assertion"}, {"type", assertion.type}, {"level", assertion.level}, {"name", assertion.name}});
}

std::string line(const event::AssertionRelease& assertion) {
  return line(ordered_json{{"event", "assertion.release"}, {"type", assertion.type}});
}

std::string line(const event::Warning& warning) {
  return line(ordered_json{{"event", "warning"}, {"message", warning.message}});
}

std::string line(const event::Error& error) {
  return line(ordered_json{{"event", "error"}, {"message", error.message}});
}

// To the millisecond: what is finer is noise.
double rounded(double seconds) { return std::round(seconds * 1000.0) / 1000.0; }

ordered_json factFields(const event::RunFacts& facts) {
  return {{"package", facts.package},         {"product", facts.product}, {"edition", facts.edition},
          {"destination", facts.destination}, {"volumes", facts.volumes}, {"log", facts.log},
          {"started", facts.started},         {"version", facts.version}};
}

std::string line(const event::Attached& attached) {
  ordered_json object = {
      {"event", "attached"}, {"answers", attached.takesAnswers}, {"barWraps", attached.barWraps}};
  if (attached.seconds) {
    object["seconds"] = rounded(*attached.seconds);
  }
  object.update(factFields(attached.facts));
  return line(object);
}

std::string line(const event::Past& past) {
  return line(ordered_json{{"event", "past"}, {"seconds", rounded(past.seconds)}});
}

std::string line(const event::Present& /*present*/) { return line(namedObject("present")); }

ordered_json summaryFields(const event::Summary& summary) {
  ordered_json copies = ordered_json::array();
  for (const double seconds : summary.copySeconds) {
    copies.push_back({{"seconds", rounded(seconds)}});
  }
  ordered_json alerts = ordered_json::array();
  for (const event::Summary::ShownAlert& shown : summary.alerts) {
    alerts.push_back({{"message", shown.alert.message},
                      {"informative", shown.alert.informative},
                      {"buttons", shown.alert.buttons}});
    if (shown.answer != 0) {
      alerts.back()["answer"] = shown.answer;
    }
  }
  ordered_json sheets = ordered_json::array();
  for (const event::Sheet& sheet : summary.sheets) {
    sheets.push_back({{"button", sheet.button}, {"message", sheet.message}, {"file", sheet.file}});
  }
  ordered_json failedFiles = ordered_json::array();
  for (const event::AuditFailure& failure : summary.failedFiles) {
    failedFiles.push_back(failureFields(failure));
  }
  ordered_json fields = {{"left", summary.hasLeft},
                         {"ready", summary.ready},
                         {"mode", summary.mode},
                         {"seconds", rounded(summary.seconds)},
                         {"kBytesCopied", summary.kBytesCopied},
                         {"copies", copies},
                         {"alerts", alerts},
                         {"sheets", sheets},
                         {"bytes", summary.bytesWritten},
                         {"files", summary.filesDone},
                         {"installed", summary.isInstalled},
                         {"audit", auditFields(summary.audit)},
                         {"copyingSeconds", rounded(summary.copyingSeconds)},
                         {"waitingSeconds", rounded(summary.waitingSeconds)},
                         {"checkingSeconds", rounded(summary.checkingSeconds)},
                         {"status", summary.status},
                         {"reason", summary.reason},
                         {"failedFiles", failedFiles}};
  fields.update(factFields(summary.facts));
  ordered_json remaining = ordered_json::array();
  for (const event::Remaining& copy : summary.remaining) {
    remaining.push_back({{"source", copy.source}, {"volume", copy.volume}});
  }
  fields["remaining"] = remaining;
  return fields;
}

std::string line(const event::Summary& summary) {
  ordered_json object = {{"event", "summary"}};
  object.update(summaryFields(summary));
  return line(object);
}

// ---- Requests ----

std::string_view nameOf(Command command) {
  const auto* row = std::find_if(kCommandNames.begin(), kCommandNames.end(),
                                 [command](const auto& known) { return known.second == command; });
  return row->first;
}

}  // namespace

std::string_view phaseName(event::Phase::Kind kind) {
  const auto* row = std::find_if(kPhaseNames.begin(), kPhaseNames.end(),
                                 [kind](const auto& known) { return known.second == kind; });
  return row->first;
}

std::string encode(const Event& event) {
  return std::visit([](const auto& kind) { return line(kind); }, event);
}

std::string encode(const Request& request) {
  if (const auto* command = std::get_if<Command>(&request)) {
    return line(ordered_json{{"do", nameOf(*command)}});
  }
  const auto& answer = std::get<Answer>(request);
  ordered_json object = {{"answer", answer.button}};
  if (answer.alert != 0) {
    object["alert"] = answer.alert;
  }
  return line(object);
}

std::string encodeSummaryFile(const event::Summary& summary) { return line(summaryFields(summary)); }

}  // namespace tavenhall
