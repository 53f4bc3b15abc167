#pragma once

#include "host/base/exit_status.h"
#include "host/rehearse/findings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavenhall {

struct AnnouncedComparison {
  std::int64_t announced = 0;  // bytes; 0: not announced
  std::int64_t real = 0;       // bytes in the set
  bool isFar = false;          // differs by more than 5 %, or not announced
};

// The verdict on a rehearsal's findings, in the current language.
struct Verdict {
  std::vector<std::string> failures;     // one sentence each: the installation failed, or contents differ
  std::vector<std::string> diagnostics;  // one sentence each: installed, with a warning
  AnnouncedComparison whole;
  AnnouncedComparison firstComponent;  // if there is a Lite edition
  bool hasFirstComponent = false;

  [[nodiscard]] ExitStatus status() const;
};

[[nodiscard]] Verdict judge(const RehearsalFindings& findings);

// How far the bar came during the copies; its final value is always the full bar.
[[nodiscard]] RehearsalRecord::Bar volumeBar(const RehearsalRecord& record);

}  // namespace tavenhall
