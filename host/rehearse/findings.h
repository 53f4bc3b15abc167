#pragma once

#include "host/base/exit_status.h"
#include "host/base/stop_request.h"
#include "host/log/logged_run.h"
#include "host/rehearse/comparison.h"
#include "host/rehearse/rehearsal.h"
#include "host/rehearse/rehearsal_record.h"
#include "host/rehearse/stage.h"
#include "host/set/checked_set.h"

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace tavenhall {

// A copy from one volume of a pass, or into one of the system's folders.
struct CopiedVolume {
  std::int64_t number = 0;  // of the volume, from 0
  std::string folder;       // as the page sees it; empty: nothing was copied
  std::optional<double> seconds;
  std::int64_t bytes = 0;
  std::size_t files = 0;
  std::size_t folders = 0;
};

// A file of the set that was not installed.
struct LeftFile {
  std::string path;              // below the set's folder
  bool isData = false;           // it is in a data folder, or in an update's Library or Applications
  bool isOfFullEdition = false;  // the user has, or chose, the Lite edition
};

// The result of a rehearsal, for its report.
struct RehearsalFindings {
  std::string set;
  std::string sandbox;  // the sandbox's real path; reports show paths as the page sees them
  std::string log;      // the installation log's real path; empty: it was not kept
  std::string logText;
  InstallPlan plan;
  RealSizes realSizes;
  RehearsalRecord record;
  LoggedRun run;
  bool pageWasEntered = false;
  std::function<CheckVerdict()> check;  // empty: there is none
  std::vector<CopiedVolume> systemFolders;
  std::vector<CopiedVolume> volumes;
  std::vector<FileFate> files;
  std::vector<LeftFile> leftFiles;
  std::vector<std::string> unusedDiscs;  // mandatory discs that the page never asked for
  std::vector<std::string> goneFiles;    // of the set's data, that were there before; below the set's folder
  std::vector<std::string> extraFiles;   // in the sandbox, that no copy and no step of the host explains

  // A path in the sandbox, as the page sees it.
  [[nodiscard]] std::string insidePath(const std::string& path) const;
};

// Examines an installation on the stage: reads its log, compares the installed files with their sources, and
// finds the files of the set that were not installed. `record` is the driver's, `checked` the stage's set.
// Throws Stopped.
[[nodiscard]] RehearsalFindings gatherFindings(const Stage& stage, const CheckedSet& checked,
                                               const RehearsalRecord& record, const StopRequest& stop);

struct AnnouncedComparison {
  std::int64_t announced = 0;  // bytes; 0: not announced
  std::int64_t real = 0;       // bytes in the set
  bool isFar = false;          // differs by more than 5 %, or not announced
};

// The verdict on a rehearsal's findings, in the current language.
struct Verdict {
  std::vector<std::string> failures;     // one sentence each: what failed, and the errors of the check
  std::vector<std::string> diagnostics;  // one sentence each: installed, with a warning
  bool isInstalled = false;              // nothing failed but the check
  AnnouncedComparison whole;
  AnnouncedComparison firstComponent;  // if there is a Lite edition
  bool hasFirstComponent = false;

  [[nodiscard]] ExitStatus status() const;
};

[[nodiscard]] Verdict judge(const RehearsalFindings& findings);

// How far the bar came during the copies; its final value is always the full bar.
[[nodiscard]] RehearsalRecord::Bar volumeBar(const RehearsalRecord& record);

// The report of a rehearsal; docs/rehearsal.md describes each field.

// The report in the user's language, with a newline at the end. Long lists are shortened.
[[nodiscard]] std::string reportText(const RehearsalFindings& findings, const Verdict& verdict);

// The whole report in English. Call it while there is one thread.
[[nodiscard]] nlohmann::ordered_json reportJson(const RehearsalFindings& findings);

}  // namespace tavenhall
