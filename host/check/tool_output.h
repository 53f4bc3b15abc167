#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavenhall {

// What a tool from the PATH prints on its standard output, run without a shell, with no input and its
// complaints dropped. None where it is not there or ends with a failure.
[[nodiscard]] std::optional<std::string> outputOfTool(const std::vector<std::string>& arguments);

}  // namespace tavenhall
