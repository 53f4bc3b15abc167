#pragma once

#include "host/manifest/verification.h"

#include <filesystem>

// The text output of a comparison with a manifest, for the commands that make one.
namespace tavenhall {

// verifyInstalled(), with a line of progress on standard error where that is a terminal.
[[nodiscard]] VerificationResult verifyWithProgress(const Manifest& manifest,
                                                    const std::filesystem::path& folder, bool lite);

// A line for each problem and each extra file, and what to insert for them.
void printProblems(const Manifest& manifest, const VerificationResult& result);

// The last line: whether everything is as the manifest says.
void printVerdict(const VerificationResult& result);

}  // namespace tavenhall
