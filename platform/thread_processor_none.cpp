#include "platform/thread_processor.h"

namespace tavenhall {

int currentProcessor() noexcept { return -1; }

void ProcessorBond::moveTo(int /*processor*/) noexcept {}
void ProcessorBond::release() noexcept {}

AnyProcessor::AnyProcessor() noexcept : boundTo_(-1) {}
AnyProcessor::~AnyProcessor() = default;

}  // namespace tavenhall
