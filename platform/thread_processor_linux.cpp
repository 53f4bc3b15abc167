#include "platform/thread_processor.h"

#include <optional>
#include <sched.h>

namespace tavenhall {

namespace {

std::optional<cpu_set_t> ownProcessors() noexcept {
  cpu_set_t own;
  return sched_getaffinity(0, sizeof own, &own) == 0 ? std::optional(own) : std::nullopt;
}

// Where a thread can run that nobody has bound. Taken when this is loaded, which comes before any binding.
const std::optional<cpu_set_t> kProcessorsAtStart = ownProcessors();

void setBound(int processor) noexcept {
  cpu_set_t only;
  CPU_ZERO(&only);
  CPU_SET(processor, &only);
  sched_setaffinity(0, sizeof only, &only);
}

bool isBound() noexcept {
  const auto own = ownProcessors();
  return own && kProcessorsAtStart && CPU_COUNT(&*own) == 1 && CPU_COUNT(&*kProcessorsAtStart) > 1;
}

void setFree() noexcept { sched_setaffinity(0, sizeof(cpu_set_t), &*kProcessorsAtStart); }

}  // namespace

int currentProcessor() noexcept { return sched_getcpu(); }

void ProcessorBond::moveTo(int processor) noexcept {
  if (processor < 0 || processor == processor_ || !kProcessorsAtStart) {
    return;
  }
  processor_ = processor;
  setBound(processor);
}

void ProcessorBond::release() noexcept {
  if (processor_ >= 0) {
    processor_ = -1;
    setFree();
  }
}

int AnyProcessor::unbind() noexcept {
  const int boundTo = isBound() ? currentProcessor() : -1;
  if (boundTo >= 0) {
    setFree();
  }
  return boundTo;
}

void AnyProcessor::bindTo(int processor) noexcept {
  if (processor >= 0) {
    setBound(processor);
  }
}

}  // namespace tavenhall
