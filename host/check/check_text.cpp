#include "host/check/check.h"
#include "host/check/words.h"

#include <algorithm>

namespace tavenhall {

namespace {

// Names come from disks, and a reader's terminal obeys control characters.
std::string printable(std::string_view text) {
  std::string shown;
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    shown += code < 0x20 || code == 0x7F ? '?' : byte;
  }
  return shown;
}

// A text of several lines, each after the first below the first.
std::string indented(std::string_view text, std::size_t columns) {
  std::string shown;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    line = line.substr(0, line.find_last_not_of(' ') + 1);  // the page puts a blank before a line break
    shown += (shown.empty() ? "" : "\n" + (line.empty() ? "" : std::string(columns, ' '))) + printable(line);
  }
  return shown;
}

std::string modeName(std::int32_t mode) {
  switch (mode) {
    case kModeDataUpdater: return "0, data updater";
    case kModeVolumes: return "2, install from discs";
    case kModeProductUpdater: return "4, product updater";
    default: return "3, install from beside the package";
  }
}

constexpr std::size_t kLabelWidth = 15;

std::string line(std::string label, const std::string& text) {
  label.resize(kLabelWidth, ' ');
  return "  " + label + text + "\n";
}

std::string sizeText(const CheckResult& result) {
  const AnnouncedSize& announced = result.checked.plan.announced;
  const RealSizes real = result.checked.realSizes();
  std::string text = announced.isKnown ? megabytes(announced.bytes) + " announced by " + announced.countedKey
                                       : "nothing announced by " + std::string(announced.countedKey);
  if (real.whole) {
    text += "; there are " + megabytes(*real.whole + real.systemFolders);
  }
  if (result.checked.whole.editions.isOffered && real.component) {
    text += ", " + megabytes(*real.component) + " of them in the first component";
  }
  return text;
}

const CheckedVolume* contentsOf(const CheckedSet& checked, const PlannedPass& pass,
                                const PlannedVolume& volume) {
  for (const CheckedVolume& candidate : checked.volumes) {
    if (candidate.folderName == pass.folderName && candidate.volume.number == volume.number) {
      return &candidate;
    }
  }
  return nullptr;
}

std::string volumeText(const CheckedSet& checked, const PlannedPass& pass, const PlannedVolume& volume) {
  std::string text = printable(volume.root);
  const CheckedVolume* contents = contentsOf(checked, pass, volume);
  if (contents == nullptr || !contents->isThere) {
    return text + (volume.isMounted ? ": not in the set" : ": not there");
  }
  text += volume.isMounted ? " (" + printable(contents->shownRoot) + "): " : ": ";
  if (!contents->isListed) {
    return text + "cannot be looked into here";
  }
  if (contents->chosen.empty()) {
    return text + "no data folder";
  }
  std::int64_t files = 0;
  std::int64_t bytes = 0;
  for (const TreeEntry& entry : contents->tree.entries()) {
    const bool isFile = !entry.isHidden && entry.kind != EntryKind::folder;
    files += isFile ? 1 : 0;
    bytes += isFile ? entry.size : 0;
  }
  return text + contents->chosen + ", " + counted(files, "file") + ", " + megabytes(bytes) +
         (volume.librariesOnly ? ", the libraries that are not Lite" : "");
}

std::string planText(const CheckResult& result) {
  const CheckedSet& checked = result.checked;
  const InstallPlan& plan = checked.plan;
  std::string text = "What the page would do\n";
  text += line("Mode", modeName(plan.mode) + ". " + printable(plan.modeReason));
  text += line("Title", printable(plan.title));
  text += line("Text", indented(plan.enteringText, kLabelWidth + 2));
  text += line("Edition", printable(plan.editions.reason));
  for (const PlannedLibrary& library : plan.editions.libraries) {
    text += line("", printable(library.folderName) + ": " + (library.isLite ? "Lite" : "Full") +
                         (library.isDetected ? ", detected" : ", since nothing says otherwise"));
  }
  text += line("Size", sizeText(result));
  for (const PlannedFolder& folder : plan.systemFolders) {
    text += line(folder.destination, "from " + printable(folder.source));
  }
  for (const PlannedPass& pass : plan.passes) {
    text += line(pass.folderName,
                 "to " + printable(pass.destination) + ", " + counted(std::max(pass.volumeCount, 0), "volume"));
    for (const PlannedVolume& volume : pass.volumes) {
      text += line("  " + std::to_string(volume.number + 1), volumeText(checked, pass, volume));
    }
  }
  return text + line("At the end", indented(plan.completionText, kLabelWidth + 2));
}

std::string remarksText(const Remarks& remarks) {
  if (remarks.all().empty()) {
    return "Nothing to remark.\n";
  }
  std::string text = "Remarks\n";
  for (const Remark& remark : remarks.all()) {
    text += "  " + printable(remark.place.file) +
            (remark.place.line > 0 ? ":" + std::to_string(remark.place.line) : "");
    text += std::string(": ") + severityWord(remark.severity) + ": " + printable(remark.sentence) + " [" +
            std::string(remark.name) + "]\n      " + remark.reference() + "\n";
  }
  for (const auto& [name, count] : remarks.more()) {
    text += "  and " + std::to_string(count) + " more of " + std::string(name) + "\n";
  }
  return text + "\n" + counted(remarks.count(Severity::error), "error") + ", " +
         counted(remarks.count(Severity::warning), "warning") + ", " +
         counted(remarks.count(Severity::note), "note") + "\n";
}

}  // namespace

std::string checkText(const CheckResult& result) {
  const CheckedSet& checked = result.checked;
  return "The set " + printable(checked.set.folder.string()) + "\n" + "  " +
         printable(checked.set.package.filename().string()) + " for " + checked.product.pluginName +
         ", whose data folder is " + checked.product.folderName + "\n\n" + planText(result) + "\n" +
         remarksText(result.remarks);
}

}  // namespace tavenhall
