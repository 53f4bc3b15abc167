#include "host/log/log_report.h"

#include "context/install_rules.h"
#include "host/base/display_text.h"
#include "host/base/text.h"
#include "host/log/log_headline.h"

#include <nlohmann/json.hpp>
#include <optional>

namespace tavenhall {

using nlohmann::ordered_json;

namespace {

constexpr double kProgressUnit = 100000000.0;  // bytes that one progress line of the log stands for

std::optional<double> secondsBetween(const std::string& begin, const std::string& end) {
  const std::time_t from = timeOfRecord(begin);
  const std::time_t to = timeOfRecord(end);
  if (from < 0 || to < from) {
    return std::nullopt;  // a clock that was set back meanwhile, or no time at all
  }
  return static_cast<double>(to - from);
}

std::string lasted(const std::string& begin, const std::string& end) {
  const auto seconds = secondsBetween(begin, end);
  return seconds ? durationText(*seconds) : _("unknown time");
}

const char* modeText(int mode) {
  switch (mode) {
    case kModeDataUpdater: return _("data updater");
    case kModeVolumes: return _("from discs");
    case kModeOtherRelative: return _("from beside the package");
    case kModeProductUpdater: return _("product updater");
    default: return _("unknown");
  }
}

const char* outcomeName(const LoggedRun& run) {
  switch (run.outcome) {
    case RunEnd::complete: return run.failureCount == 0 ? "complete" : "complete-with-failures";
    case RunEnd::noDataFolder: return "no-data-folder";
    case RunEnd::never: break;
  }
  return "never-ended";
}

std::string outcomeText(const LoggedRun& run, bool mayStillRun) {
  switch (run.outcome) {
    case RunEnd::complete:
      return run.failureCount == 0
                 ? _("ended, nothing failed")
                 : plural("ended, with {0} failure", "ended, with {0} failures", run.failureCount);
    case RunEnd::noDataFolder: return _("not started: the data folder did not exist");
    case RunEnd::never: break;
  }
  const std::string lastWord = run.lastMessage.substr(run.lastMessage.rfind('\n') + 1);
  return format(mayStillRun ? _("it has not ended and may still be running; last message: {0}")
                            : _("it did not end; last message: {0}"),
                {lastWord});
}

constexpr int kLabelColumns = 15;

std::string row(const char* label, const std::string& text) {
  return "    " + padRight(label, kLabelColumns) + printableText(text) + "\n";
}

std::string promptText(const RunPrompt& prompt) {
  std::string text = prompt.volume + (prompt.isOptional ? _(" (optional)") : "") + ", " +
                     plural("asked for {0} time", "asked for {0} times", prompt.times) + ", ";
  if (prompt.isSkipped) {
    return text + _("skipped");
  }
  return text + (prompt.found.empty() ? _("never found")
                                      : format(_("found after {0}"), {lasted(prompt.time, prompt.found)}));
}

std::string timeOfDay(const std::string& time) { return time.substr(time.rfind(' ') + 1); }

}  // namespace

std::string volumeText(const RunVolume& volume) {
  const std::string number = std::to_string(volume.number + 1) + ": ";
  if (volume.folder.empty()) {
    return number + _("nothing was copied");
  }
  std::string text = number + volume.folder + ", ";
  if (volume.end.empty()) {
    return text + format(_("started at {0}, did not end"), {timeOfDay(volume.begin)});
  }
  text += lasted(volume.begin, volume.end);
  if (volume.hundredsOfMegabytes > 0) {
    const double bytes = volume.hundredsOfMegabytes * kProgressUnit;
    text += ", " + format(_("over {0}"), {sizeText(bytes)});
    const auto seconds = secondsBetween(volume.begin, volume.end);
    if (seconds && *seconds > 0) {
      text += " " + format(_("at {0} a second"), {sizeText(bytes / *seconds)});
    }
  }
  text += ", " + plural("{0} folder", "{0} folders", volume.folders);
  if (volume.timesEmpty > 0) {
    text += ", " + plural("found empty {0} time", "found empty {0} times", volume.timesEmpty);
  }
  return text;
}

std::string reportText(const LoggedRun& run, int number, bool mayStillRun) {
  std::string text =
      printableText(format(_("Run {0}, {1}, on {2}: {3}"),
                           {std::to_string(number), run.begin, run.host, outcomeText(run, mayStillRun)})) +
      "\n";
  text += row(_("lasted"), lasted(run.begin, run.end));
  if (!run.title.empty()) {
    text += row(_("title"), run.title);
  }
  if (run.mode) {
    text += row(_("mode"), std::to_string(*run.mode) + ", " + modeText(*run.mode));
  }
  text += row(_("settings"), run.attributesFile.empty() ? _("no attributes file") : run.attributesFile);
  for (const std::string& destination : run.destinations) {
    text += row(_("destination"), destination);
  }
  if (!run.edition.empty()) {
    text += row(_("edition"), run.edition);
  }
  for (const std::string& detected : run.detectedEditions) {
    text += row(_("detected"), detected);
  }
  for (const RunPrompt& prompt : run.prompts) {
    text += row(_("disc"), promptText(prompt));
  }
  for (const RunVolume& volume : run.volumes) {
    text += row(_("volume"), volumeText(volume));
  }
  for (const std::string& path : run.placed) {
    text += row(_("replaced"), path);
  }
  for (const FailureGroup& group : groupsOf(run)) {
    text += row(_("FAILED"), timeOfDay(group.example.time) + "  " + groupText(group));
  }
  const auto untold = run.failureCount - static_cast<std::int64_t>(run.failures.size());
  if (untold > 0) {
    text += row(_("FAILED"), format(_("and {0} more"), {std::to_string(untold)}));
  }
  if (run.refusals > 0) {
    text += row(_("refused"), plural("Continue before the data was installed, {0} time",
                                     "Continue before the data was installed, {0} times", run.refusals));
  }
  return text;
}

ordered_json reportJson(const LoggedRun& run, int number, bool mayStillRun) {
  ordered_json prompts = ordered_json::array();
  for (const RunPrompt& prompt : run.prompts) {
    prompts.push_back({{"time", prompt.time},
                       {"volume", prompt.volume},
                       {"optional", prompt.isOptional},
                       {"times", prompt.times},
                       {"skipped", prompt.isSkipped},
                       {"found", prompt.found}});
  }
  ordered_json volumes = ordered_json::array();
  for (const RunVolume& volume : run.volumes) {
    const auto seconds = secondsBetween(volume.begin, volume.end);
    volumes.push_back(
        {{"number", volume.number},
         {"folder", volume.folder},
         {"begin", volume.begin},
         {"end", volume.end},
         {"seconds", seconds ? ordered_json(*seconds) : ordered_json()},
         {"folders", volume.folders},
         {"timesEmpty", volume.timesEmpty},
         {"bytesAtLeast", volume.hundredsOfMegabytes * static_cast<std::int64_t>(kProgressUnit)}});
  }
  ordered_json failures = ordered_json::array();
  for (const RunFailure& failure : run.failures) {
    failures.push_back({{"time", failure.time},
                        {"kind", failure.kind},
                        {"file", failure.file},
                        {"target", failure.target},
                        {"reason", failure.reason},
                        {"detail", failure.detail}});
  }
  const auto seconds = secondsBetween(run.begin, run.end);
  return {{"run", number},
          {"outcome", outcomeName(run)},
          {"mayStillRun", mayStillRun},
          {"begin", run.begin},
          {"end", run.end},
          {"seconds", seconds ? ordered_json(*seconds) : ordered_json()},
          {"host", run.host},
          {"page", run.pageVersion},
          {"title", run.title},
          {"mode", run.mode ? ordered_json(*run.mode) : ordered_json()},
          {"attributesFile", run.attributesFile},
          {"destinations", run.destinations},
          {"edition", run.edition},
          {"detected", run.detectedEditions},
          {"prompts", prompts},
          {"volumes", volumes},
          {"replaced", run.placed},
          {"failureCount", run.failureCount},
          {"failures", failures},
          {"refusals", run.refusals},
          {"lastMessage", run.lastMessage}};
}

std::string failureText(const RunFailure& failure) {
  if (failure.file.empty()) {
    return failure.detail;
  }
  if (failure.kind == "source") {
    return format(_("cannot read {0}"), {failure.file});
  }
  if (failure.kind == "target") {
    return failure.reason.empty() ? format(_("cannot write {0}"), {failure.target})
                                  : format(_("cannot write {0}: {1}"), {failure.target, failure.reason});
  }
  if (failure.kind == "size") {
    return format(_("not copied completely; the disk may be full: {0}"), {failure.target});
  }
  if (failure.kind == "folder") {
    return format(_("cannot create the folder {0}"), {failure.file});
  }
  if (failure.kind == "not-found") {
    return format(_("no data to install: there is no {0}"), {failure.file});
  }
  if (failure.kind == "no-destination") {
    return format(_("no destination for {0}: its data folder is missing"), {failure.file});
  }
  return failure.detail;
}

}  // namespace tavenhall
