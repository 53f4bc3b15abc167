#pragma once

#include "tests/faults/call_gate.h"
#include "tests/faults/sweep_scenarios.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavenhall::test {

struct Silence {
  const char* why;
  std::string scope;  // the source's folder, or the end of a source's path, that it is about; empty: everything
};

// Is a file with this source among those that the page need not speak of?
[[nodiscard]] bool covers(const Silence& silence, std::string_view source);

// What the page has to keep silent about, or to take for something else, when this call of it fails; nothing
// where it has to tell. docs/reliability.md lists each.
[[nodiscard]] std::optional<Silence> requiredSilence(const SweepScenario& scenario, const FileCall& call);

}  // namespace tavenhall::test
