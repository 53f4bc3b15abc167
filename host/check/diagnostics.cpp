#include "host/check/diagnostics.h"

#include "host/base/text.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>

namespace tavenhall {

namespace {

constexpr int kMostOfOneKind = 20;

constexpr DiagnosticKind kKinds[] = {
    // The whole set
    {"outside-set", Severity::error},
    // The attributes file
    {"attributes-missing", Severity::warning},
    {"attributes-twice", Severity::warning},
    {"byte-order-mark", Severity::error},
    {"nul-byte", Severity::error},
    {"line-too-long", Severity::error},
    {"carriage-return", Severity::warning},
    {"text-not-utf8", Severity::warning},
    // Its keys
    {"key-unknown", Severity::warning},
    {"key-misspelt", Severity::error},
    {"key-case", Severity::error},
    {"key-too-late", Severity::error},
    {"key-twice", Severity::warning},
    {"key-joined", Severity::error},
    {"separator-missing", Severity::error},
    {"value-missing", Severity::error},
    // Its values
    {"mode-missing", Severity::warning},
    {"mode-misspelt", Severity::error},
    {"mode-several", Severity::warning},
    {"value-cut", Severity::error},
    {"number-invalid", Severity::error},
    {"number-trailing-text", Severity::warning},
    {"number-out-of-range", Severity::error},
    {"trailing-blank", Severity::error},
    {"prompt-value", Severity::warning},
    {"prompt-without-effect", Severity::warning},
    {"placeholder-missing", Severity::note},
    {"placeholder-repeated", Severity::warning},
    {"path-backslash", Severity::error},
    {"second-path-missing", Severity::error},
    {"volumes-without-prompt", Severity::error},
    // Sizes
    {"size-missing", Severity::warning},
    {"size-total", Severity::warning},
    {"size-component", Severity::warning},
    // Discs
    {"disc-missing", Severity::error},
    {"disc-name", Severity::error},
    {"disc-surplus", Severity::warning},
    {"disc-not-numbered", Severity::warning},
    {"discs-unused", Severity::warning},
    {"optional-disc-unreachable", Severity::error},
    {"image-not-read", Severity::note},
    // Data folders
    {"data-folder-missing", Severity::error},
    {"data-folder-empty", Severity::warning},
    {"both-folders", Severity::warning},
    {"nothing-to-install", Severity::error},
    // Files
    {"hidden-file", Severity::warning},
    {"hidden-litter", Severity::note},
    {"file-skipped", Severity::warning},
    {"link-copied", Severity::warning},
    {"link-to-folder", Severity::error},
    {"link-broken", Severity::error},
    {"special-file", Severity::error},
    {"not-readable", Severity::error},
    {"path-too-long", Severity::error},
    {"case-clash", Severity::error},
    {"file-differs", Severity::error},
    // Updates
    {"too-many-libraries", Severity::error},
    {"library-not-listed", Severity::warning},
    {"folder-left-out", Severity::warning},
    {"library-not-a-folder", Severity::warning},
    {"mirel-pack-unseen", Severity::warning},
    {"plugin-unknown", Severity::warning},
    {"product-in-path", Severity::warning},
    {"app-path-blank", Severity::warning},
    {"app-path-shell", Severity::error},
    {"signature-path-shell", Severity::error},
    {"bundle-permissions", Severity::note},
    {"bundle-link", Severity::warning},
    // What lies on the user's machine
    {"choice-file-stale", Severity::warning},
    {"central-folder-missing", Severity::error},
    // The set
    {"package-path", Severity::error},
    {"product-assumed", Severity::note},
};

const DiagnosticKind& kindNamed(std::string_view name) {
  const auto* found = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [name](const DiagnosticKind& kind) { return kind.name == name; });
  if (found == std::end(kKinds)) {
    throw std::logic_error("no remark is called " + std::string(name));
  }
  return *found;
}

}  // namespace

const char* severityWord(Severity severity) {
  switch (severity) {
    case Severity::note: return N_("note");
    case Severity::warning: return N_("warning");
    case Severity::error: break;
  }
  return N_("error");
}

std::span<const DiagnosticKind> diagnosticKinds() { return kKinds; }

std::string Diagnostic::reference() const { return "docs/attributes.md#" + std::string(name); }

void Diagnostics::add(std::string_view name, Place place, std::string sentence) {
  const DiagnosticKind& kind = kindNamed(name);
  if (kept_[kind.name] == kMostOfOneKind) {
    ++more_[kind.name];
    return;
  }
  ++kept_[kind.name];
  diagnostics_.push_back({kind.name, kind.severity, std::move(place), std::move(sentence)});
}

int Diagnostics::count(Severity severity) const {
  int number = 0;
  for (const auto& counts : {kept_, more_}) {
    for (const auto& [name, count] : counts) {
      number += kindNamed(name).severity == severity ? count : 0;
    }
  }
  return number;
}

ExitStatus Diagnostics::exitStatus() const {
  if (count(Severity::error) > 0) {
    return ExitStatus::failure;
  }
  return count(Severity::warning) > 0 ? ExitStatus::warnings : ExitStatus::success;
}

void Diagnostics::sort() {
  std::stable_sort(
      diagnostics_.begin(), diagnostics_.end(), [](const Diagnostic& one, const Diagnostic& other) {
        return std::tie(one.place.file, one.place.line) < std::tie(other.place.file, other.place.line);
      });
}

}  // namespace tavenhall
