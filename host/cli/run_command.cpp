#include "host/base/build_facts.h"
#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/cli/attach_command.h"
#include "host/cli/command_line.h"
#include "host/cli/complete_run.h"
#include "host/cli/preflight.h"
#include "host/cli/run_description.h"
#include "host/engine/pre_install.h"
#include "host/engine/run_engine.h"
#include "host/log/log_records.h"
#include "host/plain/plain_frontend.h"
#include "host/protocol/run_record.h"
#include "host/terminal/terminal_frontend.h"
#include "platform/installer_pane.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
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
  std::string discTimeout;    // seconds; empty: 0
  std::string optionalDiscs;  // "skip", "wait" or empty: skip
  bool isUnattended = false;
  bool isCompletion = false;
  bool isWithoutNotices = false;
  bool noPreInstall = false;
  bool isTrusted = false;
  bool isWithoutAttributes = false;
};

UsageError badArguments(const std::string& reason) {
  return UsageError(format(_("{0}; see {1}"), {reason, "tavinstall run --help"}));
}

// Collects the reasons not to install. Without a user the first must not hide the others. Another program that
// drives the install decides itself, so it gets warnings.
class Refusals {
 public:
  Refusals(Frontend frontend, bool isUnattended, EngineOptions& options)
      : frontend_(frontend), isUnattended_(isUnattended), options_(options) {}

  // `reason` gives it in the current language; empty: there is none. Throws UsageError where a user reads it.
  void add(const std::function<std::string()>& reason) {
    const std::string line = reason();
    if (line.empty()) {
      return;
    }
    if (isUnattended_) {
      shortfalls_.push_back({ExitStatus::refused, line});
      return;
    }
    if (frontend_ != Frontend::json) {
      throw UsageError(line, ExitStatus::refused);
    }
    showError(UsageError(line));
    const InEnglish english;
    options_.warnings.push_back(reason());
  }

  void add(const std::vector<Shortfall>& shortfalls) {
    shortfalls_.insert(shortfalls_.end(), shortfalls.begin(), shortfalls.end());
  }

  // Throws UsageError with every reason, and the first one's status, if there is one.
  void throwIfAny() const {
    std::string all;
    for (const Shortfall& shortfall : shortfalls_) {
      all += (all.empty() ? "" : "; ") + shortfall.line;
    }
    if (!all.empty()) {
      throw UsageError(all, shortfalls_.front().status);
    }
  }

  [[nodiscard]] bool isEmpty() const { return shortfalls_.empty() && options_.warnings.empty(); }
  [[nodiscard]] Frontend frontend() const { return frontend_; }

 private:
  Frontend frontend_;
  bool isUnattended_;
  EngineOptions& options_;
  std::vector<Shortfall> shortfalls_;
};

// The plan, after all reasons to refuse it. None if the attributes file cannot be read: then the page finds
// none, and copies no folder beside the package.
std::optional<InstallPlan> checkedPlan(const RunArguments& arguments, Refusals& refusals,
                                       EngineOptions& options) {
  std::optional<InstallPlan> plan;
  try {
    plan = planFor(options);
  } catch (const UsageError& error) {
    if (refusals.frontend() == Frontend::terminal || !arguments.isWithoutAttributes) {
      refusals.add([&error] { return error.what(); });
      options.failures.push_back(unreadableAttributes(options));
    }
    return std::nullopt;
  }
  if (!arguments.isTrusted && refusals.isEmpty()) {  // one reason is enough
    refusals.add([&plan] { return refusalToTrust(*plan); });
  }
  refusals.add([&plan] { return refusalToCopyOntoItself(*plan); });
  if (!arguments.isWithoutAttributes && !plan->attributes.isFilePresent()) {
    refusals.add([&plan] { return missingAttributes(*plan); });
    options.failures.push_back(unreadableAttributes(options));
  }
  for (const UnexaminedPlace& place : unexaminedPlaces(*plan)) {
    refusals.add([&place] { return cannotExamine(place); });
    options.failures.push_back({"not-readable", place.path, "", 0, place.error.message()});
  }
  return plan;
}

