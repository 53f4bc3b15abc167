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
  // commands that it starts meanwhile stay there too, unless AnyProcessor sees to them. Costs next to nothing
  // where it is already; -1 changes nothing.
  void moveTo(int processor) noexcept;

  // Lets the thread run again wherever it could before.
  void release() noexcept;

 private:
  [[maybe_unused]] int processor_ = -1;  // not used where nothing can be bound
};

// While one lives, the thread that made it may run wherever the process could at its start, whoever has bound
// it, and so may what it starts. Afterwards it is bound as before.
class AnyProcessor {
 public:
  AnyProcessor() noexcept : boundTo_(unbind()) {}
  AnyProcessor(const AnyProcessor&) = delete;
  AnyProcessor& operator=(const AnyProcessor&) = delete;
  ~AnyProcessor() { bindTo(boundTo_); }

 private:
  // Frees the calling thread; gives what to bind it to afterwards.
  static int unbind() noexcept;
  static void bindTo(int processor) noexcept;

  int boundTo_;  // -1 for a thread that was free
};

}  // namespace tavenhall
