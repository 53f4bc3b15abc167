#include "host/engine/main_queue.h"

#include <atomic>
#include <csignal>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <thread>
#include <vector>

namespace tavenhall::test {
namespace {

// Hands a block over from the calling thread.
template <typename Block>
void handOver(MainQueue& queue, Block block) {
  queue.dispatchSync([](void* context) { (*static_cast<Block*>(context))(); }, &block);
}

void waitForSignal(const WakeUp& wakeUp) {
  pollfd source{wakeUp.descriptor(), POLLIN, 0};
  ASSERT_EQ(poll(&source, 1, 60000), 1);
}

class Queue : public testing::Test {
 protected:
  WakeUp wakeUp;
  MainQueue queue{wakeUp};

  // Serves until as many hand-offs have run as were expected.
  void serve(const std::atomic<int>& hasRun, int expected) {
    while (hasRun < expected) {
      waitForSignal(wakeUp);
      wakeUp.clear();
      queue.serve();
    }
  }
};

TEST_F(Queue, AHandOffRunsOnTheMainThreadAndReturnsWhenItHasRun) {
  std::atomic<int> hasRun = 0;
  std::thread::id ranOn;
  bool hadRunWhenItReturned = false;
  std::thread worker([&] {
    handOver(queue, [&] {
      ranOn = std::this_thread::get_id();
      ++hasRun;
    });
    hadRunWhenItReturned = hasRun == 1;
  });
  serve(hasRun, 1);
  worker.join();

  EXPECT_EQ(ranOn, std::this_thread::get_id());
  EXPECT_TRUE(hadRunWhenItReturned);
}

TEST_F(Queue, NothingRunsBeforeItIsServed) {
  std::atomic<int> hasRun = 0;
  std::thread worker([&] { handOver(queue, [&] { ++hasRun; }); });
  waitForSignal(wakeUp);
  EXPECT_EQ(hasRun, 0);
  EXPECT_TRUE(queue.serve());
  worker.join();

  EXPECT_EQ(hasRun, 1);
}

TEST_F(Queue, ServingAnEmptyQueueSaysSo) { EXPECT_FALSE(queue.serve()); }

TEST_F(Queue, HandOffsOfOneThreadRunInItsOrder) {
  constexpr int kCount = 200;
  std::atomic<int> hasRun = 0;
  std::vector<int> order;
  std::thread worker([&] {
    for (int i = 0; i < kCount; ++i) {
      handOver(queue, [&, i] {
        order.push_back(i);
        ++hasRun;
      });
    }
  });
  serve(hasRun, kCount);
  worker.join();

  std::vector<int> expected(kCount);
  for (int i = 0; i < kCount; ++i) {
    expected[static_cast<std::size_t>(i)] = i;
  }
  EXPECT_EQ(order, expected);
}

TEST_F(Queue, HandOffsOfSeveralThreadsAllRunOneAtATime) {
  constexpr int kThreads = 4;
  constexpr int kEach = 50;
  std::atomic<int> hasRun = 0;
  int unguarded = 0;  // a race here is what the sanitizers would tell of
  std::vector<std::thread> workers;
  for (int thread = 0; thread < kThreads; ++thread) {
    workers.emplace_back([&] {
      for (int i = 0; i < kEach; ++i) {
        handOver(queue, [&] {
          ++unguarded;
          ++hasRun;
        });
      }
    });
  }
  serve(hasRun, kThreads * kEach);
  for (std::thread& worker : workers) {
    worker.join();
  }

  EXPECT_EQ(unguarded, kThreads * kEach);
}

TEST_F(Queue, WhatIsHandedOverWhileABlockRunsWaitsItsTurn) {
  std::atomic<int> hasRun = 0;
  std::atomic<bool> firstRuns = false;
  std::vector<std::string> order;
  std::thread second;
  std::thread first([&] {
    handOver(queue, [&] {
      second = std::thread([&] { handOver(queue, [&] { order.emplace_back("second"), ++hasRun; }); });
      waitForSignal(wakeUp);  // the second one has handed over
      order.emplace_back("first");
      ++hasRun;
    });
  });
  while (hasRun < 2) {
    if (queue.serve()) {
      continue;
    }
    std::this_thread::yield();
  }
  first.join();
  second.join();

  EXPECT_EQ(order, (std::vector<std::string>{"first", "second"}));
}

TEST_F(Queue, AHandOffFromTheMainThreadEndsTheProcess) {
  EXPECT_EXIT(handOver(queue, [] {}), testing::KilledBySignal(SIGABRT),
              "a hand-off to the main thread was made from the main thread");
}

}  // namespace
}  // namespace tavenhall::test
