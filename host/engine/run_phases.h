#pragma once

#include "host/protocol/messages.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tavenhall {

// Follows what an install does, from what its page tells its host, and measures how long. Functions that begin
// a phase return it, for those who are to be told. The caller passes the time to every call. Not for several
// threads at a time.
class RunPhases {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // A new install begins.
  void start() { phase_ = {}; }

  // The page turns to a volume: `number` from 0, of `count`, with the disc at `root`. It may not know the count
  // before it has read the first disc.
  void beginDisc(const std::string& root, std::int32_t number, std::int32_t count, Time now);

  // `volume` is 0 for a folder beside the package.
  event::Phase beginCopy(std::int32_t volume, std::int32_t volumeCount, Time now);

  event::Phase beginChecking(Time now) { return begin(event::Phase::Kind::checking, now); }
  event::Phase beginLooking(std::int64_t seconds, Time now) {
    return begin(event::Phase::Kind::looking, now, seconds);
  }
  event::Phase beginEjecting(Time now) { return begin(event::Phase::Kind::ejecting, now); }

  // An alert is up; after a look at the disc that means that it was not found.
  event::Phase beginWaiting(Time now);

  // What was begun last is over.
  void end(Time now);

  // The disc of the volume that the page has turned to; empty where it comes from no disc.
  [[nodiscard]] const std::string& disc() const { return phase_.disc; }

  // Adds the times so far to those of the summary.
  void addTimes(event::Summary& summary, Time now) const;

 private:
  event::Phase begin(event::Phase::Kind kind, Time now, std::int64_t seconds = 0);

  event::Phase phase_;         // the latest
  std::optional<Time> since_;  // none when it is over
  double copying_ = 0.0;       // seconds, without the phase that lasts
  double waiting_ = 0.0;
  double checking_ = 0.0;
};

}  // namespace tavenhall
