#pragma once

#include "platform/host_system.h"

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace tavenhall {

// Work that page threads hand to the main thread, in the order in which it comes. The thread that makes the
// queue is its main thread.
class MainQueue {
 public:
  // The wake-up is signalled when something waits to be served.
  explicit MainQueue(WakeUp& wakeUp) : wakeUp_(wakeUp) {}

  // Runs `block(context)` on the main thread and returns when it has run. Never from the main thread: that
  // ends the process, since it would wait for itself.
  void dispatchSync(void (*block)(void*), void* context) noexcept;

  // Runs what waits; whether there was anything. A page's thread often has more to hand over the moment it has
  // its answer, so it gets one turn, and what it hands over then is run too. Main thread.
  bool serve() noexcept;

 private:
  struct HandOff;

  bool takeBatch();
  void runBatch();
  void expectNoMore();

  WakeUp& wakeUp_;
  const std::thread::id mainThread_ = std::this_thread::get_id();
  std::mutex mutex_;
  std::vector<HandOff*> waiting_;          // guarded by mutex_; each lies on its thread's stack
  std::vector<HandOff*> batch_;            // main thread
  std::atomic<bool> isExpecting_ = false;  // the main thread will look again without being signalled
};

}  // namespace tavenhall
