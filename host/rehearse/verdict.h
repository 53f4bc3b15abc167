#pragma once

#include "host/base/exit_status.h"
#include "host/rehearse/findings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavenhall {

struct AnnouncedComparison {
  std::int64_t announced = 0;  // bytes; 0: nothing is announced
  std::int64_t real = 0;       // bytes that the set holds
  bool isFar = false;          // more than a twentieth apart, or not announced at all
};

// What a rehearsal's findings mean, in the language that texts are in at the moment.
struct Verdict {
  std::vector<std::string> failures;     // each a sentence: the install failed, or content differs
  std::vector<std::string> diagnostics;  // likewise: installed, yet worth a word
  AnnouncedComparison whole;
  AnnouncedComparison firstComponent;  // where there is a Lite edition
  bool hasFirstComponent = false;

  [[nodiscard]] ExitStatus status() const;
};

[[nodiscard]] Verdict judge(const RehearsalFindings& findings);

// How far the bar came while volumes were copied: its last setting is only the full bar of the end.
[[nodiscard]] RehearsalRecord::Bar volumeBar(const RehearsalRecord& record);

}  // namespace tavenhall
