#include "host/check/check.h"

#include "host/check/rules.h"
#include "host/check/spelling.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace tavenhall {

namespace {

CheckResult applyRules(CheckedSet checked) {
  CheckResult result{std::move(checked), {}};
  for (const auto rule :
       {checkSettings, checkAttributesFile, checkKeys, checkValues, checkSizes, checkMachine, checkDiscs,
        checkDataFolders, checkBoundary, checkFiles, checkLibraries, checkBundles}) {
    rule(result.checked, result.diagnostics);
  }
  result.diagnostics.sort();
  return result;
}

CheckedSet withAttributes(CheckRequest request, std::string bytes) {
  request.attributes = std::move(bytes);
  return openCheckedSet(request);
}

bool isIn(const Diagnostics& diagnostics, const Diagnostic& wanted) {
  return std::any_of(diagnostics.all().begin(), diagnostics.all().end(),
                     [&wanted](const Diagnostic& diagnostic) { return diagnostic.isSame(wanted); });
}

// What a mistake in the attributes file leads to: whatever is not there once it is corrected.
void groupConsequences(const CheckRequest& request, CheckResult& result) {
  constexpr int kMostCauses = 8;  // each takes another look at the set
  const std::string bytes(result.checked.plan.attributes.bytes());
  int causes = 0;
  for (std::size_t i = 0; i < result.diagnostics.all().size() && result.diagnostics.all().size() > 1; ++i) {
    const Diagnostic cause = result.diagnostics.all()[i];
    const bool isMistake = cause.place.line > 0 || !result.checked.plan.attributes.isFilePresent();
    if (!cause.correction || !isMistake || ++causes > kMostCauses) {
      continue;
    }
    const CheckResult without = applyRules(withAttributes(request, corrected(bytes, *cause.correction)));
    const std::size_t before = result.diagnostics.all().size();
    result.diagnostics.moveBelow(
        i, [&without](const Diagnostic& diagnostic) { return !isIn(without.diagnostics, diagnostic); });
    if (result.diagnostics.all().size() < before) {
      // It may have moved up, by those that were before it.
      const auto& all = result.diagnostics.all();
      i = static_cast<std::size_t>(
          std::find_if(all.begin(), all.end(),
                       [&cause](const Diagnostic& found) { return found.isSame(cause); }) -
          all.begin());
    }
  }
}

// A Mode with which the set would have no error and install more, where it has some.
void tryOtherModes(const CheckRequest& request, CheckResult& result) {
  const AttributesReading& attributes = result.checked.plan.attributes;
  const FoundText mode = attributes.findText("Mode", kModeSize);
  const bool isSpeltRight = std::none_of(
      result.diagnostics.all().begin(), result.diagnostics.all().end(), [](const Diagnostic& diagnostic) {
        return diagnostic.name() == "mode-misspelt" || diagnostic.name() == "mode-several";
      });
  if (!mode || mode.source != mode.key || !isSpeltRight ||
      result.diagnostics.exitStatus() != ExitStatus::failure) {
    return;
  }
  const std::optional<std::int64_t> installed = result.checked.realSizes().whole;
  std::string words;
  std::optional<AttributesCorrection> first;
  for (const char* word : {"InstallFromVolumes", "FullDownload", "DataUpdater", "TavenhallUpdater"}) {
    if (installModeForValue(word) == result.checked.plan.mode) {
      continue;
    }
    const AttributesCorrection correction = correctionOf(attributes, mode.key->parts.value, word);
    CheckedSet other = withAttributes(request, corrected(attributes.bytes(), correction));
    // The size first: it tells without a rule that most Modes are no better.
    if (other.realSizes().whole > installed &&
        applyRules(std::move(other)).diagnostics.exitStatus() != ExitStatus::failure) {
      words += (words.empty() ? "" : ", ") + std::string(word);
      first = first ? first : correction;
    }
  }
  if (first) {
    addUnfitMode(result.checked, *mode.key, words, *first, result.diagnostics);
    result.diagnostics.sort();
  }
}

// As safe as what the table calls so.
bool changesCaseAlone(const AttributesCorrection& correction, std::string_view bytes) {
  const std::string_view before = bytes.substr(correction.begin, correction.end - correction.begin);
  return before != correction.text && equalsIgnoringCase(before, correction.text);
}

// One at a time, and in the table's order: bytes before keys, keys before values, since the one may be the
// cause of the other. Null if there is none.
const AttributesCorrection* nextFix(const Diagnostics& diagnostics, std::string_view bytes) {
  for (const DiagnosticKind& kind : diagnosticKinds()) {
    for (const Diagnostic& diagnostic : diagnostics.all()) {
      if (diagnostic.name() == kind.name && diagnostic.correction &&
          (kind.isFixable || changesCaseAlone(*diagnostic.correction, bytes))) {
        return &*diagnostic.correction;
      }
    }
  }
  return nullptr;
}

}  // namespace

CheckResult checkSet(const CheckRequest& request) {
  CheckResult result = applyRules(openCheckedSet(request));
  tryOtherModes(request, result);
  groupConsequences(request, result);
  return result;
}

std::string fixedAttributes(const CheckRequest& request) {
  constexpr int kMostTurns = 32;
  CheckResult result = applyRules(openCheckedSet(request));
  std::string bytes(result.checked.plan.attributes.bytes());
  for (int turn = 0; turn < kMostTurns; ++turn) {
    const AttributesCorrection* correction = nextFix(result.diagnostics, bytes);
    if (correction == nullptr) {
      break;
    }
    bytes = corrected(bytes, *correction);
    result = applyRules(withAttributes(request, bytes));
  }
  return bytes;
}

}  // namespace tavenhall
