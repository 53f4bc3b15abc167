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

std::string line(const event::Alert& alert) {
  return line(ordered_json{{"event", "alert"},
                           {"message", alert.message},
                           {"informative", alert.informative},
                           {"buttons", alert.buttons},
                           {"style", alert.style}});
}

std::string line(const event::Sheet& sheet) {
  return line(ordered_json{{"event", "sheet"}, {"button", sheet.button}, {"message", sheet.message}});
}

std::string line(const event::Assertion& assertion) {
  return line(ordered_json{
      {"event", "assertion"}, {"type", assertion.type}, {"level", assertion.level}, {"name", assertion.name}});
}

std::string line(const event::AssertionRelease& assertion) {
  return line(ordered_json{{"event", "assertion.release"}, {"type", assertion.type}});
}

std::string line(const event::Error& error) {
  return line(ordered_json{{"event", "error"}, {"message", error.message}});
}

// To the millisecond: what is finer is noise.
double rounded(double seconds) { return std::round(seconds * 1000.0) / 1000.0; }

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
    sheets.push_back({{"button", sheet.button}, {"message", sheet.message}});
  }
  return {{"left", summary.hasLeft},
          {"ready", summary.ready},
          {"mode", summary.mode},
          {"seconds", rounded(summary.seconds)},
          {"kBytesCopied", summary.kBytesCopied},
          {"copies", copies},
          {"alerts", alerts},
          {"sheets", sheets},
          {"bytes", summary.bytesWritten},
          {"files", summary.filesDone}};
}

std::string line(const event::Summary& summary) {
  ordered_json object = {{"event", "summary"}};
  object.update(summaryFields(summary));
  return line(object);
}

// ---- Reading ----

// A field's value; the default where the field is missing or of another type.
std::string textIn(const ordered_json& object, const char* key) {
  const auto field = object.find(key);
  return field != object.end() && field->is_string() ? field->get<std::string>() : std::string();
}

bool flagIn(const ordered_json& object, const char* key) {
  const auto field = object.find(key);
  return field != object.end() && field->is_boolean() && field->get<bool>();
}

template <typename Number>
Number numberIn(const ordered_json& object, const char* key) {
  const auto field = object.find(key);
  return field != object.end() && field->is_number() ? field->get<Number>() : Number{};
}

// Empty where there is no such list.
const ordered_json& listIn(const ordered_json& object, const char* key) {
  static const ordered_json kNone = ordered_json::array();
  const auto field = object.find(key);
  return field != object.end() && field->is_array() ? *field : kNone;
}

std::vector<std::string> textsIn(const ordered_json& object, const char* key) {
  std::vector<std::string> texts;
  for (const ordered_json& item : listIn(object, key)) {
    texts.push_back(item.is_string() ? item.get<std::string>() : std::string());
  }
  return texts;
}

event::CopyState copyStateIn(const ordered_json& object) {
  return {numberIn<std::int32_t>(object, "volume"), numberIn<std::int32_t>(object, "volumes"),
          numberIn<std::int64_t>(object, "bytes"), numberIn<std::int64_t>(object, "files"),
          textIn(object, "file")};
}

event::Alert alertIn(const ordered_json& object) {
  return {textIn(object, "message"), textIn(object, "informative"), textsIn(object, "buttons"),
          numberIn<int>(object, "style")};
}

event::Sheet sheetIn(const ordered_json& object) {
  return {textIn(object, "button"), textIn(object, "message")};
}

event::Summary summaryIn(const ordered_json& object) {
  event::Summary summary;
  summary.hasLeft = flagIn(object, "left");
  summary.ready = numberIn<std::int32_t>(object, "ready");
  summary.mode = numberIn<std::int32_t>(object, "mode");
  summary.seconds = numberIn<double>(object, "seconds");
  summary.kBytesCopied = numberIn<std::int64_t>(object, "kBytesCopied");
  summary.bytesWritten = numberIn<std::int64_t>(object, "bytes");
  summary.filesDone = numberIn<std::int64_t>(object, "files");
  for (const ordered_json& copy : listIn(object, "copies")) {
    summary.copySeconds.push_back(numberIn<double>(copy, "seconds"));
  }
  for (const ordered_json& alert : listIn(object, "alerts")) {
    summary.alerts.push_back({alertIn(alert), numberIn<int>(alert, "answer")});
  }
  for (const ordered_json& sheet : listIn(object, "sheets")) {
    summary.sheets.push_back(sheetIn(sheet));
  }
  return summary;
}

using Decode = Event (*)(const ordered_json& object);

