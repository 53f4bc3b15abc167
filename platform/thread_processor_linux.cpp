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

void bindTo(int processor) noexcept {
  cpu_set_t only;
  CPU_ZERO(&only);
  CPU_SET(processor, &only);
  sched_setaffinity(0, sizeof only, &only);
}

bool isBound() noexcept {
  const auto own = ownProcessors();
  return own && kProcessorsAtStart && CPU_COUNT(&*own) == 1 && CPU_COUNT(&*kProcessorsAtStart) > 1;
}

void unbind() noexcept { sched_setaffinity(0, sizeof(cpu_set_t), &*kProcessorsAtStart); }

}  // namespace

int currentProcessor() noexcept { return sched_getcpu(); }

void ProcessorBond::moveTo(int processor) noexcept {
  if (processor < 0 || processor == processor_ || !kProcessorsAtStart) {
    return;
  }
  processor_ = processor;
  bindTo(processor);
}

void ProcessorBond::release() noexcept {
  if (processor_ >= 0) {
    processor_ = -1;
    unbind();
  }
}

AnyProcessor::AnyProcessor() noexcept : boundTo_(isBound() ? currentProcessor() : -1) {
  if (boundTo_ >= 0) {
    unbind();
  }
}

AnyProcessor::~AnyProcessor() {
  if (boundTo_ >= 0) {
    bindTo(boundTo_);
  }
}

}  // namespace tavenhall
