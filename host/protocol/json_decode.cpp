#include "host/protocol/json_form.h"

#include "host/base/files.h"

#include <algorithm>
#include <array>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

namespace tavenhall {

using nlohmann::ordered_json;

namespace {

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
          numberIn<int>(object, "style"), numberIn<std::int64_t>(object, "number")};
}

event::AuditFailure failureIn(const ordered_json& object) {
  return {textIn(object, "problem"), textIn(object, "source"), textIn(object, "destination"),
          numberIn<std::int32_t>(object, "volume"), textIn(object, "detail")};
}

event::Sheet sheetIn(const ordered_json& object) {
  return {textIn(object, "button"), textIn(object, "message"), textIn(object, "file")};
}

// The counts alone.
event::Audit auditIn(const ordered_json& object) {
  event::Audit audit;
  audit.files = numberIn<std::int64_t>(object, "files");
  audit.folders = numberIn<std::int64_t>(object, "folders");
  audit.bytes = numberIn<std::int64_t>(object, "bytes");
  audit.skipped = numberIn<std::int64_t>(object, "skipped");
  audit.failures = numberIn<std::int64_t>(object, "failures");
  return audit;
}

event::RunFacts factsIn(const ordered_json& object) {
  return {textIn(object, "package"),
          textIn(object, "product"),
          textIn(object, "edition"),
          textIn(object, "destination"),
          numberIn<std::int32_t>(object, "volumes"),
          textIn(object, "log"),
          textIn(object, "started"),
          textIn(object, "version")};
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
  summary.isInstalled = flagIn(object, "installed");
  if (const auto audit = object.find("audit"); audit != object.end() && audit->is_object()) {
    summary.audit = auditIn(*audit);
  }
  summary.copyingSeconds = numberIn<double>(object, "copyingSeconds");
  summary.waitingSeconds = numberIn<double>(object, "waitingSeconds");
  summary.checkingSeconds = numberIn<double>(object, "checkingSeconds");
  summary.status = numberIn<int>(object, "status");
  summary.reason = textIn(object, "reason");
  for (const ordered_json& failure : listIn(object, "failedFiles")) {
    summary.failedFiles.push_back(failureIn(failure));
  }
  summary.facts = factsIn(object);
  for (const ordered_json& copy : listIn(object, "remaining")) {
    summary.remaining.push_back({textIn(copy, "source"), numberIn<std::int32_t>(copy, "volume")});
  }
  return summary;
}

event::Attached attachedIn(const ordered_json& object) {
  event::Attached attached;
  attached.facts = factsIn(object);
  attached.barWraps = flagIn(object, "barWraps");
  attached.takesAnswers = flagIn(object, "answers");
  if (object.contains("seconds")) {
    attached.seconds = numberIn<double>(object, "seconds");
  }
  return attached;
}

using Decode = Event (*)(const ordered_json& object);

constexpr std::array<std::pair<std::string_view, Decode>, 27> kDecoders{{
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
    {"audit",
     [](const ordered_json& o) -> Event {
       event::Audit audit = auditIn(o);
       audit.source = textIn(o, "source");
       audit.destination = textIn(o, "destination");
       audit.volume = numberIn<std::int32_t>(o, "volume");
       return audit;
     }},
    {"audit.failure", [](const ordered_json& o) -> Event { return failureIn(o); }},
    {"phase",
     [](const ordered_json& o) -> Event {
       const std::string name = textIn(o, "phase");
       const auto* kind = std::find_if(kPhaseNames.begin(), kPhaseNames.end(),
                                       [&name](const auto& row) { return row.first == name; });
       return event::Phase{kind != kPhaseNames.end() ? kind->second : event::Phase::Kind::waiting,
                           numberIn<std::int32_t>(o, "volume"), numberIn<std::int32_t>(o, "volumes"),
                           textIn(o, "disc"), numberIn<std::int64_t>(o, "seconds")};
     }},
    {"alert", [](const ordered_json& o) -> Event { return alertIn(o); }},
    {"answered",
     [](const ordered_json& o) -> Event {
       return event::Answered{numberIn<std::int64_t>(o, "number"), numberIn<int>(o, "button")};
     }},
    {"attached", [](const ordered_json& o) -> Event { return attachedIn(o); }},
    {"past", [](const ordered_json& o) -> Event { return event::Past{numberIn<double>(o, "seconds")}; }},
    {"present", [](const ordered_json& /*o*/) -> Event { return event::Present{}; }},
    {"sheet", [](const ordered_json& o) -> Event { return sheetIn(o); }},
    {"assertion",
     [](const ordered_json& o) -> Event {
       return event::Assertion{textIn(o, "type"), numberIn<std::uint32_t>(o, "level"), textIn(o, "name")};
     }},
    {"assertion.release",
     [](const ordered_json& o) -> Event { return event::AssertionRelease{textIn(o, "type")}; }},
    {"warning", [](const ordered_json& o) -> Event { return event::Warning{textIn(o, "message")}; }},
    {"error", [](const ordered_json& o) -> Event { return event::Error{textIn(o, "message")}; }},
    {"summary", [](const ordered_json& o) -> Event { return summaryIn(o); }},
}};

constexpr const char* kForms =
    R"(a line is {"do":"title"}, {"do":"enter"}, {"do":"forward"}, {"do":"back"}, {"do":"quit"}, {"do":"wait"}, {"do":"stop"}, {"do":"no-answers"}, {"answer":1000} or {"answer":1000,"alert":1})";

// An integer field that is not below `lowest`. A double holds every answer and alert number exactly, and no
// number wraps in it.
std::optional<int> integerIn(const ordered_json& object, const char* key, int lowest) {
  const auto field = object.find(key);
  if (field == object.end() || !field->is_number_integer()) {
    return std::nullopt;
  }
  const auto value = field->get<double>();
  const bool fits = value >= lowest && value <= std::numeric_limits<int>::max();
  return fits ? std::optional(static_cast<int>(value)) : std::nullopt;
}

// {"answer":1000}, also with "alert".
std::optional<Answer> answerIn(const ordered_json& object) {
  if (!object.is_object() || object.size() != (object.contains("alert") ? 2U : 1U)) {
    return std::nullopt;
  }
  const auto button = integerIn(object, "answer", std::numeric_limits<int>::min());
  const auto alert = object.contains("alert") ? integerIn(object, "alert", 1) : std::optional(0);
  return button && alert ? std::optional(Answer{*button, *alert}) : std::nullopt;
}

}  // namespace

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
      for (const auto& [name, command] : kCommandNames) {
        if (field->get_ref<const std::string&>() == name) {
          return Request(command);
        }
      }
    }
  }
  if (const auto answer = answerIn(object)) {
    return Request(*answer);
  }
  return BadRequest{"not understood: " + std::string(kForms)};
}

}  // namespace tavenhall
