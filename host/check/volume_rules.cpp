#include "host/base/text.h"
#include "host/check/rules.h"
#include "host/check/spelling.h"
#include "host/set/disc_medium.h"
#include "platform/installer_pane.h"

#include <algorithm>
#include <cstdlib>

namespace tavenhall {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kMillion = 1000000;

Place placeOfKey(const CheckedSet& checked, const char* key) {
  return checked.attributesPlace(checked.plan.attributes.findNumber(key).key);
}

std::string_view digitsOf(std::string_view value) {
  return value.substr(0, std::min(value.find_first_not_of("0123456789"), value.size()));
}

// Compares a size in the file with the real one.
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
  const AttributesReading& attributes = checked.plan.attributes;
  const std::int64_t right = millionsToAnnounce(*real);
  diagnostics.add(
      diagnostic, checked.attributesPlace(found.key, digitsOf(found.key->parts.value)),
      format(sentence, {key, megabytesText(announced), megabytesText(*real), std::to_string(percent)}),
      correctionOf(attributes, digitsOf(found.key->parts.value), std::to_string(right)));
}

void checkSizeIsGiven(const CheckedSet& checked, const char* key, std::int64_t millions,
                      std::optional<std::int64_t> real, Diagnostics& diagnostics) {
  const FoundNumber found = checked.plan.attributes.findNumber(key);
  if (millions == 0 && (!found || found.source == found.key)) {
    diagnostics.add("size-missing", checked.attributesPlace(found.key),
                    format(_("The key {0} is missing, so {1}."), {key, missingKeyEffect(key)}),
                    real && *real > 0 ? std::optional(numberCorrection(checked.plan.attributes, key,
                                                                       millionsToAnnounce(*real)))
                                      : std::nullopt);
  }
}

}  // namespace

