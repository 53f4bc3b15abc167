#pragma once

namespace tavenhall {

// The processor that the calling thread runs on; -1 where the system does not say. Any thread.
[[nodiscard]] int currentProcessor() noexcept;

// Keeps the one thread that uses it on a processor. Where the system cannot, nothing happens.
class ProcessorBond {
 public:
  ProcessorBond() = default;
  ProcessorBond(const ProcessorBond&) = delete;
  ProcessorBond& operator=(const ProcessorBond&) = delete;
  ~ProcessorBond() { release(); }

  // Moves the calling thread there, and keeps it there until it is released or moved again. Threads and
  // commands that it starts meanwhile stay there too. Costs next to nothing where it is already; -1 changes
  // nothing.
  void moveTo(int processor) noexcept;

  // Lets the thread run again wherever it could before.
  void release() noexcept;

 private:
  int processor_ = -1;
};

}  // namespace tavenhall
