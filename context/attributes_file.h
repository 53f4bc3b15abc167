#pragma once

#include "platform/visibility.h"

#include <cstdio>

namespace tavenhall {

// Opens the InstallationAttributes file for reading: ".InstallationAttributes.dat" beside the installer
// package, or else one folder above it. The caller closes the stream. Returns null if there is no such file.
// The first call in the process logs what it found. Any thread.
extern "C" TAVENHALL_EXPORT std::FILE* getInstallationAttributesFile(void) noexcept;

}  // namespace tavenhall
