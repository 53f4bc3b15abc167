#include "host/build_facts.h"
#include "host/bundle_loader.h"
#include "host/command_line.h"
#include "host/help_text.h"
#include "host/standard_streams.h"
#include "host/text.h"
#include "host/usage_error.h"

#include <CLI/CLI.hpp>
#include <clocale>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <sstream>
#include <string>

namespace tavenhall {

namespace {

ExitStatus runProgram(int argc, char** argv) {
  CommandLine commandLine;
  CLI::App& program = commandLine.program;
  program.formatter_fn(
      [](const CLI::App* app, const std::string&, CLI::AppFormatMode) { return helpText(*app); });
  program.set_help_flag("-h,--help", _("Say this"));
  program.set_version_flag("--version", std::string("tavinstall ") + kVersion, _("Say which version this is"));
  program.require_subcommand(1);
  addRunCommand(commandLine);
  addRehearseCommand(commandLine);
  addCheckCommand(commandLine);
  addLogCommand(commandLine);
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

}  // namespace

}  // namespace tavenhall

int main(int argc, char** argv) {
  using tavenhall::ExitStatus;
  tavenhall::fillStandardStreams();
  // Character types alone: the log's month names are the same on every machine. Where the system lacks the
  // user's locale, as small systems do, the texts still come in UTF-8.
  if (std::setlocale(LC_CTYPE, "") == nullptr) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
  }
  tavenhall::speakUsersLanguage(tavenhall::findCatalogs());
  ExitStatus status = ExitStatus::badUsage;
  try {
    status = tavenhall::runProgram(argc, argv);
    tavenhall::requireOutputWritten();
  } catch (const std::filesystem::filesystem_error& error) {
    status = ExitStatus::badUsage;
    tavenhall::showError(tavenhall::UsageError(tavenhall::filled(
        tavenhall::_("cannot use {0}: {1}"), {error.path1().string(), error.code().message()})));
  } catch (const std::exception& error) {
    status = ExitStatus::badUsage;
    tavenhall::showError(error);
  }
  return static_cast<int>(status);
}
