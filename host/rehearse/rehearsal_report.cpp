#include "host/rehearse/rehearsal_report.h"

#include "host/log/log_report.h"
#include "host/plain_printer.h"
#include "host/rehearse/disc_tray.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <nlohmann/json.hpp>

namespace tavenhall {

using nlohmann::ordered_json;

namespace {

constexpr std::int64_t kMillion = 1000000;
constexpr std::size_t kMostSentences = 20;  // in the text; the JSON report has them all

const char* fateName(Fate fate) {
  switch (fate) {
    case Fate::same: return "same";
    case Fate::differs: return "differs";
    case Fate::missing: return "missing";
    case Fate::replaced: break;
  }
  return "replaced";
}

std::string filesText(std::size_t count) { return std::to_string(count) + (count == 1 ? " file" : " files"); }

std::size_t countOf(const std::vector<FileFate>& files, Fate fate) {
  return static_cast<std::size_t>(
      std::count_if(files.begin(), files.end(), [fate](const FileFate& file) { return file.fate == fate; }));
}

// How many top-level copies went into system folders; they come before the volumes.
int systemCopies(const RehearsalFindings& findings) {
  int copies = 0;
  for (const CopiedFolder& folder : findings.folders) {
    for (const PlannedFolder& system : findings.plan.systemFolders) {
      copies += folder.sourceOutside == system.source ? 1 : 0;
    }
  }
  return copies;
}

// Bytes of the files that were copied from each volume of the story.
std::vector<std::int64_t> bytesByVolume(const RehearsalFindings& findings) {
  std::map<int, std::int64_t> bytesByCopy;
  for (const FileFate& file : findings.files) {
    bytesByCopy[file.copy] += file.bytes;
  }
  std::vector<std::int64_t> bytes;
  int copy = systemCopies(findings);
  for (const RunVolume& volume : findings.story.volumes) {
    std::int64_t sum = 0;
    for (int i = 0; i < volume.copies; ++i) {
      sum += bytesByCopy[copy++];
    }
    bytes.push_back(sum);
  }
  return bytes;
}

AnnouncedComparison compareSizes(std::int64_t announcedMillions, std::int64_t real) {
  AnnouncedComparison sizes;
  sizes.announced = announcedBytes(announcedMillions);
  sizes.real = real;
  // The attributes file counts in millions, so half a million either way is rounding.
  const std::int64_t allowance = std::max<std::int64_t>(kMillion, real / 20);
  sizes.isFar = sizes.announced <= 0 ? real >= kMillion : std::llabs(sizes.announced - real) > allowance;
  return sizes;
}

std::string farText(const std::string& what, const AnnouncedComparison& sizes) {
  return sizes.announced <= 0
             ? "the size of " + what + " is not announced (it is " + sizeText(static_cast<double>(sizes.real)) +
                   ")"
             : what + " is announced as " + sizeText(static_cast<double>(sizes.announced)) + " and is " +
                   sizeText(static_cast<double>(sizes.real)) + ": the bar will end early or late";
}

// The bar as the volumes moved it: its last setting is only the full bar of the end.
RehearsalRecord::Bar volumeBar(const RehearsalRecord& record) {
  RehearsalRecord::Bar highest;
  for (std::size_t i = 0; i + 1 < record.bars.size(); ++i) {
    if (record.bars[i].highest >= highest.highest) {
      highest = record.bars[i];
    }
  }
  return highest;
}

void judgeRun(const RehearsalFindings& findings, RehearsalReport& report) {
  if (!findings.pageWasEntered) {
    report.failures.emplace_back("the page was not entered");
    return;
  }
  if (!findings.record.missingDisc.empty()) {
    report.failures.push_back("the page asks for a disc that the set does not have: " +
                              findings.record.missingDisc);
  } else if (findings.story.outcome != RunEnd::complete) {
    report.failures.push_back(findings.story.outcome == RunEnd::noDataFolder
                                  ? "the data folder was not there, so nothing was begun"
                                  : "the install did not come to its end");
  } else if (!findings.record.hasLeft) {
    report.failures.emplace_back("the page did not let itself be left forwards");
  }
  for (const std::string& sheet : findings.record.sheets) {
    report.failures.push_back("a sheet said: " + sheet);
  }
}

void judgeFiles(const RehearsalFindings& findings, RehearsalReport& report) {
  if (findings.files.empty()) {
    report.failures.emplace_back("not one file was copied");
  }
  for (const FileFate& file : findings.files) {
    if (file.fate == Fate::differs) {
      report.failures.push_back("content differs: " + file.source);
    } else if (file.fate == Fate::missing) {
      report.failures.push_back("not installed: " + file.source);
    }
  }
  for (const std::string& path : findings.notCopied) {
    if (path.find("/.") == std::string::npos) {  // hidden names are never meant to be installed
      report.remarks.push_back("nothing installs " + path);
    }
  }
  for (const std::string& disc : findings.unusedDiscs) {
    report.remarks.push_back("the page never asked for the disc " + disc);
  }
}

void judgeSizes(const RehearsalFindings& findings, RehearsalReport& report) {
  const std::vector<std::int64_t> bytes = bytesByVolume(findings);
  std::int64_t all = 0;
  std::int64_t first = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    all += bytes[i];
    first += findings.story.volumes[i].number == 0 ? bytes[i] : 0;
  }
  // Where some library is left out as Lite, the whole is not what is installed.
  const auto& libraries = findings.plan.editions.libraries;
  const bool isLite = (findings.plan.editions.isOffered && findings.plan.editions.allAreLite) ||
                      std::any_of(libraries.begin(), libraries.end(),
                                  [](const PlannedLibrary& library) { return library.isLite; });
  if (findings.plan.editions.isOffered) {
    report.hasFirstComponent = true;
    report.firstComponent = compareSizes(findings.plan.announced.componentMillions, first);
    if (report.firstComponent.isFar) {
      report.remarks.push_back(farText("the first component", report.firstComponent));
    }
  }
  if (!isLite) {
    report.whole = compareSizes(findings.plan.announced.totalMillions, all);
    if (report.whole.isFar) {
      report.remarks.push_back(farText("the whole", report.whole));
    }
  }
}

// A path in the sandbox, as the page sees it.
std::string insidePath(const RehearsalFindings& findings, const std::string& path) {
  return !findings.sandbox.empty() && path.starts_with(findings.sandbox + "/")
             ? path.substr(findings.sandbox.size())
             : path;
}

std::string row(const char* label, const std::string& text) {
  std::string line = "  " + std::string(label);
  line.resize(std::max<std::size_t>(line.size(), 14), ' ');
  return line + " " + printableText(text) + "\n";
}

std::string sentences(const char* label, const std::vector<std::string>& all) {
  std::string text;
  for (std::size_t i = 0; i < std::min(all.size(), kMostSentences); ++i) {
    text += "  " + std::string(label) + ": " + printableText(all[i]) + "\n";
  }
  if (all.size() > kMostSentences) {
    text += "  " + std::string(label) + ": and " + std::to_string(all.size() - kMostSentences) + " more\n";
  }
  return text;
}

ordered_json sizesJson(const AnnouncedComparison& sizes) {
  return {{"announcedBytes", sizes.announced}, {"realBytes", sizes.real}, {"far", sizes.isFar}};
}

}  // namespace

