#pragma once

#include "context/install_rules.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

// What an install will do, from what was read: the page acts on these, and a plan of an installer set is made
// by them. Pure. Some facts cost a read of the attributes file and a line in the log, so they are passed as
// functions, which are called once, in the order of the arguments, and only where the decision needs them. Any
// thread.
namespace tavenhall {

// ---- Editions ----

// Does the installation have a Lite and a Full edition? `readNumberOfVolumes()` gives what the attributes file
// says, `readPromptIsYes()` whether its LiteVsFullPrompt is "Yes", `countLibraries()` how many libraries an
// update carries.
//
// Required: the modes differ in what they ask. Two volumes alone mean two editions in modes 0 and 3, mode 2
// also wants the prompt, and mode 4 looks at what the update carries.
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

// Where editions are offered: does the choice file say which is installed? Else it is what the user has,
// library by library.
[[nodiscard]] constexpr bool choiceFileDecides(std::int32_t mode) noexcept {
  return mode != kModeProductUpdater;
}

// Where editions are offered: is only the first component installed? One choice, not 0 for Lite, where the
// choice file decides, else one for each library.
[[nodiscard]] inline bool allChoicesAreLite(std::span<const std::int32_t> choicesAreLite) noexcept {
  return std::all_of(choicesAreLite.begin(), choicesAreLite.end(), [](std::int32_t lite) { return lite != 0; });
}

// ---- Volumes ----

// The number of volumes of a pass; absurd where the attributes file says so (see volumeCountForNumber).
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
  asBefore,       // the root of the volume before
  mounted,        // volumeMountPath() of the volume's number
  optionalDisc,   // the mount path of VolumeRoot::disc
  relativePath,   // the package's folder and the attributes file's RelativePath
  relativePath2,  // the package's folder and the attributes file's RelativePath2
};

struct VolumeRoot {
  RootKind kind;
  const OptionalDisc* disc = nullptr;
};

// The root with which a pass begins.
[[nodiscard]] constexpr RootKind firstRoot(std::int32_t mode) noexcept {
  return mode == kModeVolumes ? RootKind::mounted : RootKind::relativePath;
}

// Where volume `number` (from 0) of a pass lies. `hasOptionalDiscs` is rootHasOptionalDiscs() of the root with
// which the pass began.
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

// Is the volume the second component of an update? Of that, only the folders of the libraries are copied that
// the user has in full.
[[nodiscard]] constexpr bool holdsLibrariesInFull(std::int32_t mode, std::int32_t number) noexcept {
  return mode == kModeProductUpdater && number == 1;
}

// ---- Passes ----

// The folders beside an update's package whose contents go into the system's folder of the same name.
inline constexpr std::array<const char*, 2> kSystemFolders{"/Library", "/Applications"};

// The data folders of an update's two passes; every other install has one pass, for the product's own.
inline constexpr std::array<const char*, 2> kUpdatePasses{"TANVO", "DOVA"};

// ---- The announced size ----

// Is Component1SizeMillionsBytes what is announced, rather than TotalSizeMillionsBytes?
[[nodiscard]] constexpr bool componentIsAnnounced(bool offersEditions, bool allAreLite) noexcept {
  return offersEditions && allAreLite;
}

// What is expected when nothing is announced.
inline constexpr std::int64_t kExpectedBytesWhenUnknown = 100000000;

}  // namespace tavenhall
