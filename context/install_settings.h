#pragma once

#include "platform/visibility.h"

#include <cstdint>

// The settings in the InstallationAttributes file. Each getter looks up one key in the file, at every call, and
// logs what it found. For a missing file or key it returns the built-in text and logs that; no getter fails.
// Every buffer holds at least kAttributesValueSize bytes. Any thread.
namespace tavenhall {

extern "C" {

TAVENHALL_EXPORT void getInstallDataTitle(char* text) noexcept;

// One "%s" in these two takes the destination path. The completion getter ignores its first argument.
TAVENHALL_EXPORT void getInstallingDataString(char* text) noexcept;
TAVENHALL_EXPORT void getCompletionMessage(int ignored, char* text) noexcept;

// The source folders, relative to the package's folder. The second has no built-in text: if it is missing, the
// buffer keeps what the lookup left in it.
TAVENHALL_EXPORT void getRelativePath(char* text) noexcept;
TAVENHALL_EXPORT void getRelativePath2(char* text) noexcept;

TAVENHALL_EXPORT void getPreparationTitle(char* text) noexcept;
TAVENHALL_EXPORT void getLiteVsFullPromptText(char* text) noexcept;

// Required spelling: other pages of the installer call these names.
TAVENHALL_EXPORT void getAlternateNameForLiteInstalltion(char* text) noexcept;
TAVENHALL_EXPORT void getAlternateNameForFullInstalltion(char* text) noexcept;

// 0 data updater, 2 install from volumes (also without a file or a mode), 3 any other package-relative
// install, 4 product updater or service installation.
TAVENHALL_EXPORT int getInstallationMode(void) noexcept;

// 1 if the folder can be opened and has an entry whose name does not begin with '.', else 0.
TAVENHALL_EXPORT int folderExistsAndHasContents(const char* path) noexcept;

}  // extern "C"

// Whether "RelativePath2" is in the file. Fills `text` and logs like getRelativePath2.
[[nodiscard]] bool findRelativePath2(char* text) noexcept;

// "NumberOfVolumes", with a log line.
[[nodiscard]] std::int64_t readNumberOfVolumes() noexcept;

}  // namespace tavenhall
