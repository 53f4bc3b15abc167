#pragma once

#include "host/build_facts.h"
#include "host/exit_status.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace tavenhall {

// The program's commands while its arguments are read. Each add function declares one command with its
// options; if the arguments name it, `chosen` afterwards carries it out. What it throws is shown to the user
// as one line: UsageError for what cannot be used.
struct CommandLine {
  CLI::App program{_("Installs sample libraries: the data page of the installer, without one."), "tavinstall"};
  std::function<ExitStatus()> chosen;
};

// The value is one of the names, which the help shows as the option's own text or not at all.
[[nodiscard]] inline CLI::Validator oneOf(const std::vector<std::string>& names) {
  return CLI::IsMember(names).description("");
}

// The products that the build knows.
[[nodiscard]] inline std::vector<std::string> productNames() {
  return {std::begin(kProducts), std::end(kProducts)};
}

void addRunCommand(CommandLine& commandLine);
void addRehearseCommand(CommandLine& commandLine);
void addCheckCommand(CommandLine& commandLine);
void addLogCommand(CommandLine& commandLine);

}  // namespace tavenhall