std::optional<AttributesCorrection> volumeCorrection(const CheckedSet& checked) {
  const auto& discs = checked.set.discs;
  const auto count = static_cast<std::int64_t>(discs.size());
  const bool isComplete = !discs.empty() && discs.back().number == count && checked.set.notDiscs.empty();
  if (!isComplete || count <= std::max<std::int64_t>(1, checked.plan.numberOfVolumes) ||
      checked.whole.mode != kModeVolumes || checked.whole.editions.isOffered) {
    return std::nullopt;
  }
  return numberCorrection(checked.plan.attributes, "NumberOfVolumes", count);
}

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
    diagnostics.add(
        "product-assumed", {checked.shown(package)},
        format(_("No product was given, so the set was checked for {0}."), {checked.product.pluginName}));
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
    checkSizeIsGiven(checked, "TotalSizeMillionsBytes", announced.totalMillions, real.whole, diagnostics);
    if (hasComponent) {
      checkSizeIsGiven(checked, "Component1SizeMillionsBytes", announced.componentMillions, real.component,
                       diagnostics);
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

namespace {

constexpr std::string_view kVolumes = "/Volumes/";

std::string nameOfMount(std::string_view path) {
  return std::string(path.substr(std::min(kVolumes.size(), path.size())));
}

// Whether the page has a prompt with a Skip button for this disc.
bool isOptionalName(const std::string& volumeName) {
  constexpr std::int32_t kMostVolumes = 32;  // beyond the table's end
  for (std::int32_t number = 0; number < kMostVolumes; ++number) {
    const OptionalDisc* disc = optionalDiscForVolume(number);
    if (disc != nullptr && nameOfMount(disc->mountPath) == volumeName) {
      return true;
    }
  }
  return false;
}

bool areOptionalDiscsReached(const InstallPlan& plan) {
  return std::any_of(plan.passes[0].volumes.begin(), plan.passes[0].volumes.end(),
                     [](const PlannedVolume& volume) { return volume.isOptional; });
}

std::string withSuggestion(const std::string& sentence, const std::vector<std::string>& names,
                           const std::string& wanted) {
  for (const std::string& name : names) {
    if (name != wanted && isMisspellingOf(name, wanted)) {
      return join(sentence, format(_("Rename {0} to {1}."), {quotedText(name), quotedText(wanted)}));
    }
  }
  return sentence;
}

void checkDisc(const CheckedSet& checked, const Disc& disc, Diagnostics& diagnostics) {
  const PlannedPass& pass = checked.whole.passes[0];
  const Place place{checked.shown(disc.path)};
  const auto volume =
      std::find_if(pass.volumes.begin(), pass.volumes.end(),
                   [&disc](const PlannedVolume& planned) { return planned.number == disc.number - 1; });
  const bool isExpected = volume != pass.volumes.end();
  const std::string expected = isExpected ? nameOfMount(volume->root) : std::string();
  if (isExpected && expected == disc.volumeName) {
    return;
  }
  if (isOptionalName(disc.volumeName) && !areOptionalDiscsReached(checked.whole)) {
    diagnostics.add(
        "optional-disc-unreachable", place,
        format(
            isExpected
                ? _("The page never asks for the optional disc {0} with this product; it asks for {1} instead.")
                : _("The page never asks for the optional disc {0} with this product; its data is not "
                    "installed."),
            {quotedText(disc.volumeName), quotedText(expected)}));
  } else if (isExpected) {
    diagnostics.add(
        "disc-name", place,
        format(_("The page asks for {0} here and does not accept a disc named {1}, so it asks forever."),
               {quotedText(expected), quotedText(disc.volumeName)}));
  } else if (disc.number > pass.volumeCount) {
    diagnostics.add(
        "disc-surplus", place,
        plural("The page installs {0} volume and never asks for this disc, so its data is not installed.",
               "The page installs {0} volumes and never asks for this disc, so its data is not installed.",
               std::max(pass.volumeCount, 0)),
        volumeCorrection(checked));
  }
}

void checkDiscSize(const CheckedSet& checked, const Disc& disc, Diagnostics& diagnostics) {
  if (checked.set.discSize.empty()) {
    return;
  }
  const DiscMedium medium = discMedium(checked.set.discSize);
  std::error_code error;
  std::int64_t bytes = disc.isImage ? static_cast<std::int64_t>(fs::file_size(disc.path, error)) : 0;
  std::int64_t room = medium.capacity;
  if (!disc.isImage) {
    const DiscSpace space = medium.space(0);
    room = space.capacity;
    const SourceTree tree = SourceTree::ofFolder(disc.path);
    for (const TreeEntry& entry : tree.entries()) {
      bytes += entry.kind == EntryKind::folder ? folderBytesOnDisc(entry.path, space)
                                               : fileBytesOnDisc(entry.path, entry.size, space);
    }
  }
  if (bytes > room) {
    diagnostics.add(
        "disc-too-large", {checked.shown(disc.path)},
        format(_("The disc has {0} with what its file system takes, but there is room for {1} ({2})."),
               {megabytesText(bytes), megabytesText(room), medium.name}));
  }
}

void checkVolumeOfDisc(const CheckedVolume& volume, Diagnostics& diagnostics) {
  if (!volume.isThere) {
    if (!volume.volume.isOptional) {
      diagnostics.add(
          "disc-missing", {"discs"},
          format(_("There is no disc {0}, so the page asks for {1} forever."),
                 {std::to_string(volume.volume.number + 1), quotedText(nameOfMount(volume.volume.root))}));
    }
    return;
  }
  if (!volume.isListed) {
    diagnostics.add("image-not-read", {volume.shownRoot},
                    _("No tool here can open this image, so its contents were not checked."));
  } else if (volume.chosen.empty()) {
    diagnostics.add(
        "data-folder-missing", {volume.shownRoot},
        withSuggestion(
            format(_("The disc has neither a folder {0} nor Mac OSX/{0}, so the page asks for it forever."),
                   {volume.folderName}),
            volume.top, volume.folderName));
  }
}

void checkFolderOfVolume(const CheckedVolume& volume, Diagnostics& diagnostics) {
  if (volume.chosen.empty() || !volume.isListed) {
    return;
  }
  if (volume.hasPrimary && volume.hasAlternate) {
    const std::string start = volume.shownRoot == "." ? "" : volume.shownRoot + "/";
    diagnostics.add("both-folders", {start + "Mac OSX/" + volume.folderName},
                    format(_("The page uses the folder {0} at the root, so nothing in this one is installed."),
                           {volume.folderName}));
  }
  const auto& entries = volume.tree.entries();
  const bool isEmpty =
      std::all_of(entries.begin(), entries.end(), [](const TreeEntry& entry) { return entry.isHidden; });
  if (isEmpty && !volume.volume.librariesOnly) {
    diagnostics.add(
        "data-folder-empty", {volume.shown()},
        volume.volume.isMounted
            ? _("The folder contains nothing to install. The page waits 15 seconds for the disc and continues.")
            : _("The folder contains nothing to install, and the page skips it silently."));
  }
}

}  // namespace

void checkDiscs(const CheckedSet& checked, Diagnostics& diagnostics) {
  const bool usesDiscs = std::any_of(checked.volumes.begin(), checked.volumes.end(),
                                     [](const CheckedVolume& volume) { return volume.volume.isMounted; });
  if (!usesDiscs) {
    if (!checked.set.discs.empty()) {
      diagnostics.add(
          "discs-unused", {"discs"},
          _("In this mode the page copies the data from beside the package and never asks for a disc."));
    }
    return;
  }
  if (checked.whole.mode != kModeVolumes) {
    return;  // said of the settings
  }
  for (const std::filesystem::path& path : checked.set.notDiscs) {
    diagnostics.add("disc-not-numbered", {checked.shown(path)},
                    _("This is not a disc of the set: a disc is a folder, or a .squashfs or .iso image, whose "
                      "name is a unique number, a blank and the volume's name."));
  }
  for (const Disc& disc : checked.set.discs) {
    checkDisc(checked, disc, diagnostics);
    checkDiscSize(checked, disc, diagnostics);
  }
}

void checkDataFolders(const CheckedSet& checked, Diagnostics& diagnostics) {
  bool isAnythingThere = !checked.systemFolders.empty();
  for (const CheckedVolume& volume : checked.volumes) {
    const bool isUpdate = checked.whole.mode == kModeProductUpdater;
    isAnythingThere = isAnythingThere || !volume.chosen.empty();
    if (checked.whole.mode == kModeVolumes) {
      checkVolumeOfDisc(volume, diagnostics);
    } else if (volume.chosen.empty() && !volume.volume.isMounted && !isUpdate) {
      diagnostics.add(
          "data-folder-missing", {checked.shown(volume.volume.primary)},
          withSuggestion(
              format(_("Neither this folder nor {0} beside it exists, so the page shows \"Files to be "
                       "installed not found.\" and ends."),
                     {quotedText("Mac OSX/" + volume.folderName)}),
              volume.top, volume.folderName));
    }
    checkFolderOfVolume(volume, diagnostics);
  }
  if (checked.whole.mode == kModeProductUpdater && !isAnythingThere) {
    diagnostics.add("nothing-to-install", {checked.shown(checked.set.package)},
                    _("Beside the package there is no data folder, no Library and no Applications, so the page "
                      "installs nothing and reports success."));
  }
}

}  // namespace tavenhall
