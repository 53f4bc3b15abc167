#pragma once

#include "host/manifest/manifest.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tavenhall {

// A file that is not as the manifest says.
struct VerifiedProblem {
  enum class Kind { missing, shorter, longer, different, notReadable };
  Kind kind = Kind::missing;
  std::size_t file = 0;  // of Manifest::files
  std::string detail;    // sizes, or the system's words; in English
};

struct VerificationResult {
  std::vector<VerifiedProblem> problems;  // in the order of the manifest
  std::vector<std::string> extraFiles;    // in the folders of the manifest, but not in it; sorted
  std::int64_t files = 0;                 // that are as the manifest says
  std::int64_t bytes = 0;                 // of these
};

// The number of problems of each volume that has one.
[[nodiscard]] std::map<std::int32_t, std::int64_t> problemsByVolume(const Manifest& manifest,
                                                                    const VerificationResult& result);

// The name of a problem in its public form.
[[nodiscard]] const char* problemName(VerifiedProblem::Kind kind);

// Where a file of the manifest is installed. `folder` holds the data folders.
[[nodiscard]] std::filesystem::path installedPath(const ManifestFile& file,
                                                  const std::filesystem::path& folder);

// Compares what is installed with the manifest: types, sizes, and the digest of every file. `lite`: a Lite
// edition, of which volumes of the full one alone are no part. `progress` as for digestFiles(). Reads only.
[[nodiscard]] VerificationResult verifyInstalled(const Manifest& manifest, const std::filesystem::path& folder,
                                                 bool lite,
                                                 const std::function<void(std::int64_t bytes)>& progress);

}  // namespace tavenhall
