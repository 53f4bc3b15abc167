#pragma once

#include "host/manifest/manifest.h"

#include <filesystem>
#include <string>

namespace tavenhall {

// Puts a copy of `source` in the place of an installed file, or where it is missing, if the copy's bytes have
// the manifest's digest; until then the older file stays as it is. Makes missing folders. Returns what is
// wrong, in English; empty: it is done.
[[nodiscard]] std::string repairFile(const std::filesystem::path& source,
                                     const std::filesystem::path& installed, const ManifestFile& file);

}  // namespace tavenhall
