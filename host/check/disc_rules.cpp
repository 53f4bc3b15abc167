#include "host/check/rules.h"
#include "host/check/words.h"

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

void checkDisc(const CheckedSet& checked, const Disc& disc, Remarks& remarks) {
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
    remarks.add(
        "optional-disc-unreachable", place,
        "The page never asks for the optional disc " + inQuotes(disc.volumeName) + " with this product; " +
            (isExpected ? "it asks for " + inQuotes(expected) + " instead." : "its data is not installed."));
  } else if (isExpected) {
    remarks.add("disc-name", place,
                "The page asks for " + inQuotes(expected) + " here and does not take a disc that is called " +
                    inQuotes(disc.volumeName) + ", so it asks again without end.");
  } else if (disc.number > pass.volumeCount) {
    remarks.add("disc-surplus", place,
                "The page installs " + counted(std::max(pass.volumeCount, 0), "volume") +
                    " and never asks for this disc, so its data is not installed.");
  }
}

void checkVolumeOfDisc(const CheckedVolume& volume, Remarks& remarks) {
  const std::string number = std::to_string(volume.volume.number + 1);
  if (!volume.isThere) {
    if (!volume.volume.isOptional) {
      remarks.add("disc-missing", {"discs"},
                  "There is no disc " + number + ", so the page asks for " +
                      inQuotes(nameOfMount(volume.volume.root)) + " until somebody has one.");
    }
    return;
  }
  if (!volume.isListed) {
    remarks.add("image-not-read", {volume.shownRoot},
                "Nothing here can look into this image, so what is on the disc was not checked.");
  } else if (volume.chosen.empty()) {
    remarks.add("data-folder-missing", {volume.shownRoot},
                "The disc has neither a folder " + volume.folderName + " nor Mac OSX/" + volume.folderName +
                    ", so the page asks for it again without end.");
  }
}

void checkFolderOfVolume(const CheckedVolume& volume, Remarks& remarks) {
  if (volume.chosen.empty() || !volume.isListed) {
    return;
  }
  if (volume.hasPrimary && volume.hasAlternate) {
    const std::string start = volume.shownRoot == "." ? "" : volume.shownRoot + "/";
    remarks.add("both-folders", {start + "Mac OSX/" + volume.folderName},
                "The page takes the folder " + volume.folderName +
                    " at the root, so nothing of this one is installed.");
  }
  const auto& entries = volume.tree.entries();
  const bool isEmpty =
      std::all_of(entries.begin(), entries.end(), [](const TreeEntry& entry) { return entry.isHidden; });
  if (isEmpty && !volume.volume.librariesOnly) {
    remarks.add("data-folder-empty", {volume.shown()},
                volume.volume.isMounted
                    ? "The folder holds nothing to install: the page waits 15 seconds for it to "
                      "fill, and goes on."
                    : "The folder holds nothing to install, and the page goes on without a word.");
  }
}

}  // namespace

void checkDiscs(const CheckedSet& checked, Remarks& remarks) {
  const bool usesDiscs = std::any_of(checked.volumes.begin(), checked.volumes.end(),
                                     [](const CheckedVolume& volume) { return volume.volume.isMounted; });
  if (!usesDiscs) {
    if (!checked.set.discs.empty()) {
      remarks.add("discs-unused", {"discs"},
                  "In this mode the page takes its data from beside the package and never asks for a disc.");
    }
    return;
  }
  if (checked.whole.mode != kModeVolumes) {
    return;  // said of the settings
  }
  for (const std::filesystem::path& path : checked.set.notDiscs) {
    remarks.add(
        "disc-not-numbered", {checked.shown(path)},
        "This is no disc of the set: a disc is a folder, or a .squashfs or .iso image, named with a number "
        "of its own, a blank, and the volume's name.");
  }
  for (const Disc& disc : checked.set.discs) {
    checkDisc(checked, disc, remarks);
  }
}

void checkDataFolders(const CheckedSet& checked, Remarks& remarks) {
  bool isAnythingThere = !checked.systemFolders.empty();
  for (const CheckedVolume& volume : checked.volumes) {
    const bool isUpdate = checked.whole.mode == kModeProductUpdater;
    isAnythingThere = isAnythingThere || !volume.chosen.empty();
    if (checked.whole.mode == kModeVolumes) {
      checkVolumeOfDisc(volume, remarks);
    } else if (volume.chosen.empty() && !volume.volume.isMounted && !isUpdate) {
      remarks.add("data-folder-missing", {checked.shown(volume.volume.primary)},
                  "There is neither this folder nor " + inQuotes("Mac OSX/" + volume.folderName) +
                      " beside it, so the page says \"Files to be installed not found.\" and ends.");
    }
    checkFolderOfVolume(volume, remarks);
  }
  if (checked.whole.mode == kModeProductUpdater && !isAnythingThere) {
    remarks.add(
        "nothing-to-install", {checked.shown(checked.set.package)},
        "Beside the package there is no data folder, no Library and no Applications, so the page installs "
        "nothing and says that it is finished.");
  }
}

}  // namespace tavenhall
