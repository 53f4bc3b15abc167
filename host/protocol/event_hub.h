#pragma once

#include "host/base/mutex.h"
#include "host/protocol/event_writer.h"
#include "host/protocol/messages.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace tavenhall {

// Passes an engine's events to every frontend, and keeps those that a frontend needs that comes later: all but
// progress values and status lines, of which the latest between two other events stays. Never blocks on a
// reader. Any thread.
class EventHub {
 public:
  // `first` is the frontend that the run was started with, or null. The caller owns it, and it must live as
  // long as this object.
  explicit EventHub(EventWriter* first = nullptr) : first_(first) {}

  void write(const Event& event) EXCLUDES(mutex_);

  // Writes `attached`, the past and Present to `writer`, and from now on every event, until detach(). The
  // writer must live until then.
  void attach(EventWriter& writer, const event::Attached& attached) EXCLUDES(mutex_);
  void detach(EventWriter& writer) EXCLUDES(mutex_);

  // Whether anybody but later frontends sees the events.
  [[nodiscard]] bool hasFirst() const { return first_ != nullptr; }

 private:
  using Clock = std::chrono::steady_clock;

  void keep(const Event& event) REQUIRES(mutex_);

  EventWriter* const first_;
  Mutex mutex_;
  std::vector<EventWriter*> attached_ GUARDED_BY(mutex_);
  std::vector<std::pair<Clock::time_point, Event>> past_ GUARDED_BY(mutex_);
  // Where `past_` has them; none since the latest other event.
  std::optional<std::size_t> progress_ GUARDED_BY(mutex_);
  std::optional<std::size_t> status_ GUARDED_BY(mutex_);
};

}  // namespace tavenhall
