#pragma once

#include "host/log/logged_run.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What a person at support needs of a run first. The log does not record everything that can go wrong: a log
// without failures is no proof that every file is installed. What the host has noted of the run is one.
namespace tavenhall {

enum class RunState {
  good,          // it has ended, and the log has no failure of it
  failed,        // it has failures, or nothing was begun
  notEnded,      // the log breaks off
  stillRunning,  // the log breaks off, and the install runs or may run
};

// Failures of one kind and reason in one folder.
struct FailureGroup {
  std::string kind;
  std::string reason;              // the system's words; may be empty
  std::string disc;                // the name of the disc that the files come from; empty: from no disc
  std::string folder;              // theirs, at the source, or at the target where that cannot be written
  RunFailure example;              // the first of them
  std::vector<std::string> first;  // names, at most kMostNames
  std::int64_t count = 0;

  static constexpr std::size_t kMostNames = 3;
};

// In the order in which they came; of the failures that the run has kept.
[[nodiscard]] std::vector<FailureGroup> groupsOf(const LoggedRun& run);

// "80 files: cannot read /Volumes/A/TANVO (001.db, 002.db, 003.db, and 77 more)"; a single failure as
// failureText() has it.
[[nodiscard]] std::string groupText(const FailureGroup& group);

// How a run ended, as the host has noted it besides the log.
enum class RunEnding {
  unknown,
  ended,     // by itself; the log may be cut
  diskFull,  // by itself, and the log's disk was full then
  stopped,   // by the user or a signal
  killed,    // it did not come to its end
};

struct RunNote {
  RunEnding ending = RunEnding::unknown;
  std::optional<bool> isInstalled;  // by the audits; none where that is not known
  std::int64_t files = 0;           // that they found installed
  std::string reason;               // why not everything is installed, in English
};

[[nodiscard]] RunState stateOf(const LoggedRun& run, bool mayStillRun, const RunNote& note);

// What happened, the likely cause and the remedy: two or three sentences.
[[nodiscard]] std::string headlineText(const LoggedRun& run, RunState state, const RunNote& note);

}  // namespace tavenhall