// Sets `options` as far as the arguments tell. Throws UsageError.
void readArguments(const RunArguments& arguments, EngineOptions& options) {
  if (!arguments.summary.empty()) {
    requireWritable(arguments.summary);
    options.summary = arguments.summary;
  }
  options.facts.started = isoTimeNow();
  options.facts.version = kVersion;
  options.facts.log = usersInstallationLog();
  options.facts.package = arguments.package;
  if (!arguments.noPreInstall) {
    if (arguments.package.empty()) {
      throw badArguments(_("--package or --no-preinstall is required"));
    }
    options.package = packageLocation(arguments.package);
    options.facts.package = options.package;
    if (arguments.product.empty() && arguments.bundle.empty()) {
      requireNamedProduct(options.package);
    }
    options.installType = arguments.installType;
  }
  options.bundle =
      arguments.bundle.empty() ? findBundle(arguments.product) : std::filesystem::path(arguments.bundle);
  requireBundle(options.bundle);
}

// Nobody answers: with --unattended, and with a frontend that shows nothing.
std::optional<UnattendedAnswers> answersFor(const RunArguments& arguments, Frontend frontend) {
  if (!arguments.isUnattended && frontend != Frontend::quiet) {
    for (const auto& [name, value] : {std::pair("--disc-timeout", arguments.discTimeout),
                                      std::pair("--optional-discs", arguments.optionalDiscs)}) {
      if (!value.empty()) {
        throw badArguments(format(_("{0} requires --unattended"), {name}));
      }
    }
    return std::nullopt;
  }
  if (arguments.ui == "terminal") {
    throw badArguments(format(_("{0} cannot be combined with {1}"), {"--unattended", "--ui terminal"}));
  }
  UnattendedAnswers answers;
  answers.discTimeout = std::chrono::seconds(std::atoi(arguments.discTimeout.c_str()));
  answers.skipsOptionalDiscs = arguments.optionalDiscs != "wait";
  return answers;
}

// Input may come from anywhere, but a password prompt needs a terminal.
bool hasControllingTerminal() {
  const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal >= 0) {
    close(terminal);
  }
  return terminal >= 0;
}

// What the page will do, after every reason not to let it. Throws UsageError.
std::optional<InstallPlan> prepare(const RunArguments& arguments, Frontend frontend, EngineOptions& options) {
  options.unattended = answersFor(arguments, frontend);
  readArguments(arguments, options);
  if (options.unattended) {
    static_cast<void>(loadBundle(options.bundle));     // what it cannot load has no name of a disc either
    const InstallLock lock(!options.package.empty());  // another install changes what is looked at here
  }
  Refusals refusals(frontend, options.unattended.has_value(), options);
  if (!arguments.isTrusted) {
    refusals.add([&options] { return refusalToTrust(options); });
  }
  std::optional<InstallPlan> plan = checkedPlan(arguments, refusals, options);
  if (plan) {
    options.copies = expectedCopies(*plan);
    addFacts(*plan, options.facts);
    options.barWraps = plan->mode == kModeProductUpdater;
  }
  if (options.unattended && plan && !arguments.isCompletion) {
    refusals.add(shortfallsOf(*plan, *options.unattended));
  }
  refusals.throwIfAny();
  return plan;
}

// A terminal that cannot show the page, although a user may expect it there.
bool fallsBack(const RunArguments& arguments, const EngineOptions& options) {
  return arguments.ui != "plain" && !options.unattended && isatty(STDIN_FILENO) != 0 &&
         isatty(STDOUT_FILENO) != 0;
}

ExitStatus runPlain(const RunArguments& arguments, const EngineOptions& options,
                    const std::optional<InstallPlan>& plan) {
  RunDescription description;
  if (plan) {
    description = describeRun(*plan);
  } else {
    description.watchLog(usersInstallationLog());
  }
  description.isUnattended = options.unattended.has_value();
  description.notices = noticesFor(arguments.isWithoutNotices);
  description.asksFirst = plan && fallsBack(arguments, options);
  const bool hasTerminal = !description.isUnattended && hasControllingTerminal();
  return runPlainFrontend(startEngine(options, {.hasPasswordTerminal = hasTerminal}), description);
}

