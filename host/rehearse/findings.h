#pragma once

#include "host/log/logged_run.h"
#include "host/rehearse/comparison.h"
#include "host/rehearse/rehearsal_record.h"
#include "host/rehearse/stage.h"
#include "host/rehearse/stop_request.h"
#include "host/set/checked_set.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavenhall {

// What was copied from one volume of a pass, or into one of the system's folders.
struct CopiedVolume {
  std::int64_t number = 0;  // of the volume, from 0
  std::string folder;       // as the page saw it; empty: nothing was copied
  std::optional<double> seconds;
  std::int64_t bytes = 0;
  std::size_t files = 0;
  std::size_t folders = 0;
};

// A file of the set that nothing installed.
struct LeftFile {
  std::string path;              // below the set's folder
  bool isData = false;           // it lies in a data folder, or in what an update brings for the system's
  bool isOfFullEdition = false;  // the user has, or chose, the Lite edition
};

// Everything that a rehearsal found out, for its report.
struct RehearsalFindings {
  std::string set;
  std::string sandbox;  // where the sandbox lies; paths in it are shown as the page sees them
  std::string log;      // the installation log's path, outside; empty: it was not kept
  std::string logText;
  InstallPlan plan;
  RealSizes realSizes;
  RehearsalRecord record;
  LoggedRun run;
  bool pageWasEntered = false;
  std::vector<CopiedVolume> systemFolders;
  std::vector<CopiedVolume> volumes;
  std::vector<FileFate> files;
  std::vector<LeftFile> leftFiles;
  std::vector<std::string> unusedDiscs;  // never asked for, although they would have been of use

  // A path in the sandbox, as the page sees it.
  [[nodiscard]] std::string insidePath(const std::string& path) const;
};

// Looks at what an install on the stage has left: its log, what was installed against its sources, and what of
// the set was not installed. `record` was kept meanwhile, and `checked` is the stage's set. Throws Stopped.
[[nodiscard]] RehearsalFindings gatherFindings(const Stage& stage, const CheckedSet& checked,
                                               const RehearsalRecord& record, const StopRequest& stop);

}  // namespace tavenhall
