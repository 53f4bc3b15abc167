#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <vector>

// The page's threads under test, their virtual clock and their dispatches: what the recording host and the
// recording platform share. A dispatch and a sleep look at the same question, who is busy, so one lock
// guards both.
namespace tavenhall::test {

class PageThreads {
 public:
  // The one of this process; never destroyed, since threads may outlive main.
  static PageThreads& instance();

  // Is the calling thread one that the page has detached?
  [[nodiscard]] static bool isPageThread();

  // Starts `body` on a new page thread; false when the system has none. It counts as busy before this returns.
  [[nodiscard]] bool start(std::function<void()> body);

  [[nodiscard]] std::size_t alive() const;

  // Sleeps on the virtual clock. The test's own thread serves dispatches meanwhile, as the main thread.
  void sleep(unsigned seconds);
  [[nodiscard]] std::uint64_t now() const;

  // Has `block` run on the test's thread, and returns when it has run. For page threads.
  void dispatch(std::function<void()> block);

  // Until every page thread has ended; serves dispatches if asked to. False after the limit.
  [[nodiscard]] bool waitForEnd(bool servesDispatches, std::chrono::seconds limit);

 private:
  struct Dispatch {
    std::function<void()> block;
    bool hasRun = false;
  };
  struct Sleeper {
    std::uint64_t wakeUpTime;
    bool isPageThread;
    bool isAwake = false;
  };

  void threadEnded();
  void advanceWhenAllSleep();
  void serveOne(std::unique_lock<std::mutex>& lock);

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::uint64_t now_ = 0;
  std::size_t alive_ = 0;
  std::vector<Sleeper*> sleepers_;
  std::deque<Dispatch*> dispatches_;
};

}  // namespace tavenhall::test
