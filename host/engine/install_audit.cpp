#include "host/engine/install_audit.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tavenhall {

namespace {

struct ProblemName {
  AuditProblem problem;
  const char* name;
};

// As docs/protocol.md lists them.
constexpr std::array<ProblemName, 12> kProblemNames{{
    {AuditProblem::noDestination, "no-destination"},
    {AuditProblem::sameSource, "same-source"},
    {AuditProblem::notListed, "not-listed"},
    {AuditProblem::notReadable, "not-readable"},
    {AuditProblem::folderAsFile, "folder-as-file"},
    {AuditProblem::skipped, "skipped"},
    {AuditProblem::missing, "missing"},
    {AuditProblem::refused, "refused"},
    {AuditProblem::wrongType, "type"},
    {AuditProblem::wrongSize, "size"},
    {AuditProblem::sharedFile, "shared"},
    {AuditProblem::isSource, "link-to-source"},
}};

std::string nameOf(AuditProblem problem) {
  for (const ProblemName& row : kProblemNames) {
    if (row.problem == problem) {
      return row.name;
    }
  }
  return "";
}

std::string detailOf(const AuditFailure& failure) {
  if (failure.problem == AuditProblem::wrongSize) {
    return std::to_string(failure.destinationSize) + " of " + std::to_string(failure.sourceSize) + " bytes";
  }
  return failure.error != 0 ? std::strerror(failure.error) : "";
}

}  // namespace

bool isCopyOf(const event::CopyBegin& made, const ExpectedCopy& expected) {
  const auto isFromSource =
      [source = std::filesystem::path(made.source).lexically_normal()](const std::string& path) {
        return source == std::filesystem::path(path).lexically_normal();
      };
  std::error_code error;
  return made.volume == expected.volume &&
         (isFromSource(expected.source) || isFromSource(expected.alternative)) &&
         (made.destination.empty() ||  // a failure of its own
          made.destination == expected.destination ||
          std::filesystem::equivalent(made.destination, expected.destination, error));
}

InstallAudit::InstallAudit(Report report)
    : report_(std::move(report)), audit_([this](const AuditFailure& failure) {
        report_({nameOf(failure.problem), failure.source, failure.destination, copies_.back().volume,
                 detailOf(failure)});
      }) {}

event::Audit InstallAudit::compare(const event::CopyBegin& copy) {
  copies_.push_back(copy);
  const AuditCounts counts =
      audit_.compare(copy.source.c_str(), copy.destination.empty() ? nullptr : copy.destination.c_str());
  sums_.files += counts.files;
  sums_.folders += counts.folders;
  sums_.bytes += counts.bytes;
  sums_.skipped += counts.skipped;
  sums_.failures += counts.failures;
  return {copy.source,    copy.destination, copy.volume,    counts.files,
          counts.folders, counts.bytes,     counts.skipped, counts.failures};
}

void InstallAudit::requireCopies(const std::vector<ExpectedCopy>& expected,
                                 const std::vector<event::AuditFailure>& failures) {
  for (const ExpectedCopy& copy : expected) {
    const bool isMade = std::any_of(copies_.begin(), copies_.end(),
                                    [&copy](const event::CopyBegin& made) { return isCopyOf(made, copy); });
    if (!isMade) {
      fail({"not-copied", copy.source, copy.destination, copy.volume, ""});
    }
  }
  for (const event::AuditFailure& failure : failures) {
    fail(failure);
  }
}

void InstallAudit::requireFiles() {
  if (sums_.files == 0 && sums_.failures == 0) {
    const event::CopyBegin last = copies_.empty() ? event::CopyBegin{} : copies_.back();
    fail({"no-files", last.source, last.destination, last.volume, ""});
  }
}

void InstallAudit::fail(const event::AuditFailure& failure) {
  ++sums_.failures;
  report_(failure);
}

}  // namespace tavenhall
