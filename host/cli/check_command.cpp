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
  return result.remarks.exitStatus();
}

}  // namespace

void addCheckCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<CheckArguments>();
  CLI::App* check = commandLine.program.add_subcommand(
      "check", _("Say what the page would do with an installer set, and what is wrong with it"));
  check->add_option("SET", arguments->set, _("A folder with the package, its attributes file, and discs/"))
      ->required();
  check
      ->add_option("--product", arguments->product,
                   format(_("The product, unless the set's rehearsal.json names it: {0}"),
                          {CLI::detail::join(productNames(), ", ")}))
      ->check(oneOf(productNames()))
      ->type_name("NAME");
  check
      ->add_option("--install-type", arguments->installType,
                   _("Lite or Full: the edition to plan for, where there is a choice"))
      ->check(oneOf({"Lite", "Full"}))
      ->type_name("TYPE");
  check
      ->add_option("--installed", arguments->installed,
                   _("What the user has: a home, or a folder with TANVO and DOVA in it"))
      ->type_name("FOLDER");
  check->add_option("--format", arguments->format, _("How to say it"))
      ->check(oneOf({"text", "json"}))
      ->type_name("text|json")
      ->capture_default_str();
  check->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return tavenhall::check(*arguments); }; });
}

}  // namespace tavenhall
