#pragma once

#include "host/check/diagnostics.h"
#include "host/set/checked_set.h"

#include <string>

namespace tavenhall {

struct CheckResult {
  CheckedSet checked;
  Diagnostics diagnostics;
};

// Applies every rule to a set. Throws UsageError if the set cannot be read at all.
[[nodiscard]] CheckResult checkSet(const CheckRequest& request);

// The plan and the diagnostics as text; ends with a newline.
[[nodiscard]] std::string checkText(const CheckResult& result);

// The same as one JSON object; ends with a newline. Bytes that are not UTF-8 become replacement characters.
[[nodiscard]] std::string checkJson(const CheckResult& result);

}  // namespace tavenhall
