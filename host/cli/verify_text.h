#pragma once

#include "host/manifest/set_manifest.h"
#include "host/manifest/verification.h"

#include <filesystem>
#include <vector>

// The output of the commands that make manifests or compare with them.
namespace tavenhall {

// verifyInstalled(), with a line of progress on standard error where that is a terminal.
[[nodiscard]] VerificationResult verifyWithProgress(const Manifest& manifest,
                                                    const std::filesystem::path& folder, bool lite);

// Adds the digests and writes the manifests, with such a line too. Returns the files. Throws as addDigests()
// and writeManifests() do.
[[nodiscard]] std::vector<std::filesystem::path> writeManifestsWithProgress(const CheckedSet& set,
                                                                            SetFiles& files,
                                                                            const StopRequest* stop = nullptr);

// "Written: FILE" for each.
void printWritten(const std::vector<std::filesystem::path>& files);

// A line for each problem and each extra file, and what to insert for them.
void printProblems(const Manifest& manifest, const VerificationResult& result);

// The last line: whether everything is as the manifest says.
void printVerdict(const VerificationResult& result);

}  // namespace tavenhall
