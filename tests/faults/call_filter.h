#pragma once

#include "tests/faults/call_gate.h"

#include <optional>
#include <span>
#include <sys/types.h>

// The system calls that a call gate stops, and where in them the path or the descriptor is.
namespace tavenhall::test {

struct GatedCall {
  long number;
  CallKind kind;
  int folderArgument;      // of a descriptor that the path is relative to; -1: none
  int pathArgument;        // -1: none
  int descriptorArgument;  // -1: none
};

[[nodiscard]] std::span<const GatedCall> gatedCalls();

// Makes the kernel ask before each of these calls, and before sleeping and starting threads, in this process
// and all that come of it. The descriptor by which it asks. For a process about to run a program. -1, with
// errno set, where the system cannot.
[[nodiscard]] int installCallFilter();

}  // namespace tavenhall::test