constexpr std::array<std::pair<std::string_view, Decode>, 19> kDecoders{{
    {"progress.value",
     [](const ordered_json& o) -> Event {
       return event::ProgressValue{numberIn<double>(o, "value"), copyStateIn(o)};
     }},
    {"status", [](const ordered_json& o) -> Event { return event::Status{textIn(o, "text")}; }},
    {"title", [](const ordered_json& o) -> Event { return event::Title{textIn(o, "text")}; }},
    {"entered", [](const ordered_json& /*o*/) -> Event { return event::Entered{}; }},
    {"idle", [](const ordered_json& /*o*/) -> Event { return event::Idle{}; }},
    {"exit",
     [](const ordered_json& o) -> Event {
       return event::Exit{numberIn<std::int64_t>(o, "direction"), flagIn(o, "allowed")};
     }},
    {"previous", [](const ordered_json& o) -> Event { return event::PreviousEnabled{flagIn(o, "enabled")}; }},
    {"next", [](const ordered_json& o) -> Event { return event::NextEnabled{flagIn(o, "enabled")}; }},
    {"instructions", [](const ordered_json& o) -> Event { return event::Instructions{textIn(o, "text")}; }},
    {"progress.min",
     [](const ordered_json& o) -> Event { return event::ProgressMinimum{numberIn<double>(o, "value")}; }},
    {"progress.max",
     [](const ordered_json& o) -> Event { return event::ProgressMaximum{numberIn<double>(o, "value")}; }},
    {"copy.begin",
     [](const ordered_json& o) -> Event {
       return event::CopyBegin{textIn(o, "source"), textIn(o, "destination"),
                               numberIn<std::int32_t>(o, "volume"), numberIn<std::int32_t>(o, "volumes")};
     }},
    {"copy.end",
     [](const ordered_json& o) -> Event {
       return event::CopyEnd{textIn(o, "source"), textIn(o, "destination"), flagIn(o, "copied"),
                             numberIn<std::int64_t>(o, "bytes"), numberIn<std::int64_t>(o, "files")};
     }},
    {"alert", [](const ordered_json& o) -> Event { return alertIn(o); }},
    {"sheet", [](const ordered_json& o) -> Event { return sheetIn(o); }},
    {"assertion",
     [](const ordered_json& o) -> Event {
       return event::Assertion{textIn(o, "type"), numberIn<std::uint32_t>(o, "level"), textIn(o, "name")};
     }},
    {"assertion.release",
     [](const ordered_json& o) -> Event { return event::AssertionRelease{textIn(o, "type")}; }},
    {"error", [](const ordered_json& o) -> Event { return event::Error{textIn(o, "message")}; }},
    {"summary", [](const ordered_json& o) -> Event { return summaryIn(o); }},
}};

// ---- Requests ----

constexpr std::array<std::pair<std::string_view, Command>, 6> kCommands{{
    {"title", Command::title},
    {"enter", Command::enter},
    {"forward", Command::forward},
    {"back", Command::back},
    {"quit", Command::quit},
    {"wait", Command::wait},
}};

constexpr const char* kForms =
    R"(a line is {"do":"title"}, {"do":"enter"}, {"do":"forward"}, {"do":"back"}, {"do":"quit"}, {"do":"wait"} or {"answer":1000})";

std::string_view nameOf(Command command) {
  const auto row = std::find_if(kCommands.begin(), kCommands.end(),
                                [command](const auto& known) { return known.second == command; });
  return row->first;
}

}  // namespace

std::string encode(const Event& event) {
  return std::visit([](const auto& kind) { return line(kind); }, event);
}

std::string encode(const Request& request) {
  if (const auto* command = std::get_if<Command>(&request)) {
    return line(ordered_json{{"do", nameOf(*command)}});
  }
  return line(ordered_json{{"answer", std::get<Answer>(request).button}});
}

std::string encodeSummaryFile(const event::Summary& summary) { return line(summaryFields(summary)); }

std::optional<Event> decodeEvent(std::string_view line) {
  const ordered_json object = ordered_json::parse(line, nullptr, false);
  if (!object.is_object()) {
    return std::nullopt;
  }
  const std::string name = textIn(object, "event");
  const auto decoder =
      std::find_if(kDecoders.begin(), kDecoders.end(), [&name](const auto& row) { return row.first == name; });
  return decoder != kDecoders.end() ? std::optional(decoder->second(object)) : std::nullopt;
}

std::variant<Request, BadRequest> decodeRequest(std::string_view line) {
  if (line.size() > LineReader::kLongestLine) {
    return BadRequest{"the line is too long"};
  }
  const ordered_json object = ordered_json::parse(line, nullptr, false);
  if (object.is_discarded()) {
    return BadRequest{"not a JSON object: " + std::string(kForms)};
  }
  if (object.is_object() && object.size() == 1) {
    const auto field = object.begin();
    if (field.key() == "do" && field->is_string()) {
      for (const auto& [name, command] : kCommands) {
        if (field->get_ref<const std::string&>() == name) {
          return Request(command);
        }
      }
    }
    if (field.key() == "answer" && field->is_number_integer()) {
      const auto button = field->get<double>();  // holds every answer exactly, and no number wraps in it
      if (button >= std::numeric_limits<int>::min() && button <= std::numeric_limits<int>::max()) {
        return Request(Answer{static_cast<int>(button)});
      }
    }
  }
  return BadRequest{"not understood: " + std::string(kForms)};
}

}  // namespace tavenhall
