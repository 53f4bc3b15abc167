#pragma once

#include "context/bounded_text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// What the page decides, without asking anybody: pure rules over texts and numbers, without state, files
// or log. The page acts on them, and a check of an installer set explains by them. Any thread.
namespace tavenhall {

inline constexpr std::size_t kPathSize = 8192;        // the page's own path buffers, bytes
inline constexpr std::size_t kDisplayNameSize = 256;  // a library's name as the user reads it, bytes
inline constexpr std::size_t kModeSize = 64;          // a mode as the attributes file names it, bytes
inline constexpr int kLibrarySlots = 50;              // libraries that one update may carry

// ---- The InstallationAttributes file's keys ----

enum class KeyKind { text, number };

struct AttributesKey {
  const char* name;
  KeyKind kind;
  const char* fallback;  // what a missing text key reads as; null where nothing stands in for it
};

// Every key, in the order in which the documentation lists them.
[[nodiscard]] std::span<const AttributesKey> attributesKeys() noexcept;

// The built-in text for a missing key; null where there is none. `key` as attributesKeys() spells it.
[[nodiscard]] const char* fallbackText(std::string_view key) noexcept;

// ---- The install mode ----

inline constexpr std::int32_t kModeDataUpdater = 0;
inline constexpr std::int32_t kModeVolumes = 2;  // also when no mode is given
inline constexpr std::int32_t kModeOtherRelative = 3;
inline constexpr std::int32_t kModeProductUpdater = 4;

[[nodiscard]] std::int32_t installModeForValue(std::string_view value) noexcept;

// ---- Editions ----

// The value of LiteVsFullPrompt, in any case.
[[nodiscard]] bool promptIsYes(std::string_view value) noexcept;

// The first line of the choice file, its last character gone.
[[nodiscard]] bool choiceIsLite(std::string_view choice) noexcept;

// Is a library folder's name that of a Mirel Pack ("Mirel Packs/" and the library's name)? A name without
// a '/' is an ordinary library's, whatever it contains.
[[nodiscard]] bool isMirelPack(std::string_view folderName) noexcept;

// What follows the first '/' of a Mirel Pack's folder name.
[[nodiscard]] std::string_view mirelPackLibrary(std::string_view folderName) noexcept;

using DisplayName = BoundedText<kDisplayNameSize>;

// A library's name as the detected-type alert shows it, cut to its buffer.
[[nodiscard]] DisplayName libraryDisplayName(std::string_view folderName) noexcept;

struct EditionWords {
  const char* edition;  // "Lite"
  const char* phrase;   // "a Lite"
};
[[nodiscard]] EditionWords editionWords(std::string_view folderName, bool isLite) noexcept;

// The extension, after the last '.', is exactly "db".
[[nodiscard]] bool isDatabaseName(std::string_view name) noexcept;

// A Lite edition's databases are stubs of under 1000 bytes. `size` in bytes, as a 32-bit number.
[[nodiscard]] bool databaseSizeIsLite(std::int32_t size) noexcept;

// ---- Volumes ----

// Two volumes are what makes an installation offer two editions.
[[nodiscard]] bool volumesOfferEditions(std::int64_t numberOfVolumes) noexcept;

// The number of volumes that the attributes file asks for: at least 1 where the number is below 2, else
// the number's lower 32 bits (so an absurd one may come out below 1).
[[nodiscard]] std::int32_t volumeCountForNumber(std::int64_t numberOfVolumes) noexcept;

// Writes the mount path at which volume `number` (from 0) of a product is expected.
void volumeMountPath(std::string_view pluginName, std::int32_t number, BoundedText<kPathSize>& path) noexcept;

struct OptionalDisc {
  const char* title;
  const char* mountPath;
};

// A source root that begins so has optional discs from volume 2 on.
[[nodiscard]] bool rootHasOptionalDiscs(std::string_view root) noexcept;

// The optional disc that volume `number` (from 0) is, or null.
[[nodiscard]] const OptionalDisc* optionalDiscForVolume(std::int32_t number) noexcept;

// ---- Sizes and the bar ----

// Bytes announced by a number of millions; an absurd number wraps.
[[nodiscard]] std::int64_t announcedBytes(std::int64_t millions) noexcept;

// The bar's unit is 1024 bytes.
[[nodiscard]] double barMaximumForBytes(std::int64_t bytes) noexcept;

// Where the bar stands when it starts again from the left each time it is full. A multiple of the maximum
// stays full; a maximum that is not positive leaves the value alone.
[[nodiscard]] double wrappedBarValue(double value, double maximum) noexcept;

// ---- Names ----

// Names that begin with a full stop are never listed, counted or copied.
[[nodiscard]] bool isHiddenName(std::string_view name) noexcept;

}  // namespace tavenhall
