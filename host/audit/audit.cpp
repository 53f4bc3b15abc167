#include "host/audit/audit.h"

#include "host/audit/tree_comparison.h"

#include <algorithm>
#include <sys/stat.h>

namespace tavenhall {

AuditCounts& AuditCounts::operator+=(const AuditCounts& other) {
  files += other.files;
  folders += other.folders;
  bytes += other.bytes;
  skipped += other.skipped;
  failures += other.failures;
  return *this;
}

AuditCounts Audit::compare(const char* source, const char* destination) {
  ++copies_;
  if (destination == nullptr) {
    report_({AuditProblem::noDestination, source, ""});
    return {.failures = 1};
  }
  AuditCounts counts;
  std::uint64_t listing = 0;
  for (ComparedTree& compared : TreeComparison(refused_, report_, copies_).run(source, destination)) {
    counts += compared.counts;
    listing += compared.listing;
    installed_.insert(installed_.end(), compared.installed.begin(), compared.installed.end());
    std::move(compared.suspects.begin(), compared.suspects.end(), std::back_inserter(suspects_));
  }
  counts.failures += reportSharedFiles();
  struct stat top {};
  if (stat(source, &top) == 0) {
    // The number of a device is used again for the next disc, so the content must be the same too.
    const CopiedFolder copied{identityOf(top), listing};
    const bool isKnown = std::any_of(copied_.begin(), copied_.end(), [&copied](const CopiedFolder& earlier) {
      return earlier.folder == copied.folder && earlier.listing == copied.listing;
    });
    if (isKnown) {
      report_({AuditProblem::sameSource, source, destination});
      ++counts.failures;
    }
    copied_.push_back(copied);
  }
  return counts;
}

// Two names of one file are right only if they have one source, or if one is a later volume's file of the same
// path. Later volumes may bring the second name, so each call examines all suspects again.
std::int64_t Audit::reportSharedFiles() {
  if (suspects_.empty()) {
    return 0;
  }
  const auto byFile = [](const Installed& one, const Installed& other) { return one.file < other.file; };
  std::sort(installed_.begin(), installed_.end(), byFile);
  std::int64_t failures = 0;
  for (Suspect& suspect : suspects_) {
    const auto [first, last] = std::equal_range(installed_.begin(), installed_.end(), suspect.entry, byFile);
    const bool isShared = std::any_of(first, last, [&suspect](const Installed& other) {
      return other.path != suspect.entry.path && other.source != suspect.entry.source;
    });
    if (isShared && !suspect.isReported) {
      suspect.isReported = true;
      report_({AuditProblem::sharedFile, suspect.source, suspect.destination});
      ++failures;
    }
  }
  return failures;
}

}  // namespace tavenhall
