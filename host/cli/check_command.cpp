#include "host/base/text.h"
#include "host/check/check.h"
#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>

namespace tavenhall {

namespace {

struct CheckArguments {
  std::string set;
  std::string product;
  std::string installType;
  std::string installed;
  std::string format = "text";
};

ExitStatus check(const CheckArguments& arguments) {
  if (arguments.format == "json") {
    speakEnglish();
  }
  const CheckResult result =
      checkSet({arguments.set, arguments.product, arguments.installType, arguments.installed});
  const std::string report = arguments.format == "json" ? checkJson(result) : checkText(result);
  std::fputs(report.c_str(), stdout);
  return result.diagnostics.exitStatus();
}

}  // namespace

void addCheckCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<CheckArguments>();
  CLI::App* check = commandLine.program.add_subcommand(
      "check", _("Check an installer set and show what the page would do with it"));
  check->add_option("SET", arguments->set, _("Folder with the package, its attributes file and discs/"))
      ->required();
  addProductOption(*check, arguments->product);
  check
      ->add_option("--install-type", arguments->installType,
                   _("Edition to plan for if there is a choice: Lite or Full"))
      ->transform(edition())
      ->type_name("TYPE");
  check
      ->add_option("--installed", arguments->installed,
                   _("What the user has installed: a home, or a folder with TANVO and DOVA"))
      ->type_name("FOLDER");
  check->add_option("--format", arguments->format, _("Output format of the report"))
      ->check(oneOf({"text", "json"}))
      ->type_name("text|json")
      ->capture_default_str();
  check->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return tavenhall::check(*arguments); }; });
}

}  // namespace tavenhall