ExitStatus RehearsalReport::status() const {
  if (!failures.empty()) {
    return ExitStatus::failure;
  }
  return remarks.empty() ? ExitStatus::success : ExitStatus::remarks;
}

RehearsalReport judge(const RehearsalFindings& findings) {
  RehearsalReport report;
  judgeRun(findings, report);
  judgeFiles(findings, report);
  judgeSizes(findings, report);
  return report;
}

std::string reportText(const RehearsalFindings& findings, const RehearsalReport& report) {
  std::string text = "Rehearsal of " + printableText(findings.set) + "\n\n";
  text += row("mode", std::to_string(findings.plan.mode) + ": " + findings.plan.modeReason);
  text += row("edition", findings.plan.editions.reason);
  for (const PlannedPass& pass : findings.plan.passes) {
    text +=
        row("plan", pass.folderName + " to " + insidePath(findings, pass.destination) + ", " +
                        std::to_string(pass.volumeCount) + (pass.volumeCount == 1 ? " volume" : " volumes"));
  }
  for (const RehearsalRecord::Prompt& prompt : findings.record.prompts) {
    text += row("prompt", prompt.volume + ": " + prompt.reply);
  }
  for (const RehearsalRecord::Alert& alert : findings.record.alerts) {
    if (!volumeAskedFor(alert.message, alert.informative)) {  // those are prompts, above
      text += row("alert", alert.message + ": " + alert.informative);
    }
  }
  for (const std::string& sheet : findings.record.sheets) {
    text += row("sheet", sheet);
  }
  const std::vector<std::int64_t> bytes = bytesByVolume(findings);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    text +=
        row("volume", volumeText(findings.story.volumes[i]) + ", " + sizeText(static_cast<double>(bytes[i])));
  }
  text +=
      row("files", filesText(countOf(findings.files, Fate::same)) + " the same, " +
                       std::to_string(countOf(findings.files, Fate::differs)) + " differ, " +
                       std::to_string(countOf(findings.files, Fate::missing)) + " missing, " +
                       std::to_string(countOf(findings.files, Fate::replaced)) + " replaced by a later copy");
  if (report.whole.real > 0) {
    text += row("size", sizeText(static_cast<double>(report.whole.announced)) + " announced, " +
                            sizeText(static_cast<double>(report.whole.real)) + " real");
  }
  if (report.hasFirstComponent) {
    text += row("component", sizeText(static_cast<double>(report.firstComponent.announced)) + " announced, " +
                                 sizeText(static_cast<double>(report.firstComponent.real)) + " real");
  }
  const RehearsalRecord::Bar bar = volumeBar(findings.record);
  if (bar.maximum > 0) {
    text += row("bar",
                sizeText(bar.highest * 1024.0) + " of " + sizeText(bar.maximum * 1024.0) + " at its highest");
  }
  if (!findings.log.empty()) {
    text += row("log", findings.log);
  }
  text += "\n" + sentences("FAILED", report.failures) + sentences("remark", report.remarks);
  switch (report.status()) {
    case ExitStatus::success: return text + "Everything is installed, and there is nothing to remark.\n";
    case ExitStatus::remarks: return text + "Everything is installed, with remarks.\n";
    default: return text + "The install failed.\n";
  }
}

