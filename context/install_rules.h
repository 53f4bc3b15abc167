#pragma once

#include "context/bounded_text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// Pure rules over texts and numbers, without state, files or log. The page acts on them, and the host checks an
// installer set with them. Any thread.
namespace tavenhall {

inline constexpr std::size_t kPathSize = 8192;        // the page's own path buffers, bytes
inline constexpr std::size_t kDisplayNameSize = 256;  // a library's display name, bytes
inline constexpr std::size_t kModeSize = 64;          // an install mode's name in the attributes file, bytes
inline constexpr int kLibrarySlots = 50;              // libraries in one update

// ---- The InstallationAttributes file's keys ----

enum class KeyKind { text, number };

struct AttributesKey {
  const char* name;
  KeyKind kind;
  const char* fallback;  // the text if the key is missing; null if there is none
};

// Every key, in the order of the documentation.
[[nodiscard]] std::span<const AttributesKey> attributesKeys() noexcept;

// Returns the built-in text for a missing key; null if there is none. `key` as spelled in attributesKeys().
[[nodiscard]] const char* fallbackText(std::string_view key) noexcept;

// ---- The install mode ----

inline constexpr std::int32_t kModeDataUpdater = 0;
inline constexpr std::int32_t kModeVolumes = 2;  // also when no mode is given
inline constexpr std::int32_t kModeOtherRelative = 3;
inline constexpr std::int32_t kModeProductUpdater = 4;

[[nodiscard]] std::int32_t installModeForValue(std::string_view value) noexcept;

// ---- Editions ----

// Whether the value of LiteVsFullPrompt is "Yes", ignoring case.
[[nodiscard]] bool promptIsYes(std::string_view value) noexcept;

// Whether the first line of the choice file, without its last character, chooses the Lite edition.
[[nodiscard]] bool choiceIsLite(std::string_view choice) noexcept;

// Whether a library folder's name is that of a Mirel Pack ("Mirel Packs/" and the library's name). A name
// without a '/' is an ordinary library's, whatever it contains.
[[nodiscard]] bool isMirelPack(std::string_view folderName) noexcept;

// Returns what follows the first '/' in a Mirel Pack's folder name.
[[nodiscard]] std::string_view mirelPackLibrary(std::string_view folderName) noexcept;

using DisplayName = BoundedText<kDisplayNameSize>;

// A library's name in the detected-type alert, truncated to its buffer.
[[nodiscard]] DisplayName libraryDisplayName(std::string_view folderName) noexcept;

struct EditionWords {
  const char* edition;  // "Lite"
  const char* phrase;   // "a Lite"
};
[[nodiscard]] EditionWords editionWords(std::string_view folderName, bool isLite) noexcept;

// Whether the extension, after the last '.', is exactly "db".
[[nodiscard]] bool isDatabaseName(std::string_view name) noexcept;

// A Lite edition's databases are stubs of under 1000 bytes. `size` in bytes, as a 32-bit number.
[[nodiscard]] bool databaseSizeIsLite(std::int32_t size) noexcept;

// ---- Volumes ----

// Whether an installation with this number of volumes offers two editions.
[[nodiscard]] bool volumesOfferEditions(std::int64_t numberOfVolumes) noexcept;

// Returns the number of volumes for the number in the attributes file: 1 if that is below 2, otherwise its
// lower 32 bits (so an absurd number may give less than 1).
[[nodiscard]] std::int32_t volumeCountForNumber(std::int64_t numberOfVolumes) noexcept;

// Writes the expected mount path of volume `number` (from 0) of a product.
void volumeMountPath(std::string_view pluginName, std::int32_t number, BoundedText<kPathSize>& path) noexcept;

struct OptionalDisc {
  const char* title;
  const char* mountPath;
};

// A source root with this prefix has optional discs from volume 2 on.
[[nodiscard]] bool rootHasOptionalDiscs(std::string_view root) noexcept;

// Returns the optional disc for volume `number` (from 0), or null.
[[nodiscard]] const OptionalDisc* optionalDiscForVolume(std::int32_t number) noexcept;

// ---- Sizes and the bar ----

// Returns the bytes for a number of millions; an absurd number wraps.
[[nodiscard]] std::int64_t announcedBytes(std::int64_t millions) noexcept;

// The bar's unit is 1024 bytes.
[[nodiscard]] double barMaximumForBytes(std::int64_t bytes) noexcept;

// Returns the position of a bar that starts again from the left each time it is full. A multiple of the maximum
// stays full; a maximum that is not positive leaves the value unchanged.
[[nodiscard]] double wrappedBarValue(double value, double maximum) noexcept;

// ---- Names ----

// Whether the name begins with a full stop. The page never lists, counts or copies such entries.
[[nodiscard]] bool isHiddenName(std::string_view name) noexcept;

}  // namespace tavenhall
