#include "host/base/build_facts.h"
#include "host/base/text.h"
#include "host/check/report.h"

#include <nlohmann/json.hpp>

// The forms of diagnostics that code hosts read.
namespace tavenhall {

namespace fs = std::filesystem;

namespace {

using nlohmann::ordered_json;

constexpr const char* kSarifSchema = "https://json.schemastore.org/sarif-2.1.0.json";

// Relative to the current folder where it is in there, since a code host runs in its checkout.
std::string reportedPath(const CheckedSet& checked, const std::string& file) {
  const fs::path path = fs::path(file).is_absolute() ? fs::path(file) : checked.set.folder / file;
  std::error_code error;
  const fs::path below = path.lexically_relative(fs::current_path(error));
  return below.empty() || *below.begin() == ".." ? path.string() : below.string();
}

ordered_json locationJson(const CheckedSet& checked, const Place& place) {
  const std::string path = reportedPath(checked, place.file);
  ordered_json physical = {
      {"artifactLocation", {{"uri", (path.starts_with('/') ? "file://" : "") + percentEncoded(path)}}}};
  if (place.line > 0) {
    physical["region"] = {{"startLine", place.line}};
    if (place.column > 0) {
      physical["region"]["startColumn"] = place.column;
      physical["region"]["endColumn"] = place.column + place.length;
    }
  }
  return {{"physicalLocation", physical}};
}

// The sentence, and one for each consequence.
std::string messageOf(const Diagnostic& diagnostic) {
  std::string message = diagnostic.sentence;
  for (const Diagnostic& consequence : diagnostic.consequences) {
    message += "\n- " + consequence.sentence;
  }
  return message;
}

ordered_json rulesJson() {
  ordered_json rules = ordered_json::array();
  for (const DiagnosticKind& kind : diagnosticKinds()) {
    rules.push_back({{"id", kind.name},
                     {"shortDescription", {{"text", kind.explanation}}},
                     {"help", {{"text", explanationText(kind)}}},
                     {"defaultConfiguration", {{"level", severityWord(kind.severity)}}}});
  }
  return rules;
}

ordered_json resultJson(const CheckedSet& checked, const Diagnostic& diagnostic) {
  ordered_json related = ordered_json::array();
  for (const Diagnostic& consequence : diagnostic.consequences) {
    ordered_json location = locationJson(checked, consequence.place);
    location["message"] = {{"text", consequence.sentence}};
    related.push_back(std::move(location));
  }
  ordered_json result = {{"ruleId", diagnostic.name()},
                         {"level", severityWord(diagnostic.severity)},
                         {"message", {{"text", messageOf(diagnostic)}}},
                         {"locations", ordered_json::array({locationJson(checked, diagnostic.place)})}};
  if (!related.empty()) {
    result["relatedLocations"] = std::move(related);
  }
  return result;
}

// What ends a command's value or property in a job's log.
std::string escapedForJob(const std::string& text, bool isProperty) {
  std::string escaped;
  for (const char character : text) {
    switch (character) {
      case '%': escaped += "%25"; break;
      case '\r': escaped += "%0D"; break;
      case '\n': escaped += "%0A"; break;
      case ':': escaped += isProperty ? "%3A" : ":"; break;
      case ',': escaped += isProperty ? "%2C" : ","; break;
      default: escaped += character;
    }
  }
  return escaped;
}

}  // namespace

std::string checkSarif(std::span<const CheckResult> results) {
  ordered_json list = ordered_json::array();
  for (const CheckResult& result : results) {
    for (const Diagnostic& diagnostic : result.diagnostics.all()) {
      list.push_back(resultJson(result.checked, diagnostic));
    }
  }
  const ordered_json driver = {{"name", "tavinstall"}, {"version", kVersion}, {"rules", rulesJson()}};
  const ordered_json run = {
      {"tool", {{"driver", driver}}}, {"columnKind", "unicodeCodePoints"}, {"results", std::move(list)}};
  const ordered_json log = {
      {"$schema", kSarifSchema}, {"version", "2.1.0"}, {"runs", ordered_json::array({run})}};
  return log.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::string checkGithub(std::span<const CheckResult> results) {
  std::string text;
  for (const CheckResult& result : results) {
    for (const Diagnostic& diagnostic : result.diagnostics.all()) {
      text += std::string("::") +
              (diagnostic.severity == Severity::note ? "notice" : severityWord(diagnostic.severity)) +
              " file=" + escapedForJob(reportedPath(result.checked, diagnostic.place.file), true);
      if (diagnostic.place.line > 0) {
        text += ",line=" + std::to_string(diagnostic.place.line);
      }
      if (diagnostic.place.column > 0) {
        text += ",col=" + std::to_string(diagnostic.place.column);
      }
      text += ",title=" + std::string(diagnostic.name()) + "::" + escapedForJob(messageOf(diagnostic), false) +
              "\n";
    }
  }
  return text;
}

}  // namespace tavenhall
