#pragma once

#include "host/protocol/messages.h"
#include "host/ui/phase_line.h"
#include "host/ui/progress_meter.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tavenhall {

// What a running install does at one moment, for those who look at it once. The caller passes the time to every
// call that needs it. One thread.
class RunStatus {
 public:
  using Time = std::chrono::steady_clock::time_point;

  RunStatus(event::Attached run, Time now);

  void handle(const Event& event, Time now);

  // "Tessaphon: Disc 2 of 3: Tessaphon B - copying, 812.4 MB of 1.9 GB (41 %), about 5 min left", in the user's
  // language.
  [[nodiscard]] std::string line(Time now);

  // An object, newline included; docs/protocol.md lists its fields.
  [[nodiscard]] std::string json(Time now);

  // The alert that waits for an answer; null if none does, or if it is not the user who answers.
  [[nodiscard]] const event::Alert* prompt() const { return run_.takesAnswers && alert_ ? &*alert_ : nullptr; }

 private:
  event::Attached run_;
  PhaseLine phase_;
  std::optional<event::Phase> latestPhase_;
  ProgressMeter meter_;
  event::CopyState copy_;
  std::optional<event::Alert> alert_;
  std::int64_t failures_ = 0;  // which the page or an audit has reported
  bool isIdle_ = false;
};

}  // namespace tavenhall
