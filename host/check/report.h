#pragma once

#include "host/check/check.h"

#include <filesystem>
#include <span>
#include <string>

// The results of a check as people and programs read them. Each text ends with a newline.
namespace tavenhall {

struct ReportStyle {
  int columns = 0;  // where lines are wrapped; 0: not at all
  bool hasColour = false;
  std::filesystem::path document;  // the file to link to from each name; empty: no links
};

// The plan and the diagnostics.
[[nodiscard]] std::string checkText(const CheckResult& result, const ReportStyle& style = {});

// "<place>: <severity>: <sentence> [<name>]", without a newline.
[[nodiscard]] std::string diagnosticLine(const Diagnostic& diagnostic);

// The diagnostics alone, with excerpts and remedies.
[[nodiscard]] std::string diagnosticsText(const CheckResult& result, const ReportStyle& style);

// One JSON object, or an array of them for several sets. Bytes that are not UTF-8 become replacement
// characters.
[[nodiscard]] std::string checkJson(std::span<const CheckResult> results);

// SARIF 2.1.0, for code hosts and editors.
[[nodiscard]] std::string checkSarif(std::span<const CheckResult> results);

// The commands by which a job of GitHub Actions shows an annotation: one line each.
[[nodiscard]] std::string checkGithub(std::span<const CheckResult> results);

}  // namespace tavenhall
