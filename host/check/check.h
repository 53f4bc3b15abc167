#pragma once

#include "host/check/diagnostics.h"
#include "host/set/checked_set.h"

#include <string>

namespace tavenhall {

struct CheckResult {
  CheckedSet checked;
  Diagnostics diagnostics;
};

// Looks at a set with every rule there is. Throws UsageError where it cannot be used at all.
[[nodiscard]] CheckResult checkSet(const CheckRequest& request);

// What the page would do and what is wrong, for a reader; ends with a newline.
[[nodiscard]] std::string checkText(const CheckResult& result);

// The same as one JSON object; ends with a newline. Bytes that are not UTF-8 become replacement characters.
[[nodiscard]] std::string checkJson(const CheckResult& result);

}  // namespace tavenhall
