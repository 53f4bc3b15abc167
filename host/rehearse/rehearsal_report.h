#pragma once

#include "host/exit_status.h"
#include "host/log/run_story.h"
#include "host/rehearse/comparison.h"
#include "host/rehearse/rehearsal_record.h"
#include "host/set/install_plan.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace tavenhall {

// Everything that a rehearsal found out, for its report.
struct RehearsalFindings {
  std::string set;
  std::string sandbox;  // where the sandbox lies; paths in it are shown as the page sees them
  std::string log;      // the installation log's path, outside; empty: none was kept
  InstallPlan plan;
  RehearsalRecord record;
  RunStory story;
  bool pageWasEntered = false;
  ExitStatus engineStatus = ExitStatus::failure;
  std::vector<CopiedFolder> folders;
  std::vector<FileFate> files;
  std::vector<std::string> notCopied;    // files of the data folders that were copied, as the page saw them
  std::vector<std::string> unusedDiscs;  // never asked for, although they would have been of use
};

struct AnnouncedComparison {
  std::int64_t announced = 0;  // bytes; 0: nothing is announced
  std::int64_t real = 0;       // bytes
  bool isFar = false;          // more than a twentieth apart, or not announced at all
};

struct RehearsalReport {
  std::vector<std::string> failures;  // each a sentence: the install failed, or content differs
  std::vector<std::string> remarks;   // likewise: installed, yet worth a word
  AnnouncedComparison whole;
  AnnouncedComparison firstComponent;  // where there is a Lite edition
  bool hasFirstComponent = false;

  [[nodiscard]] ExitStatus status() const;
};

[[nodiscard]] RehearsalReport judge(const RehearsalFindings& findings);

[[nodiscard]] std::string reportText(const RehearsalFindings& findings, const RehearsalReport& report);
[[nodiscard]] nlohmann::ordered_json reportJson(const RehearsalFindings& findings,
                                                const RehearsalReport& report);

}  // namespace tavenhall
