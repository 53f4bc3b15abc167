#include "tests/cocoa/stand-ins/recorded_calls.h"

#include <mutex>

namespace tavenhall::test {

namespace {

std::mutex callsMutex;
std::vector<std::string> calls;

}  // namespace

void recordCall(const std::string& call) {
  const std::lock_guard lock(callsMutex);
  calls.push_back(call);
}

std::vector<std::string> recordedCalls() {
  const std::lock_guard lock(callsMutex);
  return calls;
}

void forgetCalls() {
  const std::lock_guard lock(callsMutex);
  calls.clear();
}

}  // namespace tavenhall::test
