#include "platform/thread_processor.h"

namespace tavenhall {

int currentProcessor() noexcept { return -1; }

void ProcessorBond::moveTo(int /*processor*/) noexcept {}
void ProcessorBond::release() noexcept {}

int AnyProcessor::unbind() noexcept { return -1; }
void AnyProcessor::bindTo(int /*processor*/) noexcept {}

}  // namespace tavenhall
