#pragma once

#include "host/check/diagnostics.h"
#include "host/set/checked_set.h"

#include <string>

namespace tavenhall {

struct CheckResult {
  CheckedSet checked;
  Diagnostics diagnostics;
};

// Applies every rule to a set, and puts what follows from a diagnostic below it. Throws UsageError if the set
// cannot be read at all.
[[nodiscard]] CheckResult checkSet(const CheckRequest& request);

// The bytes of the attributes file with every correction that `check --fix` makes, until none is left. Those
// that it has if there is none.
[[nodiscard]] std::string fixedAttributes(const CheckRequest& request);

}  // namespace tavenhall
