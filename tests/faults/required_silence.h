#pragma once

#include "tests/faults/call_gate.h"
#include "tests/faults/sweep_scenarios.h"

namespace tavenhall::test {

// What the page has to keep silent about, or to take for something else, when this call of it fails; null where
// it has to tell. docs/reliability.md lists each.
[[nodiscard]] const char* requiredSilence(const SweepScenario& scenario, const FileCall& call);

}  // namespace tavenhall::test
