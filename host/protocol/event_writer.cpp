#include "host/protocol/event_writer.h"

#include "host/base/child_process.h"
#include "host/protocol/json_form.h"

#include <utility>
#include <variant>

namespace tavenhall {

EventWriter::EventWriter(int descriptor, int interrupt)
    : descriptor_(descriptor), interrupt_(interrupt), thread_([this] { run(); }) {}

EventWriter::~EventWriter() { finish(); }

void EventWriter::write(const Event& event) {
  const Lock lock(mutex_);
  if (isReaderGone_ || isFinishing_ || isComplete_) {
    return;
  }
  isComplete_ = std::holds_alternative<event::Summary>(event);
  const bool wasIdle = !hasPending();
  const bool mayBeHeld =
      std::holds_alternative<event::ProgressValue>(event) || std::holds_alternative<event::Status>(event);
  append(event);
  if (wasIdle || (!mayBeHeld && !isUrgent_)) {
    isUrgent_ = isUrgent_ || !mayBeHeld;
    changed_.notifyAll();
  }
}

void EventWriter::append(const Event& event) {
  const bool isBehind = pending_.size() > kMostPending;
  if (isBehind && std::holds_alternative<event::ProgressValue>(event)) {
    latestProgress_ = encode(event);
    return;
  }
  if (const auto* status = std::get_if<event::Status>(&event)) {
    if (isBehind && status->text == latestStatus_) {
      return;
    }
    latestStatus_ = status->text;
  }
  pending_ += std::exchange(latestProgress_, {});
  pending_ += encode(event);
}

void EventWriter::run() {
  std::string batch;
  const Lock lock(mutex_);
  while (true) {
    while (!hasPending() && !isFinishing_) {
      changed_.wait(mutex_);
    }
    if (!hasPending()) {
      return;
    }
    const auto heldUntil = std::chrono::steady_clock::now() + kLongestHold;
    while (!isUrgent_ && !isFinishing_ && changed_.waitUntil(mutex_, heldUntil)) {
    }
    batch.clear();
    batch.swap(pending_);
    batch += std::exchange(latestProgress_, {});
    isUrgent_ = false;
    isWriting_ = true;
    mutex_.unlock();
    const bool isWritten = writeUnless(descriptor_, batch, interrupt_);
    mutex_.lock();
    isWriting_ = false;
    if (!isWritten) {
      isReaderGone_ = true;
      pending_.clear();
      latestProgress_.clear();
    }
    changed_.notifyAll();
  }
}

void EventWriter::finish() {
  {
    const Lock lock(mutex_);
    isFinishing_ = true;
    changed_.notifyAll();
  }
  if (thread_.joinable()) {
    thread_.join();
  }
}

void EventWriter::drain(std::chrono::milliseconds timeout) noexcept {
  const auto end = std::chrono::steady_clock::now() + timeout;
  const Lock lock(mutex_);
  isUrgent_ = true;
  changed_.notifyAll();
  while ((hasPending() || isWriting_) && changed_.waitUntil(mutex_, end)) {
  }
}

}  // namespace tavenhall
