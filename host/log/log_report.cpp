#include "host/log/log_report.h"

#include "context/install_rules.h"
#include "host/plain_printer.h"

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
  return seconds ? durationText(*seconds) : "unknown time";
}

const char* modeText(int mode) {
  switch (mode) {
    case kModeDataUpdater: return "data updater";
    case kModeVolumes: return "from volumes";
    case kModeOtherRelative: return "from a folder beside the package";
    case kModeProductUpdater: return "product updater";
    default: return "unknown";
  }
}

const char* outcomeName(const RunStory& story) {
  switch (story.outcome) {
    case RunEnd::complete: return story.failureCount == 0 ? "complete" : "complete-with-failures";
    case RunEnd::noDataFolder: return "no-data-folder";
    case RunEnd::never: break;
  }
  return "never-ended";
}

std::string outcomeText(const RunStory& story) {
  switch (story.outcome) {
    case RunEnd::complete:
      return story.failureCount == 0 ? "ended, nothing failed"
                                     : "ended, with " + std::to_string(story.failureCount) + " failures";
    case RunEnd::noDataFolder: return "not begun: the data folder was not there";
    case RunEnd::never: break;
  }
  return "it never ended; its last word: " + story.lastMessage.substr(story.lastMessage.rfind('\n') + 1);
}

std::string row(const char* label, const std::string& text) {
  std::string line = "    " + std::string(label);
  line.resize(std::max<std::size_t>(line.size(), 18), ' ');
  return line + " " + printableText(text) + "\n";
}

std::string promptText(const RunPrompt& prompt) {
  std::string text = prompt.volume + (prompt.isOptional ? " (optional)" : "") + ", asked " +
                     std::to_string(prompt.times) + (prompt.times == 1 ? " time" : " times");
  if (prompt.isSkipped) {
    return text + ", skipped";
  }
  return text + (prompt.found.empty() ? ", never found" : ", found after " + lasted(prompt.time, prompt.found));
}

}  // namespace

std::string volumeText(const RunVolume& volume) {
  if (volume.folder.empty()) {
    return std::to_string(volume.number + 1) + ": nothing was copied";
  }
  std::string text = std::to_string(volume.number + 1) + ": " + volume.folder;
  if (volume.end.empty()) {
    return text + ", begun, never ended";
  }
  text += ", " + lasted(volume.begin, volume.end);
  if (volume.hundredsOfMegabytes > 0) {
    const double bytes = volume.hundredsOfMegabytes * kProgressUnit;
    text += ", over " + sizeText(bytes);
    const auto seconds = secondsBetween(volume.begin, volume.end);
    if (seconds && *seconds > 0) {
      text += " at " + sizeText(bytes / *seconds) + " a second";
    }
  }
  return text + ", " + std::to_string(volume.folders) + (volume.folders == 1 ? " folder" : " folders");
}

std::string reportText(const RunStory& story, int number) {
  std::string text = "Run " + std::to_string(number) + ", " + story.begin + ", on " +
                     printableText(story.host) + ": " + printableText(outcomeText(story)) + "\n";
  text += row("lasted", lasted(story.begin, story.end));
  if (!story.title.empty()) {
    text += row("title", story.title);
  }
  if (story.mode) {
    text += row("mode", std::to_string(*story.mode) + ", " + modeText(*story.mode));
  }
  text += row("settings", story.attributesFile.empty() ? "no attributes file" : story.attributesFile);
  text += row("destination", story.destination);
  if (!story.edition.empty()) {
    text += row("edition", story.edition);
  }
  for (const std::string& detected : story.detectedEditions) {
    text += row("detected", detected);
  }
  for (const RunPrompt& prompt : story.prompts) {
    text += row("disc", promptText(prompt));
  }
  for (const RunVolume& volume : story.volumes) {
    text += row("volume", volumeText(volume));
  }
  for (const std::string& path : story.placed) {
    text += row("replaced", path);
  }
  for (const RunFailure& failure : story.failures) {
    text += row("FAILED", failure.time.substr(failure.time.rfind(' ') + 1) + "  " + failure.detail);
  }
  const auto untold = story.failureCount - static_cast<std::int64_t>(story.failures.size());
  if (untold > 0) {
    text += row("FAILED", "and " + std::to_string(untold) + " more");
  }
  if (story.refusals > 0) {
    text += row("refused", "to go on before the data was installed, " + std::to_string(story.refusals) +
                               (story.refusals == 1 ? " time" : " times"));
  }
  return text;
}

ordered_json reportJson(const RunStory& story, int number) {
  ordered_json prompts = ordered_json::array();
  for (const RunPrompt& prompt : story.prompts) {
    prompts.push_back({{"time", prompt.time},
                       {"volume", prompt.volume},
                       {"optional", prompt.isOptional},
                       {"times", prompt.times},
                       {"skipped", prompt.isSkipped},
                       {"found", prompt.found}});
  }
  ordered_json volumes = ordered_json::array();
  for (const RunVolume& volume : story.volumes) {
    const auto seconds = secondsBetween(volume.begin, volume.end);
    volumes.push_back(
        {{"number", volume.number},
         {"folder", volume.folder},
         {"begin", volume.begin},
         {"end", volume.end},
         {"seconds", seconds ? ordered_json(*seconds) : ordered_json()},
         {"folders", volume.folders},
         {"bytesAtLeast", volume.hundredsOfMegabytes * static_cast<std::int64_t>(kProgressUnit)}});
  }
  ordered_json failures = ordered_json::array();
  for (const RunFailure& failure : story.failures) {
    failures.push_back(
        {{"time", failure.time}, {"kind", failure.kind}, {"file", failure.file}, {"detail", failure.detail}});
  }
  const auto seconds = secondsBetween(story.begin, story.end);
  return {{"run", number},
          {"outcome", outcomeName(story)},
          {"begin", story.begin},
          {"end", story.end},
          {"seconds", seconds ? ordered_json(*seconds) : ordered_json()},
          {"host", story.host},
          {"page", story.pageVersion},
          {"title", story.title},
          {"mode", story.mode ? ordered_json(*story.mode) : ordered_json()},
          {"attributesFile", story.attributesFile},
          {"destination", story.destination},
          {"edition", story.edition},
          {"detected", story.detectedEditions},
          {"prompts", prompts},
          {"volumes", volumes},
          {"replaced", story.placed},
          {"failureCount", story.failureCount},
          {"failures", failures},
          {"refusals", story.refusals},
          {"lastMessage", story.lastMessage}};
}

}  // namespace tavenhall
