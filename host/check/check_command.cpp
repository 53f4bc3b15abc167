#include "host/build_facts.h"
#include "host/check/check.h"
#include "host/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

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
      "check", "Say what the page would do with an installer set, and what is wrong with it");
  check->add_option("SET", arguments->set, "A folder with the package, its attributes file, and discs/")
      ->required();
  check->add_option("--product", arguments->product, "The product, unless the set's rehearsal.json names it")
      ->check(CLI::IsMember(std::vector<std::string>(std::begin(kProducts), std::end(kProducts))))
      ->type_name("NAME");
  check
      ->add_option("--install-type", arguments->installType, "The edition to plan for, where there is a choice")
      ->check(CLI::IsMember({"Lite", "Full"}))
      ->type_name("Lite|Full");
  check
      ->add_option("--installed", arguments->installed,
                   "What the user has: a home, or a folder with TANVO and DOVA in it")
      ->type_name("FOLDER");
  check->add_option("--format", arguments->format, "How to say it")
      ->check(CLI::IsMember({"text", "json"}))
      ->type_name("text|json")
      ->capture_default_str();
  check->footer("Ends with 0 where nothing is wrong, 1 with errors, 3 with warnings only, 2 with bad usage.");
  check->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return tavenhall::check(*arguments); }; });
}

}  // namespace tavenhall
