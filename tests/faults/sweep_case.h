#pragma once

#include "tests/faults/call_gate.h"
#include "tests/faults/sweep_scenarios.h"

#include <span>
#include <string>
#include <vector>

// One disturbed install, and what has to hold of it.
namespace tavenhall::test {

struct Fault {
  CallKind kind;
  Verdict verdict;
  int nth;         // the call of this kind that goes wrong, from 1
  bool isLasting;  // it and all that follow; never for an end of the process
};

enum class Ending {
  whole,       // everything arrived, and the last word says so
  falseAlarm,  // everything arrived, and the last word is of a failure
  named,       // each file that is wrong is named on standard output
  stopped,     // nothing more was begun, and the last word says so
  killed,      // the process was ended in the middle of it, and its frontend says so
  notReached,  // there was no such call in this run: threads may divide a large read differently
  lost,        // anything else: an error of ours
};
[[nodiscard]] const char* endingName(Ending ending);

struct CaseResult {
  Ending ending = Ending::lost;
  std::string why;  // for lost: what is wrong
};

// What a kind of call can answer instead of doing its work.
struct KindOfFault {
  CallKind kind;
  const char* name;
  std::vector<Verdict> verdicts;
};
[[nodiscard]] std::span<const KindOfFault> kindsOfFaults();
[[nodiscard]] std::string verdictName(Verdict verdict);

// An install without a fault.
struct Undisturbed {
  std::vector<int> calls;         // of each kind, in the order of kindsOfFaults()
  std::vector<std::string> tree;  // all that it leaves, as describeTree has it
};

// Throws std::runtime_error where it does not install everything. In a private root, once a process.
[[nodiscard]] Undisturbed runUndisturbed(const SweepScenario& scenario);

// Installs with the fault, then once more without it. In a private root, once a process.
[[nodiscard]] CaseResult runCase(const SweepScenario& scenario, const Fault& fault,
                                 const std::vector<std::string>& undisturbedTree);

}  // namespace tavenhall::test
