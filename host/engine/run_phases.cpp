#include "host/engine/run_phases.h"

#include <filesystem>

namespace tavenhall {

using Kind = event::Phase::Kind;

void RunPhases::beginDisc(const std::string& root, std::int32_t number, std::int32_t count, Time now) {
  end(now);
  phase_ = {};
  phase_.volume = number + 1;
  phase_.volumeCount = number > 0 ? count : 0;
  phase_.disc = std::filesystem::path(root).filename().string();
}

event::Phase RunPhases::beginCopy(std::int32_t volume, std::int32_t volumeCount, Time now) {
  if (volume != phase_.volume) {
    phase_.disc.clear();
  }
  phase_.volume = volume;
  phase_.volumeCount = volume > 0 ? volumeCount : 0;
  return begin(Kind::copying, now);
}

event::Phase RunPhases::beginWaiting(Time now) {
  const bool wasLooking = since_ && phase_.kind == Kind::looking;
  return begin(wasLooking ? Kind::notFound : Kind::waiting, now);
}

event::Phase RunPhases::begin(Kind kind, Time now, std::int64_t seconds) {
  end(now);
  phase_.kind = kind;
  phase_.seconds = seconds;
  since_ = now;
  return phase_;
}

void RunPhases::end(Time now) {
  event::Summary times;
  addTimes(times, now);
  copying_ = times.copyingSeconds;
  waiting_ = times.waitingSeconds;
  checking_ = times.checkingSeconds;
  since_.reset();
}

void RunPhases::addTimes(event::Summary& summary, Time now) const {
  summary.copyingSeconds += copying_;
  summary.waitingSeconds += waiting_;
  summary.checkingSeconds += checking_;
  if (!since_) {
    return;
  }
  const double seconds = std::chrono::duration<double>(now - *since_).count();
  switch (phase_.kind) {
    case Kind::waiting:
    case Kind::looking:
    case Kind::notFound: summary.waitingSeconds += seconds; break;
    case Kind::copying: summary.copyingSeconds += seconds; break;
    case Kind::checking: summary.checkingSeconds += seconds; break;
    case Kind::ejecting: break;
  }
}

}  // namespace tavenhall
