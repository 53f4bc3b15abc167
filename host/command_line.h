#pragma once

#include "host/exit_status.h"

#include <CLI/App.hpp>
#include <functional>

namespace tavenhall {

// The program's commands while its arguments are read. Each add function declares one command with its
// options; if the arguments name it, `chosen` afterwards carries it out. What it throws is shown to the user
// as one line: UsageError for what cannot be used.
struct CommandLine {
  CLI::App program{"Installs sample libraries: the data page of the installer, without one.", "tavinstall"};
  std::function<ExitStatus()> chosen;
};

void addRunCommand(CommandLine& commandLine);
void addRehearseCommand(CommandLine& commandLine);
void addCheckCommand(CommandLine& commandLine);
void addLogCommand(CommandLine& commandLine);

}  // namespace tavenhall
