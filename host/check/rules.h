#pragma once

#include "context/install_rules.h"
#include "host/check/diagnostics.h"
#include "host/set/checked_set.h"

#include <optional>
#include <string>
#include <string_view>

// The rules of a check, one function for each topic, in the file that the comment names. They read only.
namespace tavenhall {

// key_rules: the attributes file: its place and bytes, its lines and keys
void checkAttributesFile(const CheckedSet& checked, Diagnostics& diagnostics);

// key_rules: its lines and keys
void checkKeys(const CheckedSet& checked, Diagnostics& diagnostics);

// Returns the key that a lookup finds by `word` (a text key in any case, a number key exactly), or null.
[[nodiscard]] const AttributesKey* knownKey(std::string_view word) noexcept;

// Returns the effect of a missing key on the user: a main clause for the end of a sentence that gives the
// cause.
[[nodiscard]] std::string missingKeyEffect(std::string_view key);

// value_rules: the values of the keys
void checkValues(const CheckedSet& checked, Diagnostics& diagnostics);

// value_rules: a Mode, in the line `piece`, instead of which each of `words` would leave the set without errors
void addUnfitMode(const CheckedSet& checked, const AttributesPiece& piece, const std::string& words,
                  AttributesCorrection correction, Diagnostics& diagnostics);

// volume_rules: combinations of settings, sizes and editions
void checkSettings(const CheckedSet& checked, Diagnostics& diagnostics);
void checkSizes(const CheckedSet& checked, Diagnostics& diagnostics);
void checkMachine(const CheckedSet& checked, Diagnostics& diagnostics);

// volume_rules: a NumberOfVolumes that counts all discs, if these are numbered from 1 on without a gap. Never a
// smaller one, since a disc may have been forgotten.
[[nodiscard]] std::optional<AttributesCorrection> volumeCorrection(const CheckedSet& checked);

// volume_rules: the discs and the data folders on them or beside the package
void checkDiscs(const CheckedSet& checked, Diagnostics& diagnostics);
void checkDataFolders(const CheckedSet& checked, Diagnostics& diagnostics);

// file_rules: links and paths that leave the set
void checkBoundary(const CheckedSet& checked, Diagnostics& diagnostics);

// file_rules: the effect of the copy on each file
void checkFiles(const CheckedSet& checked, Diagnostics& diagnostics);

// library_rules: the libraries of an update
void checkLibraries(const CheckedSet& checked, Diagnostics& diagnostics);

// bundle_rules: the plug-ins and applications of an update
void checkBundles(const CheckedSet& checked, Diagnostics& diagnostics);

// Whether a shell reads anything in the path but its letters, where no quotes are around it. Blanks do not
// count.
[[nodiscard]] bool hasShellCharacter(std::string_view path) noexcept;

// Whether the path is inside a bundle (a plug-in, an application, a framework). The bundle itself is not.
[[nodiscard]] bool isInBundle(std::string_view path) noexcept;

}  // namespace tavenhall
