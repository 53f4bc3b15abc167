#include "host/base/files.h"
#include "host/base/regular_file.h"
#include "host/base/text.h"
#include "host/check/report.h"
#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>
#include <vector>

namespace tavenhall {

namespace {

struct CheckArguments {
  std::vector<std::string> sets;
  std::string product;
  std::string installType;
  std::string installed;
  std::string format = "text";
  std::vector<std::string> selected;
  std::vector<std::string> ignored;
  std::string failOn;
  std::string explained;
  bool isFixed = false;
};

std::vector<std::string> kindNames() {
  std::vector<std::string> names;
  for (const DiagnosticKind& kind : diagnosticKinds()) {
    names.emplace_back(kind.name);
  }
  return names;
}

// Wrapped, coloured and linked where standard output is a terminal.
ReportStyle styleOfOutput() {
  if (isatty(STDOUT_FILENO) == 0) {
    return {};
  }
  constexpr int kUsualColumns = 80;
  constexpr int kFewestColumns = 40;
  struct winsize size {};
  ioctl(STDOUT_FILENO, TIOCGWINSZ, &size);
  const char* noColour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool isDumb = terminal == nullptr || std::string(terminal) == "dumb";
  ReportStyle style;
  style.columns = size.ws_col == 0 ? kUsualColumns : std::max<int>(kFewestColumns, size.ws_col);
  style.hasColour = !isDumb && (noColour == nullptr || *noColour == '\0');
  style.document = isDumb ? std::filesystem::path() : findDocument("diagnostics.md");
  return style;
}

std::string reportOf(const std::vector<CheckResult>& results, const std::string& format) {
  if (format == "json") {
    return checkJson(results);
  }
  if (format == "sarif") {
    return checkSarif(results);
  }
  if (format == "github") {
    return checkGithub(results);
  }
  const ReportStyle style = styleOfOutput();
  std::string text;
  for (const CheckResult& result : results) {
    text += (text.empty() ? "" : "\n") + checkText(result, style);
  }
  return text;
}

void fixSet(const CheckRequest& request, bool isShown) {
  const CheckedSet before = openCheckedSet(request);
  const std::string fixed = fixedAttributes(request);
  const std::string diff = unifiedDiff(before.attributesPlace().file, before.plan.attributes.bytes(), fixed);
  if (diff.empty()) {
    return;
  }
  if (std::filesystem::is_symlink(before.plan.attributes.path())) {
    throw UsageError(format(_("{0} is a link; correct the file that it leads to"),
                            {before.plan.attributes.path().string()}));
  }
  replaceFile(before.plan.attributes.path(), fixed);
  if (isShown) {
    std::puts(printableText(diff).c_str());
  }
}

// The worst of all sets. With --fail-on, severities from that one on are a failure, and others no matter.
ExitStatus worstStatus(const std::vector<CheckResult>& results, const std::string& failOn) {
  ExitStatus worst = ExitStatus::success;
  for (const CheckResult& result : results) {
    const Diagnostics& diagnostics = result.diagnostics;
    ExitStatus status = diagnostics.exitStatus();
    if (!failOn.empty()) {
      const bool isFailure = diagnostics.count(Severity::error) > 0 ||
                             (failOn != "error" && diagnostics.count(Severity::warning) > 0) ||
                             (failOn == "note" && diagnostics.count(Severity::note) > 0);
      status = isFailure ? ExitStatus::failure : ExitStatus::success;
    }
    worst = worseOf(worst, status);
  }
  return worst;
}

ExitStatus explain(const std::string& name) {
  speakEnglish();
  std::fputs(explanationText(*findDiagnosticKind(name)).c_str(), stdout);
  return ExitStatus::success;
}

ExitStatus check(const CheckArguments& arguments) {
  if (!arguments.explained.empty()) {
    return explain(arguments.explained);
  }
  if (arguments.sets.empty()) {
    throw UsageError(
        format(_("{0}; see {1}"), {format(_("{0} is required"), {"SET"}), "tavinstall check --help"}));
  }
  if (arguments.format != "text") {
    speakEnglish();
  }
  const auto isIn = [](const std::vector<std::string>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  std::vector<CheckResult> results;
  for (const std::string& set : arguments.sets) {
    const CheckRequest request{set, arguments.product, arguments.installType, arguments.installed, {}};
    if (arguments.isFixed) {
      fixSet(request, arguments.format == "text");
    }
    results.push_back(checkSet(request));
    results.back().diagnostics.keepOnly([&](std::string_view name) {
      return (arguments.selected.empty() || isIn(arguments.selected, name)) && !isIn(arguments.ignored, name);
    });
  }
  std::fputs(reportOf(results, arguments.format).c_str(), stdout);
  return worstStatus(results, arguments.failOn);
}

}  // namespace

void addCheckCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<CheckArguments>();
  CLI::App* check = commandLine.program.add_subcommand(
      "check", _("Check an installer set and show what the page would do with it"));
  check->add_option("SET", arguments->sets, _("Folders with the package, its attributes file and discs/"));
  addProductOption(*check, arguments->product);
  check
      ->add_option("--install-type", arguments->installType,
                   _("Edition to plan for if there is a choice: Lite or Full"))
      ->transform(edition())
      ->type_name("TYPE");
  check
      ->add_option("--installed", arguments->installed,
                   _("What the user has installed: a home, or data folders"))
      ->type_name("FOLDER");
  check->add_option("--format", arguments->format, _("text, json, sarif, or github (for GitHub Actions)"))
      ->check(oneOf({"text", "json", "sarif", "github"}))
      ->type_name("FORMAT");
  check->add_option("--select", arguments->selected, _("Report this diagnostic alone; may be repeated"))
      ->check(oneOf(kindNames()))
      ->allow_extra_args(false)
      ->type_name("NAME");
  check->add_option("--ignore", arguments->ignored, _("Do not report this diagnostic; may be repeated"))
      ->check(oneOf(kindNames()))
      ->allow_extra_args(false)
      ->type_name("NAME");
  check->add_option("--fail-on", arguments->failOn, _("End with status 1 from this severity on"))
      ->check(oneOf({"error", "warning", "note"}))
      ->type_name("SEVERITY");
  check->add_flag("--fix", arguments->isFixed, _("Correct the attributes file where that is safe; show how"));
  check->add_option("--explain", arguments->explained, _("Explain a diagnostic, with an example"))
      ->check(oneOf(kindNames()))
      ->type_name("NAME");
  check->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return tavenhall::check(*arguments); }; });
}

}  // namespace tavenhall
