#include "host/main_queue.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace tavenhall {

struct MainQueue::HandOff {
  void (*block)(void*);
  void* context;
  std::atomic<int> isDone = 0;
};

void MainQueue::dispatchSync(void (*block)(void*), void* context) noexcept {
  if (std::this_thread::get_id() == mainThread_) {
    std::fputs("tavinstall: a hand-off to the main thread was made from the main thread\n", stderr);
    std::abort();
  }
  HandOff handOff{block, context};
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(&handOff);
  }
  wakeUp_.signal();
  handOff.isDone.wait(0);
}

bool MainQueue::serve() noexcept {
  std::vector<HandOff*> batch;
  {
    const std::lock_guard lock(mutex_);
    batch.swap(waiting_);
  }
  for (HandOff* handOff : batch) {
    handOff->block(handOff->context);
    // Waking by address alone: the hand-off may be gone the moment it is done.
    std::atomic<int>& isDone = handOff->isDone;
    isDone.store(1);
    isDone.notify_one();
  }
  return !batch.empty();
}

}  // namespace tavenhall
