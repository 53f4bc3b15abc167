#include "host/check/diagnostics.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace tavenhall {

namespace {

constexpr int kMostOfOneKind = 20;

const DiagnosticKind& kindNamed(std::string_view name) {
  const DiagnosticKind* kind = findDiagnosticKind(name);
  if (kind == nullptr) {
    throw std::logic_error("no diagnostic is called " + std::string(name));
  }
  return *kind;
}

}  // namespace

std::string Diagnostic::reference() const { return "docs/diagnostics.md#" + std::string(name()); }

bool Diagnostic::isSame(const Diagnostic& other) const {
  return kind == other.kind && place.file == other.place.file && place.line == other.place.line;
}

void Diagnostics::add(std::string_view name, Place place, std::string sentence,
                      std::optional<AttributesCorrection> correction) {
  const DiagnosticKind& kind = kindNamed(name);
  if (kept_[kind.name] == kMostOfOneKind) {
    ++more_[kind.name];
    return;
  }
  ++kept_[kind.name];
  diagnostics_.push_back(
      {&kind, kind.severity, std::move(place), std::move(sentence), std::move(correction), {}});
}

int Diagnostics::count(Severity severity) const {
  auto number = static_cast<int>(
      std::count_if(diagnostics_.begin(), diagnostics_.end(),
                    [severity](const Diagnostic& diagnostic) { return diagnostic.severity == severity; }));
  for (const auto& [name, count] : more_) {
    number += kindNamed(name).severity == severity ? count : 0;
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

void Diagnostics::moveBelow(std::size_t cause, const std::function<bool(const Diagnostic&)>& isConsequence) {
  std::vector<Diagnostic> kept;
  std::vector<Diagnostic> moved;
  std::size_t place = 0;
  for (std::size_t i = 0; i < diagnostics_.size(); ++i) {
    if (i == cause) {
      place = kept.size();
    }
    const bool isMoved = i != cause && isConsequence(diagnostics_[i]);
    (isMoved ? moved : kept).push_back(std::move(diagnostics_[i]));
  }
  Diagnostic& above = kept[place];
  for (Diagnostic& diagnostic : moved) {
    above.severity = std::max(above.severity, diagnostic.severity);
    std::vector<Diagnostic> below = std::exchange(diagnostic.consequences, {});
    above.consequences.push_back(std::move(diagnostic));
    std::move(below.begin(), below.end(), std::back_inserter(above.consequences));
  }
  diagnostics_ = std::move(kept);
}

void Diagnostics::keepOnly(const std::function<bool(std::string_view name)>& isKept) {
  std::erase_if(diagnostics_, [&](const Diagnostic& diagnostic) { return !isKept(diagnostic.name()); });
  std::erase_if(more_, [&](const auto& counted) { return !isKept(counted.first); });
}

}  // namespace tavenhall
