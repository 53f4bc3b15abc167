#include "host/base/build_facts.h"
#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/cli/run_description.h"
#include "host/engine/pre_install.h"
#include "host/engine/run_engine.h"
#include "host/log/log_records.h"
#include "host/plain/plain_frontend.h"
#include "host/terminal/terminal_frontend.h"
#include "platform/installer_pane.h"

#include <CLI/CLI.hpp>
#include <fcntl.h>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace tavenhall {

namespace {

struct RunArguments {
  std::string package;
  std::string installType;
  std::string bundle;
  std::string product;
  std::string ui;  // empty: the terminal page where there is a terminal for it, else plain lines
  std::string summary;
  bool noPreInstall = false;
  bool isTrusted = false;
  bool isWithoutAttributes = false;
};

// Refuses to install for the reason that `reason` gives in the current language. Another program that drives
// the install decides itself, so it gets a warning.
void refuse(const std::function<std::string()>& reason, Frontend frontend, EngineOptions& options) {
  const std::string line = reason();
  if (line.empty()) {
    return;
  }
  if (frontend != Frontend::json) {
    throw UsageError(line, ExitStatus::refused);
  }
  showError(UsageError(line));
  const InEnglish english;
  options.warnings.push_back(reason());
}

// The plan, after all reasons to refuse it. None if the attributes file cannot be read: then the page finds
// none, and copies no folder beside the package.
std::optional<InstallPlan> checkedPlan(const RunArguments& arguments, Frontend frontend,
                                       EngineOptions& options) {
  std::optional<InstallPlan> plan;
  try {
    plan = planFor(options);
  } catch (const UsageError& error) {
    if (frontend == Frontend::terminal || !arguments.isWithoutAttributes) {
      refuse([&error] { return error.what(); }, frontend, options);
      options.failures.push_back(unreadableAttributes(options));
    }
    return std::nullopt;
  }
  if (!arguments.isTrusted && options.warnings.empty()) {  // one reason is enough
    refuse([&plan] { return refusalToTrust(*plan); }, frontend, options);
  }
  refuse([&plan] { return refusalToCopyOntoItself(*plan); }, frontend, options);
  if (!arguments.isWithoutAttributes && !plan->attributes.isFilePresent()) {
    refuse([&plan] { return missingAttributes(*plan); }, frontend, options);
    options.failures.push_back(unreadableAttributes(options));
  }
  for (const UnexaminedPlace& place : unexaminedPlaces(*plan)) {
    refuse([&place] { return cannotExamine(place); }, frontend, options);
    options.failures.push_back({"not-readable", place.path, "", 0, place.error.message()});
  }
  return plan;
}

EngineOptions optionsFrom(const RunArguments& arguments, Frontend frontend) {
  EngineOptions options;
  if (!arguments.noPreInstall) {
    if (arguments.package.empty()) {
      throw UsageError(_("--package or --no-preinstall is required"));
    }
    options.package = packageLocation(arguments.package);
    options.installType = arguments.installType;
  }
  options.bundle =
      arguments.bundle.empty() ? findBundle(arguments.product) : std::filesystem::path(arguments.bundle);
  options.summary = arguments.summary;
  if (!options.summary.empty()) {
    requireWritable(options.summary);
  }
  if (!arguments.isTrusted) {
    refuse([&options] { return refusalToTrust(options); }, frontend, options);
  }
  return options;
}

// Input may come from anywhere, but a password prompt needs a terminal.
bool hasControllingTerminal() {
  const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal >= 0) {
    close(terminal);
  }
  return terminal >= 0;
}

ExitStatus run(const RunArguments& arguments) {
  const Frontend frontend = frontendFor(arguments.ui);
  std::optional<InstallTypePlace> installTypePlace;
  if (arguments.installType.empty()) {
    installTypePlace.emplace();  // before anybody's file in its place is looked for
  }
  EngineOptions options = optionsFrom(arguments, frontend);
  const std::optional<InstallPlan> plan = checkedPlan(arguments, frontend, options);
  if (plan) {
    options.copies = expectedCopies(*plan);
  }
  switch (frontend) {
    case Frontend::json:
      runEngine(options, Controller::program, {.requests = STDIN_FILENO, .events = STDOUT_FILENO});
    case Frontend::quiet: runEngine(options, Controller::nobody, {});
    case Frontend::plain: {
      RunDescription description;
      description.watchLog(usersInstallationLog());
      return runPlainFrontend(startEngine(options, {.hasPasswordTerminal = hasControllingTerminal()}),
                              description);
    }
    case Frontend::terminal: break;
  }
  const RunDescription description = describeRun(*plan);
  return runTerminalFrontend(startEngine(options, {.capturesErrors = true, .hasPasswordTerminal = true}),
                             description);
}

}  // namespace

void addRunCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<RunArguments>();
  CLI::App* run = commandLine.program.add_subcommand("run", _("Install the data of an installer package"));
  run->add_option("--package", arguments->package, _("Installer package; its data is beside it or on discs"))
      ->type_name("PATH");
  run->add_option("--install-type", arguments->installType,
                  _("Edition to install if there is a choice: Lite or Full"))
      ->transform(edition())
      ->type_name("TYPE");
  CLI::Option* product =
      run->add_option("--product", arguments->product,
                      format(_("Product to install: {0}"), {CLI::detail::join(productNames(), ", ")}))
          ->check(oneOf(productNames()))
          ->type_name("NAME");
  run->add_option("--bundle", arguments->bundle, _("Load this plug-in bundle instead of the product's"))
      ->type_name("DIR")
      ->excludes(product);
  addFrontendOption(*run, arguments->ui);
  run->add_option("--summary", arguments->summary, _("Write the run summary to this file, as JSON"))
      ->type_name("FILE");
  run->add_flag("--no-preinstall", arguments->noPreInstall,
                _("Use the files that a pre-install step has written to /tmp"));
  run->add_flag("--trusted", arguments->isTrusted, _("Install even if other users can change the package"));
  run->add_flag("--without-attributes", arguments->isWithoutAttributes,
                _("Install one disc even if there is no attributes file"));
  run->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return tavenhall::run(*arguments); }; });
}

}  // namespace tavenhall
