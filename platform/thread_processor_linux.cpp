#include "platform/thread_processor.h"

#include <optional>
#include <sched.h>

namespace tavenhall {

namespace {

std::optional<cpu_set_t> ownProcessors() noexcept {
  cpu_set_t own;
  return sched_getaffinity(0, sizeof own, &own) == 0 ? std::optional(own) : std::nullopt;
}

// Where the thread could run before it was bound.
const std::optional<cpu_set_t>& processorsBefore() noexcept {
  static const std::optional<cpu_set_t> processors = ownProcessors();
  return processors;
}

}  // namespace

int currentProcessor() noexcept { return sched_getcpu(); }

void ProcessorBond::moveTo(int processor) noexcept {
  if (processor < 0 || processor == processor_ || !processorsBefore()) {
    return;
  }
  processor_ = processor;
  cpu_set_t only;
  CPU_ZERO(&only);
  CPU_SET(processor, &only);
  sched_setaffinity(0, sizeof only, &only);
}

void ProcessorBond::release() noexcept {
  if (processor_ >= 0) {
    processor_ = -1;
    sched_setaffinity(0, sizeof(cpu_set_t), &*processorsBefore());
  }
}

}  // namespace tavenhall
