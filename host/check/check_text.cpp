#include "host/base/display_text.h"
#include "host/base/text.h"
#include "host/check/report.h"
#include "host/check/spelling.h"

#include <algorithm>

namespace tavenhall {

namespace {

// A text of several lines, aligned.
std::string indented(std::string_view text, std::size_t columns) {
  std::string shown;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    line = line.substr(0, line.find_last_not_of(' ') + 1);  // the page puts a blank before a line break
    shown +=
        (shown.empty() ? "" : "\n" + (line.empty() ? "" : std::string(columns, ' '))) + printableLine(line);
  }
  return shown;
}

// The mode and the reason.
const char* modePattern(std::int32_t mode) {
  switch (mode) {
    case kModeDataUpdater: return _("0, data updater. {0}");
    case kModeVolumes: return _("2, install from discs. {0}");
    case kModeProductUpdater: return _("4, product updater. {0}");
    default: return _("3, install from beside the package. {0}");
  }
}

constexpr int kLabelColumns = 15;

std::string line(std::string_view label, const std::string& text) {
  return "  " + padRight(label, kLabelColumns) + text + "\n";
}

std::string sizeText(const CheckResult& result) {
  const AnnouncedSize& announced = result.checked.plan.announced;
  const RealSizes real = result.checked.realSizes();
  const std::string said = announced.isKnown ? format(_("{0} announced by {1}"),
                                                      {megabytesText(announced.bytes), announced.countedKey})
                                             : format(_("nothing announced by {0}"), {announced.countedKey});
  const std::string whole = real.whole ? megabytesText(*real.whole) : "";
  if (result.checked.whole.editions.isOffered && real.component) {
    return format(real.whole ? _("{0}; there are {1}, {2} of them in the first component")
                             : _("{0}, {2} of them in the first component"),
                  {said, whole, megabytesText(*real.component)});
  }
  return real.whole ? format(_("{0}; there are {1}"), {said, whole}) : said;
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
  std::string place = printableLine(volume.root);
  const CheckedVolume* contents = contentsOf(checked, pass, volume);
  if (contents == nullptr || !contents->isThere) {
    return format(volume.isMounted ? _("{0}: not in the set") : _("{0}: missing"), {place});
  }
  if (volume.isMounted) {
    place = format(_("{0} ({1})"), {place, printableLine(contents->shownRoot)});
  }
  if (!contents->isListed) {
    return format(_("{0}: cannot be opened here"), {place});
  }
  if (contents->chosen.empty()) {
    return format(_("{0}: no data folder"), {place});
  }
  std::int64_t files = 0;
  std::int64_t bytes = 0;
  for (const TreeEntry& entry : contents->tree.entries()) {
    const bool isFile = !entry.isHidden && entry.kind != EntryKind::folder;
    files += isFile ? 1 : 0;
    bytes += isFile ? entry.size : 0;
  }
  return volume.librariesOnly ? plural("{1}: {2}, {0} file, {3}, the libraries that are not Lite",
                                       "{1}: {2}, {0} files, {3}, the libraries that are not Lite", files,
                                       {place, contents->chosen, megabytesText(bytes)})
                              : plural("{1}: {2}, {0} file, {3}", "{1}: {2}, {0} files, {3}", files,
                                       {place, contents->chosen, megabytesText(bytes)});
}

std::string planText(const CheckResult& result) {
  const CheckedSet& checked = result.checked;
  const InstallPlan& plan = checked.plan;
  std::string text = std::string(_("What the page would do")) + "\n";
  text += line(_("Mode"), format(modePattern(plan.mode), {printableLine(modeReason(plan))}));
  text += line(_("Title"), printableLine(plan.title));
  text += line(_("Text"), indented(plan.enteringText, kLabelColumns + 2));
  text += line(_("Edition"), printableLine(editionReason(plan)));
  for (const PlannedLibrary& library : plan.editions.libraries) {
    const char* pattern = !checked.isInstalledKnown ? _("{0}: {1}, for a user without libraries")
                          : library.isDetected      ? _("{0}: {1}, detected")
                                                    : _("{0}: {1} by default");
    text += line("", format(pattern, {printableLine(library.folderName), library.isLite ? "Lite" : "Full"}));
  }
  text += line(_("Size"), sizeText(result));
  for (const PlannedFolder& folder : plan.systemFolders) {
    text += line(folder.destination, format(_("from {0}"), {printableLine(folder.source)}));
  }
  for (const PlannedPass& pass : plan.passes) {
    text += line(pass.folderName, plural("to {1}, {0} volume", "to {1}, {0} volumes",
                                         std::max(pass.volumeCount, 0), {printableLine(pass.destination)}));
    for (const PlannedVolume& volume : pass.volumes) {
      text += line("  " + std::to_string(volume.number + 1), volumeText(checked, pass, volume));
    }
  }
  return text + line(_("At the end"), indented(plan.completionText, kLabelColumns + 2));
}

}  // namespace

std::string checkText(const CheckResult& result, const ReportStyle& style) {
  const CheckedSet& checked = result.checked;
  return format(_("The set {0}"), {printableLine(checked.set.folder.string())}) + "\n  " +
         format(_("{0} for {1}, whose data folder is {2}"),
                {printableLine(checked.set.package.filename().string()), checked.product.pluginName,
                 checked.product.folderName}) +
         "\n\n" + planText(result) + "\n" + diagnosticsText(result, style);
}

}  // namespace tavenhall
