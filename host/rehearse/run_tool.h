#pragma once

#include <string>
#include <vector>

namespace tavenhall {

// Runs a program of the PATH without a shell, with nothing to read and with its words on standard error, and
// waits for it. Its exit status; 127 where there is no such program, -1 where a signal ended it.
[[nodiscard]] int runTool(const std::vector<std::string>& command);

}  // namespace tavenhall
