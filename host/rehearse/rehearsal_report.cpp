#include "host/rehearse/findings.h"

#include "host/base/display_text.h"
#include "host/base/text.h"
#include "host/rehearse/disc_tray.h"

#include <algorithm>
#include <deque>
#include <numeric>
#include <sstream>

namespace tavenhall {

namespace {

constexpr std::size_t kMostSentences = 20;
constexpr std::int64_t kMostOthersNamed = 3;
constexpr std::size_t kLogLines = 12;  // of a failed install's
constexpr int kLabelColumns = 13;

std::int64_t countOf(const std::vector<FileFate>& files, Fate fate) {
  return std::count_if(files.begin(), files.end(), [fate](const FileFate& file) { return file.fate == fate; });
}

std::string row(const char* label, const std::string& text) {
  return "  " + padRight(label, kLabelColumns) + printableText(text) + "\n";
}

// ---- What was to be done ----

std::string planRows(const RehearsalFindings& findings) {
  const InstallPlan& plan = findings.plan;
  std::string text = row(_("mode"), std::to_string(plan.mode) + ": " + modeReason(plan));
  text += row(_("edition"), editionReason(plan));
  for (const PlannedLibrary& library : plan.editions.libraries) {
    text += row(_("library"), library.folderName + ": " + (library.isLite ? "Lite" : "Full"));
  }
  for (const PlannedFolder& folder : plan.systemFolders) {
    text += row(_("plan"), format(_("{0} from beside the package"), {folder.destination}));
  }
  for (const PlannedPass& pass : plan.passes) {
    text += row(_("plan"), plural("{1} to {2}, {0} volume", "{1} to {2}, {0} volumes", pass.volumeCount,
                                  {pass.folderName, findings.insidePath(pass.destination)}));
  }
  return text;
}

// ---- What happened ----

std::string talkRows(const RehearsalRecord& record) {
  std::string text;
  for (const RehearsalRecord::Prompt& prompt : record.prompts) {
    text += row(_("prompt"), prompt.volume + ": " + _(prompt.reply.c_str()));
  }
  for (const RehearsalRecord::Alert& alert : record.alerts) {
    if (!volumeAskedFor(alert.message, alert.informative)) {  // those are prompts, above
      text += row(_("alert"), alert.message + ": " + alert.informative);
    }
  }
  for (const auto& [sheet, times] : record.countedSheets()) {
    text += row(_("sheet"), times > 1 ? plural("{1} ({0} time)", "{1} ({0} times)", times, {sheet}) : sheet);
  }
  return text;
}

std::string sizeAndTime(const CopiedVolume& copied) {
  const std::string size = sizeText(copied.bytes);
  if (!copied.seconds) {
    return format(_("{0} in unknown time"), {size});
  }
  return *copied.seconds < 1.0 ? format(_("{0} in less than 1 s"), {size})
                               : format(_("{0} in {1}"), {size, durationText(*copied.seconds)});
}

std::string amountText(const CopiedVolume& copied) {
  const std::string files = plural("{0} file", "{0} files", static_cast<std::int64_t>(copied.files));
  return plural("{1} in {0} folder", "{1} in {0} folders", static_cast<std::int64_t>(copied.folders), {files});
}

std::string volumeRows(const RehearsalFindings& findings) {
  std::string text;
  for (const CopiedVolume& copied : findings.systemFolders) {
    text += row(_("beside"), copied.folder + ", " + sizeText(copied.bytes) + ", " + amountText(copied));
  }
  for (const CopiedVolume& copied : findings.volumes) {
    text += row(_("volume"), std::to_string(copied.number + 1) + ": " +
                                 (copied.folder.empty() ? _("nothing was copied")
                                                        : copied.folder + ", " + sizeAndTime(copied) + ", " +
                                                              amountText(copied)));
  }
  return text;
}

// ---- What came of it ----

// Files that are not expected to be installed; the others get a warning.
std::string leftRows(const RehearsalFindings& findings) {
  std::int64_t ofFullEdition = 0;
  std::int64_t others = 0;
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
    text += row(_("left out"),
                plural("{0} file of the Full edition", "{0} files of the Full edition", ofFullEdition));
  }
  if (others > 0) {
    names += others > kMostOthersNamed ? ", ..." : "";
    text += row(_("not data"), plural("{0} file beside the data folders: {1}",
                                      "{0} files beside the data folders: {1}", others, {names}));
  }
  return text;
}

std::string sizeRow(const char* label, const AnnouncedComparison& sizes) {
  return row(label, format(sizes.announced > 0 ? _("{1} announced, {0} real") : _("not announced, {0} real"),
                           {sizeText(sizes.real), sizeText(sizes.announced)}));
}

std::string resultRows(const RehearsalFindings& findings, const Verdict& verdict) {
  std::string text =
      row(_("files"), plural("{0} file identical, {1} differ, {2} missing, {3} replaced by a later copy",
                             "{0} files identical, {1} differ, {2} missing, {3} replaced by a later copy",
                             countOf(findings.files, Fate::same),
                             {std::to_string(countOf(findings.files, Fate::differs)),
                              std::to_string(countOf(findings.files, Fate::missing)),
                              std::to_string(countOf(findings.files, Fate::replaced) +
                                             countOf(findings.files, Fate::overwritten))}));
  text += leftRows(findings);
  if (verdict.whole.real > 0) {
    text += sizeRow(_("size"), verdict.whole);
  }
  if (verdict.hasFirstComponent) {
    text += sizeRow(_("component"), verdict.firstComponent);
  }
  if (const RehearsalRecord::Bar bar = volumeBar(findings.record); bar.maximum > 0) {
    text += row(_("bar"), format(_("{0} of {1} at its highest"),
                                 {sizeText(bar.highest * 1024.0), sizeText(bar.maximum * 1024.0)}));
  }
  return text + row(_("log"), findings.log.empty() ? _("not kept; use --keep DIR") : findings.log);
}

// The end of the log, in case it is not kept.
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
  return last.empty()
             ? ""
             : std::accumulate(last.begin(), last.end(), std::string("\n") + _("The log ends with:") + "\n");
}

std::string sentences(const char* pattern, const std::vector<std::string>& all) {
  std::string text;
  for (std::size_t i = 0; i < std::min(all.size(), kMostSentences); ++i) {
    text += "  " + printableText(format(pattern, {all[i]})) + "\n";
  }
  if (all.size() > kMostSentences) {
    const std::string more = format(_("and {0} more"), {std::to_string(all.size() - kMostSentences)});
    text += "  " + format(pattern, {more}) + "\n";
  }
  return text;
}

}  // namespace

std::string reportText(const RehearsalFindings& findings, const Verdict& verdict) {
  std::string text = printableText(format(_("Rehearsal of {0}"), {findings.set})) + "\n\n";
  text += planRows(findings) + talkRows(findings.record) + volumeRows(findings) + resultRows(findings, verdict);
  if (!verdict.isInstalled) {
    text += logEnd(findings);
  }
  text +=
      "\n" + sentences(_("FAILED: {0}"), verdict.failures) + sentences(_("warning: {0}"), verdict.diagnostics);
  switch (verdict.status()) {
    case ExitStatus::success:
      text += _("Rehearsal passed: everything was installed, no problems found.");
      break;
    case ExitStatus::warnings: text += _("Rehearsal passed with warnings: everything was installed."); break;
    default:
      text += verdict.isInstalled ? _("Rehearsal failed: everything was installed, but the set has errors.")
                                  : _("Rehearsal failed.");
      break;
  }
  return text + "\n";
}

}  // namespace tavenhall
