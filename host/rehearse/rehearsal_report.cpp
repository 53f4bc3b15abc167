#include "host/rehearse/rehearsal_report.h"

#include "host/plain_printer.h"
#include "host/rehearse/disc_tray.h"

#include <algorithm>
#include <deque>
#include <numeric>
#include <sstream>

namespace tavenhall {

namespace {

constexpr std::size_t kMostSentences = 20;
constexpr std::size_t kMostOthersNamed = 3;
constexpr std::size_t kLogLines = 12;  // of a failed install's

std::string sizeOf(std::int64_t bytes) { return sizeText(static_cast<double>(bytes)); }

std::string counted(std::size_t count, const char* thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::size_t countOf(const std::vector<FileFate>& files, Fate fate) {
  return static_cast<std::size_t>(
      std::count_if(files.begin(), files.end(), [fate](const FileFate& file) { return file.fate == fate; }));
}

std::string row(const char* label, const std::string& text) {
  std::string line = "  " + std::string(label);
  line.resize(std::max<std::size_t>(line.size(), 14), ' ');
  return line + " " + printableText(text) + "\n";
}

// ---- What was to be done ----

std::string planRows(const RehearsalFindings& findings) {
  const InstallPlan& plan = findings.plan;
  std::string text = row("mode", std::to_string(plan.mode) + ": " + modeReason(plan));
  text += row("edition", editionReason(plan));
  for (const PlannedLibrary& library : plan.editions.libraries) {
    text += row("library", library.folderName + ": " + (library.isLite ? "Lite" : "Full"));
  }
  for (const PlannedFolder& folder : plan.systemFolders) {
    text += row("plan", folder.destination + " from beside the package");
  }
  for (const PlannedPass& pass : plan.passes) {
    text += row("plan", pass.folderName + " to " + findings.insidePath(pass.destination) + ", " +
                            counted(static_cast<std::size_t>(pass.volumeCount), "volume"));
  }
  return text;
}

// ---- What happened ----

std::string talkRows(const RehearsalRecord& record) {
  std::string text;
  for (const RehearsalRecord::Prompt& prompt : record.prompts) {
    text += row("prompt", prompt.volume + ": " + prompt.reply);
  }
  for (const RehearsalRecord::Alert& alert : record.alerts) {
    if (!volumeAskedFor(alert.message, alert.informative)) {  // those are prompts, above
      text += row("alert", alert.message + ": " + alert.informative);
    }
  }
  for (const auto& [sheet, times] : record.countedSheets()) {
    text += row("sheet", sheet + (times > 1 ? " (" + std::to_string(times) + " times)" : ""));
  }
  return text;
}

std::string timeText(const std::optional<double>& seconds) {
  if (!seconds) {
    return " in unknown time";
  }
  return *seconds < 1.0 ? " in less than 1 s" : " in " + durationText(*seconds);
}

std::string amountText(const CopiedVolume& copied) {
  return counted(copied.files, "file") + " in " + counted(copied.folders, "folder");
}

std::string volumeRows(const RehearsalFindings& findings) {
  std::string text;
  for (const CopiedVolume& copied : findings.systemFolders) {
    text += row("beside", copied.folder + ", " + sizeOf(copied.bytes) + ", " + amountText(copied));
  }
  for (const CopiedVolume& copied : findings.volumes) {
    text +=
        row("volume", std::to_string(copied.number + 1) + ": " +
                          (copied.folder.empty() ? "nothing was copied"
                                                 : copied.folder + ", " + sizeOf(copied.bytes) +
                                                       timeText(copied.seconds) + ", " + amountText(copied)));
  }
  return text;
}

// ---- What came of it ----

// Files that nobody expects to be installed; the others are remarks.
std::string leftRows(const RehearsalFindings& findings) {
  std::size_t ofFullEdition = 0;
  std::size_t others = 0;
  std::string names;
  for (const LeftFile& file : findings.leftFiles) {
    if (file.isOfFullEdition) {
      ++ofFullEdition;
    } else if (!file.isData && ++others <= kMostOthersNamed) {
      names += (names.empty() ? "" : ", ") + file.path;
    }
  }
  std::string text;
  if (ofFullEdition > 0) {
    text += row("left out", counted(ofFullEdition, "file") + " of the Full edition");
  }
  if (others > 0) {
    text += row("not data", counted(others, "file") + " beside the data folders: " + names +
                                (others > kMostOthersNamed ? ", ..." : ""));
  }
  return text;
}

std::string sizeRow(const char* label, const AnnouncedComparison& sizes) {
  return row(label, (sizes.announced > 0 ? sizeOf(sizes.announced) + " announced, " : "not announced, ") +
                        sizeOf(sizes.real) + " real");
}

std::string resultRows(const RehearsalFindings& findings, const Verdict& verdict) {
  std::string text =
      row("files", counted(countOf(findings.files, Fate::same), "file") + " the same, " +
                       std::to_string(countOf(findings.files, Fate::differs)) + " differ, " +
                       std::to_string(countOf(findings.files, Fate::missing)) + " missing, " +
                       std::to_string(countOf(findings.files, Fate::replaced)) + " replaced by a later copy");
  text += leftRows(findings);
  if (verdict.whole.real > 0) {
    text += sizeRow("size", verdict.whole);
  }
  if (verdict.hasFirstComponent) {
    text += sizeRow("component", verdict.firstComponent);
  }
  if (const RehearsalRecord::Bar bar = volumeBar(findings.record); bar.maximum > 0) {
    text += row("bar",
                sizeText(bar.highest * 1024.0) + " of " + sizeText(bar.maximum * 1024.0) + " at its highest");
  }
  return text + row("log", findings.log.empty() ? "not kept; --keep DIR keeps it" : findings.log);
}

// The end of the log, since nobody may have kept it.
std::string logEnd(const RehearsalFindings& findings) {
  std::deque<std::string> last;
  std::istringstream log(findings.logText);
  for (std::string line; std::getline(log, line);) {
    if (!line.empty()) {
      last.push_back("  " + printableText(line) + "\n");
    }
    if (last.size() > kLogLines) {
      last.pop_front();
    }
  }
  return last.empty() ? "" : std::accumulate(last.begin(), last.end(), std::string("\nThe log ends with:\n"));
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

}  // namespace

std::string reportText(const RehearsalFindings& findings, const Verdict& verdict) {
  std::string text = "Rehearsal of " + printableText(findings.set) + "\n\n";
  text += planRows(findings) + talkRows(findings.record) + volumeRows(findings) + resultRows(findings, verdict);
  if (verdict.status() == ExitStatus::failure) {
    text += logEnd(findings);
  }
  text += "\n" + sentences("FAILED", verdict.failures) + sentences("remark", verdict.remarks);
  switch (verdict.status()) {
    case ExitStatus::success: return text + "Everything is installed, and there is nothing to remark.\n";
    case ExitStatus::remarks: return text + "Everything is installed, with remarks.\n";
    default: return text + "The install failed.\n";
  }
}

}  // namespace tavenhall
