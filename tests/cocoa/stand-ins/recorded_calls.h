#pragma once

#include <string>
#include <vector>

// What the stand-ins were called with, in order: one text a call. Any thread.
namespace tavenhall::test {

void recordCall(const std::string& call);
[[nodiscard]] std::vector<std::string> recordedCalls();
void forgetCalls();

}  // namespace tavenhall::test
