#pragma once

#include "host/base/exit_status.h"
#include "host/ui/terminal_notices.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

namespace tavenhall {

// The program's commands while its arguments are read. Each add function declares one command with its
// options; if the arguments name it, `chosen` afterwards carries it out. What it throws is shown to the user
// as one line: UsageError for what cannot be used.
struct CommandLine {
  CLI::App program{_("Check, rehearse and run installers of sample libraries."), "tavinstall"};
  std::function<ExitStatus()> chosen;
};

// Requires one of the names as the value.
[[nodiscard]] CLI::Validator oneOf(const std::vector<std::string>& names);

// Requires the name of an edition, in any case, and replaces it by "Lite" or "Full".
[[nodiscard]] CLI::Validator edition();

// Requires an integer from 0 up that fits an int.
[[nodiscard]] CLI::Validator wholeNumber();

// The products of this build.
[[nodiscard]] std::vector<std::string> productNames();

// Explains a parse error of the program's arguments, in one line in the user's language.
[[nodiscard]] std::string argumentErrorText(const CLI::App& program, const std::vector<std::string>& arguments,
                                            const CLI::ParseError& error);

enum class Frontend { json, plain, quiet, terminal };

// Adds the option --ui, which sets `name`.
void addFrontendOption(CLI::App& command, std::string& name);

// Adds the option --no-notify.
void addNotifyOption(CLI::App& command, bool& isOff);

// Adds the option --product for a set, which sets `name`.
void addProductOption(CLI::App& command, std::string& name);

// What a frontend may do besides showing lines, on the terminal that standard output is.
[[nodiscard]] NoticeAbilities noticesFor(bool isOff);

// Returns the frontend of that name; for an empty name the terminal frontend if the terminal is usable, else
// the plain one.
[[nodiscard]] Frontend frontendFor(const std::string& name);

// The help of the program or of a command, for a screen of 80 columns: its purpose and options.
[[nodiscard]] std::string helpText(const CLI::App& command);

// The exit statuses of every command, likewise.
[[nodiscard]] std::string exitStatusText();

void addRunCommand(CommandLine& commandLine);
void addAttachCommands(CommandLine& commandLine);  // status, attach, stop
void addRehearseCommand(CommandLine& commandLine);
void addCheckCommand(CommandLine& commandLine);
void addNewCommand(CommandLine& commandLine);
void addSplitCommand(CommandLine& commandLine);
void addManifestCommands(CommandLine& commandLine);  // manifest, verify
void addLogCommand(CommandLine& commandLine);
void addHelpCommand(CommandLine& commandLine);

}  // namespace tavenhall
