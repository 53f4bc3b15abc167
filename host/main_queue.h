#pragma once

#include "platform/wake_up.h"

#include <mutex>
#include <thread>
#include <vector>

namespace tavenhall {

// Work that page threads hand to the main thread, in the order in which it comes. The thread that makes the
// queue is its main thread.
class MainQueue {
 public:
  explicit MainQueue(WakeUp& wakeUp) : wakeUp_(wakeUp) {}

  // Runs `block(context)` on the main thread and returns when it has run. Never from the main thread: that
  // ends the process, since it would wait for itself.
  void dispatchSync(void (*block)(void*), void* context) noexcept;

  // Runs what waits; whether there was anything. Main thread.
  bool serve() noexcept;

 private:
  struct HandOff;

  WakeUp& wakeUp_;
  const std::thread::id mainThread_ = std::this_thread::get_id();
  std::mutex mutex_;
  std::vector<HandOff*> waiting_;  // guarded by mutex_; each lies on its thread's stack
};

}  // namespace tavenhall
