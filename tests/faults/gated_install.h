#pragma once

#include "tests/faults/call_gate.h"
#include "tests/install/source_tree.h"

#include <string>
#include <vector>

// Whole installs with the plain frontend, whose waits cost nothing.
namespace tavenhall::test {

// Installs from the tests' package; every question gets its first button, at most a hundred times. Fails the
// test when the program does not end by itself, or with a sanitizer's report.
[[nodiscard]] GatedRun install(
    const std::vector<std::string>& arguments = {}, const Judge& judge = [](const FileCall&) { return kPass; });

// The same with a judge alone.
[[nodiscard]] GatedRun installWith(const Judge& judge);

// Every file among the entries, below `from`, has arrived below `to`, byte for byte; `except` names those that
// have not, and that the log names as failures.
void expectInstalled(const std::vector<Entry>& entries, const std::string& from, const std::string& to,
                     const std::vector<std::string>& except = {});

// The paths below `from` of the files that have not arrived whole below `to`.
[[nodiscard]] std::vector<std::string> missingFiles(const std::vector<Entry>& entries, const std::string& from,
                                                    const std::string& to);

// Is there a line about the failed copy to this path in the log?
[[nodiscard]] bool isNamedInLog(const std::string& destination);

// The last word before the line that names the log.
[[nodiscard]] std::string lastWord(const GatedRun& run);

[[nodiscard]] int countIn(const std::string& text, const std::string& piece);

}  // namespace tavenhall::test
