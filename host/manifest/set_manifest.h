#pragma once

#include "host/base/stop_request.h"
#include "host/manifest/manifest.h"
#include "host/set/checked_set.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

namespace tavenhall {

// Which files a set installs, before their digests are known.
struct SetFiles {
  Manifest manifest;                           // without digests
  std::vector<std::filesystem::path> sources;  // of manifest.files, in their order
  std::int64_t bytes = 0;                      // of all
};

// The files that the page installs of the set, in its full edition; where two volumes have a file of one path,
// the later one's. Throws UsageError where a volume is missing, or is an image that is not mounted.
[[nodiscard]] SetFiles filesOfSet(const CheckedSet& set);

// Computes the digests. `progress` and `stop` as for digestFiles(). Throws UsageError if a file cannot be read,
// or changes meanwhile, and Stopped.
void addDigests(SetFiles& files, const std::function<void(std::int64_t bytes)>& progress,
                const StopRequest* stop = nullptr);

// Writes the manifest beside the package, and to the top of each disc that is a folder its own part. Returns
// the files. Throws UsageError.
[[nodiscard]] std::vector<std::filesystem::path> writeManifests(const CheckedSet& set,
                                                                const Manifest& manifest);

}  // namespace tavenhall
