#include "host/ui/introduction.h"

#include "host/base/text.h"
#include "host/base/units.h"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostSources = 8;
constexpr int kLeastIndent = 8;
constexpr std::string_view kVolumes = "/Volumes/";

// Paths as people write them: the page joins them with more slashes and dots than anybody wants to read.
std::string tidyPath(const std::string& path) {
  std::string tidy = fs::path(path).lexically_normal().string();
  if (tidy.size() > 1 && tidy.back() == '/') {
    tidy.pop_back();
  }
  return tidy;
}

void addOnce(std::vector<std::string>& texts, const std::string& text) {
  if (std::find(texts.begin(), texts.end(), text) == texts.end()) {
    texts.push_back(text);
  }
}

std::string sourceName(const PlannedVolume& volume) {
  if (!volume.isMounted) {
    return tidyPath(volume.root);
  }
  const std::string name =
      volume.root.starts_with(kVolumes) ? volume.root.substr(kVolumes.size()) : volume.root;
  return format(volume.isOptional ? _("Disc {0} (if you have it)") : _("Disc {0}"), {name});
}

std::string whatText(const InstallPlan& plan) {
  const std::string& name = plan.product.pluginName;
  const EditionPlan& editions = plan.editions;
  if (plan.mode == kModeProductUpdater) {
    return editions.libraries.empty() ? format(_("This updates {0}."), {name})
                                      : plural("This updates {1} and the data of {0} library.",
                                               "This updates {1} and the data of {0} libraries.",
                                               static_cast<std::int64_t>(editions.libraries.size()), {name});
  }
  const char* text = !editions.isOffered   ? _("This installs the sample data of {0}.")
                     : editions.allAreLite ? _("This installs the sample data of {0}, the Lite edition.")
                                           : _("This installs the sample data of {0}, the Full edition.");
  return format(text, {name});
}

void collectPlaces(const InstallPlan& plan, Introduction& introduction) {
  for (const PlannedFolder& folder : plan.systemFolders) {
    addOnce(introduction.from, tidyPath(folder.source));
    addOnce(introduction.to, tidyPath(folder.destination));
  }
  for (const PlannedPass& pass : plan.passes) {
    for (const PlannedVolume& volume : pass.volumes) {
      addOnce(introduction.from, sourceName(volume));
    }
    addOnce(introduction.to, tidyPath(pass.destination));
  }
  if (introduction.from.size() > kMostSources) {
    const std::size_t more = introduction.from.size() - kMostSources + 1;
    introduction.from.resize(kMostSources - 1);
    introduction.from.push_back(format(_("and {0} more"), {std::to_string(more)}));
  }
}

void appendPlaces(std::vector<Line>& lines, const std::string& label, const std::vector<std::string>& places,
                  int indent, int width) {
  std::string left = label;
  for (const std::string& place : places) {
    append(lines, labelledLines(left, place, indent, width));
    left.clear();
  }
}

}  // namespace

std::optional<std::int64_t> freeBytesAt(const std::string& path) {
  fs::path folder = path;
  struct statvfs disk {};
  while (statvfs(folder.c_str(), &disk) != 0) {
    if (!folder.has_relative_path()) {
      return std::nullopt;
    }
    folder = folder.parent_path();
  }
  return static_cast<std::int64_t>(disk.f_bavail) * static_cast<std::int64_t>(disk.f_frsize);
}

Introduction introduce(const InstallPlan& plan, const FreeBytes& freeBytes) {
  Introduction introduction;
  introduction.productName = plan.product.pluginName;
  introduction.pageTitle = plan.title;
  introduction.what = whatText(plan);
  introduction.barWraps = plan.mode == kModeProductUpdater;
  collectPlaces(plan, introduction);
  if (plan.announced.isKnown && plan.announced.bytes > 0) {
    introduction.neededBytes = plan.announced.bytes;
  }
  // An update's passes may go to two disks; then the fuller one counts.
  for (const PlannedPass& pass : plan.passes) {
    const auto free = freeBytes(pass.destination);
    if (free && (!introduction.freeBytes || *free < *introduction.freeBytes)) {
      introduction.freeBytes = free;
    }
  }
  for (const PlannedPass& pass : plan.passes) {
    introduction.destination = tidyPath(pass.destination);
    if (pass.folderName == plan.product.folderName) {
      struct stat found {};
      introduction.isDestinationThere = stat(pass.destination.c_str(), &found) == 0;
      break;
    }
  }
  return introduction;
}

std::string shortRoomText(const Introduction& introduction) {
  return format(_("The data takes {0}, and the disk has {1} free."),
                {sizeText(*introduction.neededBytes), sizeText(*introduction.freeBytes)});
}

std::vector<Line> introductionLines(const Introduction& introduction, int width) {
  const char* from = _("From");
  const char* to = _("To");
  const char* size = _("Size");
  const char* free = _("Free");
  const int indent = std::max(labelColumns({from, to, size, free}), kLeastIndent);

  std::vector<Line> lines = wrappedLines(introduction.what, width);
  lines.emplace_back();
  appendPlaces(lines, from, introduction.from, indent, width);
  lines.emplace_back();
  appendPlaces(lines, to, introduction.to, indent, width);
  lines.emplace_back();
  append(lines, labelledLines(
                    size, introduction.neededBytes ? sizeText(*introduction.neededBytes) : _("not announced"),
                    indent, width));
  if (introduction.freeBytes) {
    append(lines, labelledLines(free, format(_("{0} on that disk"), {sizeText(*introduction.freeBytes)}),
                                indent, width, introduction.isRoomShort() ? Style::bad : Style::text));
  }
  if (introduction.isRoomShort()) {
    lines.emplace_back();
    append(lines, wrappedLines(join(_("There may not be enough room."), shortRoomText(introduction)), width,
                               Style::bad));
  }
  if (!introduction.isDestinationThere) {
    lines.emplace_back();
    append(lines, wrappedLines(format(_("The folder for the data is not there yet. Install {0} itself first."),
                                      {introduction.productName}),
                               width, Style::bad));
  }
  lines.emplace_back();
  append(lines, wrappedLines(_("Press Continue to begin."), width, Style::dim));
  return lines;
}

}  // namespace tavenhall
