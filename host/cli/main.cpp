#include "host/base/build_facts.h"
#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <sstream>
#include <string>
#include <unistd.h>

namespace tavenhall {

namespace {

// A program may be started with some of its standard streams closed. Opens /dev/null in their places, so that
// no file that is opened later gets such a number: nothing to read, errors discarded, and writing the output
// fails.
void fillStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      // open() gives the lowest free number, and those below are taken.
      static_cast<void>(open("/dev/null", stream == STDERR_FILENO ? O_WRONLY : O_RDONLY));
    }
  }
}

// Throws UsageError unless everything printed on standard output was written; a disk may be full.
void requireOutputWritten() {
  const bool hadFailed = std::ferror(stdout) != 0;
  if (std::fflush(stdout) != 0 || hadFailed) {
    throw UsageError(format(_("cannot write to standard output: {0}"), {std::strerror(errno)}));
  }
}

ExitStatus runProgram(int argc, char** argv) {
  CommandLine commandLine;
  CLI::App& program = commandLine.program;
  program.formatter_fn(
      [](const CLI::App* app, const std::string&, CLI::AppFormatMode) { return helpText(*app); });
  program.set_help_flag("-h,--help", _("Show this help"));
  program.set_version_flag("--version", std::string("tavinstall ") + kVersion, _("Show the version"));
  program.require_subcommand(1);
  addRunCommand(commandLine);
  addAttachCommands(commandLine);
  addNewCommand(commandLine);
  addSplitCommand(commandLine);
  addRehearseCommand(commandLine);
  addCheckCommand(commandLine);
  addManifestCommands(commandLine);
  addLogCommand(commandLine);
  addHelpCommand(commandLine);
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success& request) {
    std::ostringstream text;
    program.exit(request, text);  // help or version
    std::fputs(text.str().c_str(), stdout);
    return ExitStatus::success;
  } catch (const CLI::ParseError& error) {
    throw UsageError(argumentErrorText(program, {argv + 1, argv + argc}, error));
  }
  return commandLine.chosen();
}

int runMain(int argc, char** argv) {
  fillStandardStreams();
  std::signal(SIGCHLD, SIG_DFL);  // a parent may have ignored it; then nobody learns how a command has ended
  // Character types alone: the log's month names are the same on every machine. Small systems may lack the
  // user's locale; texts are UTF-8 even there.
  if (std::setlocale(LC_CTYPE, "") == nullptr) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
  }
  speakUsersLanguage(findCatalogs());
  ExitStatus status = ExitStatus::badUsage;
  try {
    status = runProgram(argc, argv);
    requireOutputWritten();
  } catch (const std::filesystem::filesystem_error& error) {
    status = ExitStatus::badUsage;
    showError(UsageError(format(_("cannot use {0}: {1}"), {error.path1().string(), error.code().message()})));
  } catch (const UsageError& error) {
    status = error.status();
    showError(error);
  } catch (const std::exception& error) {
    status = ExitStatus::badUsage;
    showError(error);
  }
  return static_cast<int>(status);
}

}  // namespace

}  // namespace tavenhall

int main(int argc, char** argv) { return tavenhall::runMain(argc, argv); }