ordered_json reportJson(const RehearsalFindings& findings, const RehearsalReport& report) {
  ordered_json files = ordered_json::array();
  for (const FileFate& file : findings.files) {
    files.push_back({{"source", file.source},
                     {"destination", file.destination},
                     {"bytes", file.bytes},
                     {"copy", file.copy},
                     {"fate", fateName(file.fate)}});
  }
  ordered_json passes = ordered_json::array();
  for (const PlannedPass& pass : findings.plan.passes) {
    passes.push_back({{"folder", pass.folderName},
                      {"destination", insidePath(findings, pass.destination)},
                      {"volumes", pass.volumeCount}});
  }
  const RehearsalRecord::Bar bar = volumeBar(findings.record);
  ordered_json json = {
      {"set", findings.set},
      {"status", static_cast<int>(report.status())},
      {"mode", findings.plan.mode},
      {"modeReason", findings.plan.modeReason},
      {"edition", findings.plan.editions.reason},
      {"passes", passes},
      {"run", findings.pageWasEntered ? reportJson(findings.story, 1) : ordered_json()},
      {"observed", findings.record.toJson()},
      {"whole", sizesJson(report.whole)},
      {"firstComponent", report.hasFirstComponent ? sizesJson(report.firstComponent) : ordered_json()},
      {"bar", {{"highest", bar.highest}, {"maximum", bar.maximum}}},
      {"files", files},
      {"notCopied", findings.notCopied},
      {"failures", report.failures},
      {"remarks", report.remarks},
      {"log", findings.log}};
  return json;
}

}  // namespace tavenhall
