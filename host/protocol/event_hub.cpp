#include "host/protocol/event_hub.h"

#include <algorithm>
#include <variant>

namespace tavenhall {

void EventHub::write(const Event& event) {
  const Lock lock(mutex_);
  if (first_ != nullptr) {
    first_->write(event);
  }
  keep(event);
  for (EventWriter* writer : attached_) {
    writer->write(event);
  }
}

void EventHub::keep(const Event& event) {
  const bool isProgress = std::holds_alternative<event::ProgressValue>(event);
  if (!isProgress && !std::holds_alternative<event::Status>(event)) {
    progress_.reset();
    status_.reset();
    past_.emplace_back(Clock::now(), event);
    return;
  }
  std::optional<std::size_t>& place = isProgress ? progress_ : status_;
  if (place) {
    past_[*place] = {Clock::now(), event};
  } else {
    place = past_.size();
    past_.emplace_back(Clock::now(), event);
  }
}

void EventHub::attach(EventWriter& writer, const event::Attached& attached) {
  const Lock lock(mutex_);
  const auto now = Clock::now();
  writer.write(attached);
  for (const auto& [time, event] : past_) {
    writer.write(event::Past{std::chrono::duration<double>(now - time).count()});
    writer.write(event);
  }
  writer.write(event::Present{});
  attached_.push_back(&writer);
}

void EventHub::detach(EventWriter& writer) {
  const Lock lock(mutex_);
  attached_.erase(std::remove(attached_.begin(), attached_.end(), &writer), attached_.end());
}

}  // namespace tavenhall
