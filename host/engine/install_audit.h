#pragma once

#include "host/audit/audit.h"
#include "host/protocol/messages.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tavenhall {

// A copy that an install must make: which volume of which data folder, or of a system folder.
struct ExpectedCopy {
  std::string source;       // a path
  std::string alternative;  // the other folder that the page may copy instead; may be empty
  std::string destination;  // a path; another path of the same folder counts as well
  std::int32_t volume = 0;  // from 1; 0 for a system folder
};

// Whether a copy that the page has made is this one.
[[nodiscard]] bool isCopyOf(const event::CopyBegin& made, const ExpectedCopy& expected);

// The audit of one install: of each copy when it has ended, and at the end of whether every copy was made. One
// thread at a time.
class InstallAudit {
 public:
  // Called for each failure while a function runs, on one thread at a time, which need not be the caller's.
  using Report = std::function<void(const event::AuditFailure&)>;

  explicit InstallAudit(Report report);
  InstallAudit(const InstallAudit&) = delete;
  InstallAudit& operator=(const InstallAudit&) = delete;

  // The page has reported a failure of this file, by its path at the source. Call it before compare().
  void addRefusal(const std::string& source) { audit_.addRefusal(source); }

  // Compares a copy that has ended, whose volume must still be mounted. Takes the time of reading both trees'
  // names and sizes.
  event::Audit compare(const event::CopyBegin& copy);

  // Reports the failures, and each of these copies that was not compared as one.
  void requireCopies(const std::vector<ExpectedCopy>& expected,
                     const std::vector<event::AuditFailure>& failures);

  // Reports it as a failure if there is neither an installed file nor a failure so far.
  void requireFiles();

  // The sums of all copies, and the number of all failures.
  [[nodiscard]] const event::Audit& sums() const { return sums_; }

 private:
  void fail(const event::AuditFailure& failure);

  Report report_;
  std::vector<event::CopyBegin> copies_;
  event::Audit sums_;
  Audit audit_;
};

}  // namespace tavenhall
