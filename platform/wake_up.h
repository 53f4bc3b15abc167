#pragma once

namespace tavenhall {

// Wakes a thread that waits in poll. Not copied; closed when it goes.
class WakeUp {
 public:
  // Ends the process where the system has no descriptor left: nothing could ever be waited for.
  WakeUp() noexcept;
  WakeUp(const WakeUp&) = delete;
  WakeUp& operator=(const WakeUp&) = delete;
  ~WakeUp();

  // Readable from the first signal until it is cleared. The waiting thread polls it for input.
  [[nodiscard]] int descriptor() const noexcept { return readEnd_; }

  void signal() noexcept;  // any thread, and from a signal's handler
  void clear() noexcept;   // the waiting thread

 private:
  int readEnd_ = -1;
  int writeEnd_ = -1;
};

}  // namespace tavenhall
