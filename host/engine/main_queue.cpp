#include "host/engine/main_queue.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace tavenhall {

namespace {

// After so many, commands get their turn too.
constexpr int kBatchesInARow = 100;

// The main thread, on the same processor, needs a turn or two to serve a hand-off. Only then is it worth
// telling it that somebody waits.
constexpr int kTurns = 3;

}  // namespace

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
  bool isExpected = false;
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(&handOff);
    isExpected = isExpecting_;
  }
  if (!isExpected) {
    wakeUp_.signal();
  }
  for (int i = 0; i < kTurns && handOff.isDone.load() == 0; ++i) {
    std::this_thread::yield();
  }
  handOff.isDone.wait(0);
}

bool MainQueue::serve() noexcept {
  bool wasAny = false;
  for (int i = 0; i < kBatchesInARow && takeBatch(); ++i) {
    runBatch();
    wasAny = true;
    std::this_thread::yield();
  }
  expectNoMore();
  return wasAny;
}

bool MainQueue::takeBatch() {
  batch_.clear();
  const std::lock_guard lock(mutex_);
  batch_.swap(waiting_);
  return !batch_.empty();
}

void MainQueue::runBatch() {
  for (HandOff* handOff : batch_) {
    handOff->block(handOff->context);
    isExpecting_ = true;
    // Waking by address alone: the hand-off may be gone the moment it is done.
    std::atomic<int>& isDone = handOff->isDone;
    isDone.store(1);
    isDone.notify_one();
  }
}

void MainQueue::expectNoMore() {
  const std::lock_guard lock(mutex_);
  isExpecting_ = false;
  if (!waiting_.empty()) {
    wakeUp_.signal();
  }
}

}  // namespace tavenhall
