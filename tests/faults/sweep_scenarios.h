#pragma once

#include <span>
#include <string>
#include <vector>

// The small installs that the sweep disturbs.
namespace tavenhall::test {

struct InstalledFile {
  std::string source;
  std::string destination;  // where it really lies, behind links
  std::string contents;
};

struct SweepScenario {
  const char* name;
  std::vector<std::string> arguments;  // of `tavinstall`
  std::string input;                   // the answers to its questions, enough for all
  std::vector<std::string> sources;    // the folders that are copied
  bool sweepsLog;                      // whether calls on the log are disturbed, too
  bool isSampled;  // of each kind of call only one is disturbed in each way, chosen by chance

  // Lays the sources and what the user has already into an empty private root; what has to be installed
  // afterwards. Once a process.
  std::vector<InstalledFile> (*lay)();
};

[[nodiscard]] std::span<const SweepScenario> sweepScenarios();

}  // namespace tavenhall::test
