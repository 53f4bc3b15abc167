#pragma once

#include "host/base/mutex.h"
#include "host/protocol/messages.h"

#include <chrono>
#include <string>
#include <thread>

namespace tavenhall {

// Writes events to a descriptor as JSON lines, on a thread of its own, so that a reader that is slow or stopped
// never blocks the engine. Events come out in the order of write(). Progress and status lines are written
// together, at most kLongestHold after the first of them; any other event is written at once, after those
// before it.
//
// Nothing is dropped, with two exceptions. Once kMostPending bytes wait for the reader, progress values are
// coalesced to the latest, and a status line that repeats the one before it is left out. When the reader is
// gone, everything is.
class EventWriter {
 public:
  // The caller owns the descriptors, which must stay open as long as this object lives. Starts the thread. Once
  // `interrupt` is readable, everything that the reader does not take at once is dropped; -1: never.
  explicit EventWriter(int descriptor, int interrupt = -1);
  EventWriter(const EventWriter&) = delete;
  EventWriter& operator=(const EventWriter&) = delete;

  // Calls finish().
  ~EventWriter();

  // Any thread. Never blocks on the reader. Drops what comes after the summary, which is the last event.
  void write(const Event& event) EXCLUDES(mutex_);

  // Blocks until everything is written or the reader is gone, and ends the thread. Later events are dropped.
  void finish() EXCLUDES(mutex_);

  // Blocks until everything is written, the reader is gone or `timeout` has passed. For the handler of a signal
  // that a thread has raised itself.
  void drain(std::chrono::milliseconds timeout) noexcept EXCLUDES(mutex_);

  static constexpr std::chrono::milliseconds kLongestHold{16};
  static constexpr std::size_t kMostPending = 1048576;  // bytes

 private:
  void run() EXCLUDES(mutex_);
  void append(const Event& event) REQUIRES(mutex_);
  [[nodiscard]] bool hasPending() const REQUIRES(mutex_) {
    return !pending_.empty() || !latestProgress_.empty();
  }

  const int descriptor_;
  const int interrupt_;
  Mutex mutex_;
  Condition changed_;
  std::string pending_ GUARDED_BY(mutex_);         // whole lines
  std::string latestProgress_ GUARDED_BY(mutex_);  // a line that belongs after them, while the reader is behind
  std::string latestStatus_ GUARDED_BY(mutex_);    // the text of the latest status line
  bool isUrgent_ GUARDED_BY(mutex_) = false;       // something pending is not to be held
  bool isWriting_ GUARDED_BY(mutex_) = false;
  bool isReaderGone_ GUARDED_BY(mutex_) = false;
  bool isFinishing_ GUARDED_BY(mutex_) = false;
  bool isComplete_ GUARDED_BY(mutex_) = false;  // the summary is written
  std::thread thread_;                          // last: it uses all the others
};

}  // namespace tavenhall