// Without a plan, it is not known where the files are.
ExitStatus completed(const EngineOptions& options, const std::optional<InstallPlan>& plan, Frontend frontend) {
  if (const int null = open("/dev/null", O_WRONLY | O_CLOEXEC); frontend == Frontend::quiet && null >= 0) {
    dup2(null, STDOUT_FILENO);
  }
  try {
    if (!plan || options.package.empty()) {
      throw badArguments(_("--complete needs --package, with a manifest and an attributes file beside it"));
    }
    return completeInstall(options, *plan);
  } catch (const UsageError& error) {
    writeRefusal(options, error);
    throw;
  }
}

ExitStatus run(const RunArguments& arguments) {
  if (arguments.isCompletion && !arguments.ui.empty() && arguments.ui != "plain" && arguments.ui != "quiet") {
    throw badArguments(format(_("{0} cannot be combined with {1}"), {"--complete", "--ui " + arguments.ui}));
  }
  const Frontend frontend = frontendFor(arguments.isCompletion && arguments.ui.empty()   ? "plain"
                                        : arguments.isUnattended && arguments.ui.empty() ? "plain"
                                                                                         : arguments.ui);
  const bool isInteractive = !arguments.isUnattended && isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
  if (isInteractive && (frontend == Frontend::terminal || frontend == Frontend::plain)) {
    if (const auto status = offerRunningInstall(frontend, noticesFor(arguments.isWithoutNotices))) {
      return *status;
    }
  }
  std::optional<InstallTypePlace> installTypePlace;
  if (arguments.installType.empty()) {
    installTypePlace.emplace();  // before anybody's file in its place is looked for
  }
  EngineOptions options;
  std::optional<InstallPlan> plan;
  try {
    plan = prepare(arguments, frontend, options);
  } catch (const UsageError& error) {
    writeRefusal(options, error);
    throw;
  }
  if (arguments.isCompletion) {
    return completed(options, plan, frontend);
  }
  switch (frontend) {
    case Frontend::json:
      if (plan) {
        const InEnglish english;
        const Introduction introduction = introduce(*plan, freeBytesAt);
        if (introduction.isRoomShort()) {
          options.warnings.push_back(shortRoomText(introduction));
        }
      }
      runEngine(options, Controller::program, {.requests = STDIN_FILENO, .events = STDOUT_FILENO});
    case Frontend::quiet: runEngine(options, Controller::nobody, {});
    case Frontend::plain: return runPlain(arguments, options, plan);
    case Frontend::terminal: break;
  }
  RunDescription description = describeRun(*plan);
  description.notices = noticesFor(arguments.isWithoutNotices);
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
  addNotifyOption(*run, arguments->isWithoutNotices);
  run->add_option("--summary", arguments->summary, _("Write the run summary to this file, as JSON"))
      ->type_name("FILE");
  run->add_flag("--unattended", arguments->isUnattended, _("Never ask; fail at once if anything is missing"));
  run->add_option("--disc-timeout", arguments->discTimeout,
                  _("Unattended: wait so long for each disc (default: 0)"))
      ->check(wholeNumber())
      ->type_name("SEC");
  run->add_option("--optional-discs", arguments->optionalDiscs, _("Unattended: skip (default) or wait"))
      ->check(oneOf({"skip", "wait"}))
      ->type_name("ACTION");
  run->add_flag("--complete", arguments->isCompletion, _("Install only what verify finds missing or wrong"));
  run->add_flag("--no-preinstall", arguments->noPreInstall,
                _("Use what a pre-install step has written to /tmp"));
  run->add_flag("--trusted", arguments->isTrusted, _("Install even if other users can change the package"));
  run->add_flag("--without-attributes", arguments->isWithoutAttributes,
                _("Install one disc even if there is no attributes file"));
  run->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return tavenhall::run(*arguments); }; });
}

}  // namespace tavenhall
