#include "host/base/text.h"
#include "host/base/units.h"
#include "host/check/rules.h"
#include "host/check/spelling.h"
#include "platform/installer_pane.h"

#include <cstdlib>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kMillion = 1000000;

Place placeOfKey(const CheckedSet& checked, const char* key) {
  return checked.attributesPlace(checked.plan.attributes.findNumber(key).key);
}

// A size that the file announces, against what is there.
void checkSize(const CheckedSet& checked, std::string_view diagnostic, const char* key, std::int64_t millions,
               std::optional<std::int64_t> real, Diagnostics& diagnostics) {
  const FoundNumber found = checked.plan.attributes.findNumber(key);
  if (found.source != found.key || millions <= 0 || millions > INT64_MAX / kMillion || !real) {
    return;  // said elsewhere, or not to be known
  }
  const std::int64_t announced = announcedBytes(millions);
  if (checked.realSizes().areClose(announced, *real)) {
    return;
  }
  const char* sentence =
      checked.plan.mode == kModeProductUpdater
          ? _("{0} announces {1}, but there are {2}, so the bar starts again or stops at the wrong place.")
      : announced > *real
          ? _("{0} announces {1}, but there are {2}, so the bar stops at {3} % and then jumps to the end.")
          : _("{0} announces {1}, but there are {2}, so the bar is full when {3} % of the data is copied.");
  const std::int64_t percent = announced > *real ? *real * 100 / announced : announced * 100 / *real;
  diagnostics.add(
      diagnostic, placeOfKey(checked, key),
      format(sentence, {key, megabytesText(announced), megabytesText(*real), std::to_string(percent)}));
}

void checkSizeIsGiven(const CheckedSet& checked, const char* key, std::int64_t millions,
                      Diagnostics& diagnostics) {
  const FoundNumber found = checked.plan.attributes.findNumber(key);
  if (millions == 0 && (!found || found.source == found.key)) {
    diagnostics.add("size-missing", checked.attributesPlace(found.key),
                    format(_("The key {0} is missing, so {1}."), {key, missingKeyEffect(key)}));
  }
}

}  // namespace

void checkSettings(const CheckedSet& checked, Diagnostics& diagnostics) {
  const InstallPlan& whole = checked.whole;
  const std::string package = checked.set.package.string();
  if (package.find('\\') != std::string::npos || package.find('\n') != std::string::npos) {
    diagnostics.add("package-path", {checked.shown(package)},
                    _("The package's path contains a backslash or a line break, so the page looks for its "
                      "files in a folder that does not exist."));
  } else if (package.size() > 1022) {
    diagnostics.add(
        "package-path", {checked.shown(package)},
        _("The package's path is longer than the page's limit of 1022 bytes, so the page finds nothing."));
  }
  if (checked.isProductAssumed) {
    diagnostics.add("product-assumed", {checked.shown(package)},
                    format(_("No product was given, so the set was checked for {0}. Name the product with "
                             "--product or in rehearsal.json."),
                           {checked.product.pluginName}));
  }

  const FoundText secondPath = whole.attributes.findText("RelativePath2");
  if (whole.editions.isOffered && whole.mode != kModeVolumes && !secondPath) {
    diagnostics.add("second-path-missing", placeOfKey(checked, "NumberOfVolumes"),
                    format(secondPath.value.empty()
                               ? _("There is a second component but no RelativePath2, so the page looks for it "
                                   "in the folder {0} beside the package.")
                               : _("There is a second component but no RelativePath2, so the page looks for it "
                                   "in the folder {0} beside the package, which is the value of another line."),
                           {quotedText(secondPath.value)}));
  }

  for (const CheckedVolume& volume : checked.volumes) {
    if (volume.volume.isMounted && whole.mode != kModeVolumes) {
      diagnostics.add("volumes-without-prompt", placeOfKey(checked, "NumberOfVolumes"),
                      format(whole.mode == kModeProductUpdater
                                 ? _("In this mode the page copies volume {0} from {1} without asking for the "
                                     "disc, so it is skipped silently.")
                                 : _("In this mode the page copies volume {0} from {1} without asking for the "
                                     "disc, so it is not found and the installation ends there."),
                             {std::to_string(volume.volume.number + 1), quotedText(volume.volume.root)}));
      break;
    }
  }
}

void checkSizes(const CheckedSet& checked, Diagnostics& diagnostics) {
  const AnnouncedSize& announced = checked.plan.announced;
  const bool hasComponent = checked.whole.editions.isOffered;
  const RealSizes real = checked.realSizes();
  if (checked.plan.attributes.isFilePresent()) {
    checkSizeIsGiven(checked, "TotalSizeMillionsBytes", announced.totalMillions, diagnostics);
    if (hasComponent) {
      checkSizeIsGiven(checked, "Component1SizeMillionsBytes", announced.componentMillions, diagnostics);
    }
  }
  checkSize(checked, "size-total", "TotalSizeMillionsBytes", announced.totalMillions, real.whole, diagnostics);
  if (hasComponent) {
    checkSize(checked, "size-component", "Component1SizeMillionsBytes", announced.componentMillions,
              real.component, diagnostics);
  }
}

void checkMachine(const CheckedSet& checked, Diagnostics& diagnostics) {
  const EditionPlan& editions = checked.plan.editions;
  if (editions.source == EditionSource::choiceFile) {
    diagnostics.add(
        "choice-file-stale", {kInstallTypeFile},
        format(_("This file remains from an earlier installation and contains {0}, so an installation whose "
                 "package writes none installs the {1} edition on this machine."),
               {quotedText(editions.choice), editions.allAreLite ? "Lite" : "Full"}));
  }
  if (!checked.isInstalledKnown) {
    return;
  }
  std::error_code error;
  const fs::path central = fs::path(checked.dataRoot) / checked.product.folderName;
  if (!fs::exists(central, error)) {
    diagnostics.add(
        "central-folder-missing", {checked.shown(central)},
        format(_("The user has no folder {0}, so the page shows that it was not found and installs nothing."),
               {checked.product.folderName}));
    return;
  }
  for (const CheckedVolume& volume : checked.volumes) {
    const fs::path destination = fs::path(checked.dataRoot) / volume.folderName;
    if (!volume.chosen.empty() && volume.volume.number == 0 && !fs::exists(destination, error)) {
      diagnostics.add("central-folder-missing", {checked.shown(destination)},
                      format(_("The user has no folder {0}, so the page copies nothing of it and reports that "
                               "only in the log."),
                             {volume.folderName}));
    }
  }
}

}  // namespace tavenhall
