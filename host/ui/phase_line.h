#pragma once

#include "host/protocol/messages.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace tavenhall {

// The line that tells what an install does now: "Disc 2 of 3: Tessaphon B - copying". The caller passes the
// time to every call that needs it. One thread.
class PhaseLine {
 public:
  using Time = std::chrono::steady_clock::time_point;

  void set(const event::Phase& phase, Time now);
  void clear() { phase_.reset(); }

  // The line, and then shorter ones for less room. None before the first phase and after the last.
  [[nodiscard]] std::vector<std::string> texts(Time now) const;

  // A sentence or two for a user who does not know what to do now; empty where texts() is.
  [[nodiscard]] std::string explanation() const;

 private:
  std::optional<event::Phase> phase_;
  Time since_;
};

}  // namespace tavenhall
