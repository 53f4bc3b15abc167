#pragma once

#include "context/install_rules.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

// Decides what an install will do, from what was read. The page acts on these functions, and the host plans an
// installer set with them. Pure. Some facts cost a read of the attributes file and a line in the log, so they
// are passed as functions, which are called at most once, in the order of the arguments, and only if the
// decision needs them. Any thread.
namespace tavenhall {

// ---- Editions ----

// Whether the installation has a Lite and a Full edition. `readNumberOfVolumes()` returns the number in the
// attributes file, `readPromptIsYes()` whether its LiteVsFullPrompt is "Yes", `countLibraries()` the number of
// libraries in an update.
//
// Required: the modes differ. In modes 0 and 3 two volumes mean two editions, mode 2 also needs the prompt, and
// mode 4 counts the libraries in the update.
template <typename NumberOfVolumes, typename PromptIsYes, typename LibraryCount>
[[nodiscard]] bool editionsAreOffered(std::int32_t mode, NumberOfVolumes readNumberOfVolumes,
                                      PromptIsYes readPromptIsYes, LibraryCount countLibraries) {
  switch (mode) {
    case kModeDataUpdater:
    case kModeOtherRelative: return volumesOfferEditions(readNumberOfVolumes());
    case kModeVolumes: return volumesOfferEditions(readNumberOfVolumes()) && readPromptIsYes();
    case kModeProductUpdater: return countLibraries() > 0;
    default: return false;
  }
}

// Whether the choice file decides the edition, where editions are offered. Otherwise what the user has decides,
// for each library.
[[nodiscard]] constexpr bool choiceFileDecides(std::int32_t mode) noexcept {
  return mode != kModeProductUpdater;
}

// Whether only the first component is installed, where editions are offered. There is one choice, not 0 for
// Lite, if the choice file decides, otherwise one for each library.
[[nodiscard]] inline bool allChoicesAreLite(std::span<const std::int32_t> choicesAreLite) noexcept {
  return std::all_of(choicesAreLite.begin(), choicesAreLite.end(), [](std::int32_t lite) { return lite != 0; });
}

// ---- Volumes ----

// Returns the number of volumes in a pass; it may be absurd (see volumeCountForNumber).
template <typename NumberOfVolumes>
[[nodiscard]] std::int32_t volumeCount(std::int32_t mode, bool offersEditions, bool allAreLite,
                                       NumberOfVolumes readNumberOfVolumes) {
  if (offersEditions && allAreLite) {
    return 1;
  }
  if (offersEditions && mode != kModeVolumes) {
    return 2;
  }
  return volumeCountForNumber(readNumberOfVolumes());
}

enum class RootKind {
  asBefore,       // the root of the previous volume
  mounted,        // volumeMountPath() of the volume's number
  optionalDisc,   // the mount path of VolumeRoot::disc
  relativePath,   // the package's folder and the attributes file's RelativePath
  relativePath2,  // the package's folder and the attributes file's RelativePath2
};

struct VolumeRoot {
  RootKind kind;
  const OptionalDisc* disc = nullptr;
};

// Returns the root with which a pass begins.
[[nodiscard]] constexpr RootKind firstRoot(std::int32_t mode) noexcept {
  return mode == kModeVolumes ? RootKind::mounted : RootKind::relativePath;
}

// Returns the root of volume `number` (from 0) of a pass. `hasOptionalDiscs` is rootHasOptionalDiscs() of the
// root with which the pass began.
[[nodiscard]] inline VolumeRoot volumeRoot(std::int32_t number, std::int32_t mode, bool offersEditions,
                                           bool allAreLite, bool hasOptionalDiscs) noexcept {
  if (number == 0) {
    return {firstRoot(mode)};
  }
  if (number == 1 && offersEditions && mode != kModeVolumes) {
    return {allAreLite ? RootKind::asBefore : RootKind::relativePath2};
  }
  const OptionalDisc* disc = hasOptionalDiscs ? optionalDiscForVolume(number) : nullptr;
  return {disc != nullptr ? RootKind::optionalDisc : RootKind::mounted, disc};
}

// Whether the volume is the second component of an update. The page copies only the library folders of it that
// the user has as Full editions.
[[nodiscard]] constexpr bool holdsLibrariesInFull(std::int32_t mode, std::int32_t number) noexcept {
  return mode == kModeProductUpdater && number == 1;
}

// ---- Passes ----

// The folders beside an update's package that are copied into the system's folder of the same name.
inline constexpr std::array<const char*, 2> kSystemFolders{"/Library", "/Applications"};

// The data folders of an update's two passes; every other install has one pass, for the product's own.
inline constexpr std::array<const char*, 2> kUpdatePasses{"TANVO", "DOVA"};

// ---- The announced size ----

// Whether Component1SizeMillionsBytes is announced, not TotalSizeMillionsBytes.
[[nodiscard]] constexpr bool componentIsAnnounced(bool offersEditions, bool allAreLite) noexcept {
  return offersEditions && allAreLite;
}

// The expected size in bytes if the attributes file announces none.
inline constexpr std::int64_t kExpectedBytesWhenUnknown = 100000000;

}  // namespace tavenhall
