#include "host/base/text.h"
#include "host/check/rules.h"
#include "host/check/spelling.h"

#include <algorithm>

namespace tavenhall {

namespace {

constexpr std::string_view kVolumes = "/Volumes/";

std::string nameOfMount(std::string_view path) {
  return std::string(path.substr(std::min(kVolumes.size(), path.size())));
}

// Is the disc one of those that the page has prompts with a Skip for?
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
               std::max(pass.volumeCount, 0)));
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
        format(_("The disc has neither a folder {0} nor Mac OSX/{0}, so the page asks for it forever."),
               {volume.folderName}));
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
      diagnostics.add("data-folder-missing", {checked.shown(volume.volume.primary)},
                      format(_("Neither this folder nor {0} beside it exists, so the page shows \"Files to be "
                               "installed not found.\" and ends."),
                             {quotedText("Mac OSX/" + volume.folderName)}));
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
