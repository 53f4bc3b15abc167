#include "host/build_facts.h"
#include "host/bundle_loader.h"
#include "host/engine_process.h"
#include "host/plain_face.h"
#include "host/pre_install.h"
#include "host/run_options.h"
#include "host/usage_error.h"

#include <CLI/CLI.hpp>
#include <clocale>
#include <cstdio>
#include <exception>
#include <iterator>
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
  std::string ui = "plain";
  std::string summary;
  bool noPreInstall = false;
};

CLI::App* addRunCommand(CLI::App& program, RunArguments& arguments) {
  CLI::App* run = program.add_subcommand("run", "Install: show the page and see it through");
  run->add_option("--package", arguments.package, "The installer package; its data lies beside it or on discs")
      ->type_name("PATH");
  run->add_option("--install-type", arguments.installType, "The edition to install, where there is a choice")
      ->check(CLI::IsMember({"Lite", "Full"}))
      ->type_name("Lite|Full");
  run->add_option("--product", arguments.product, "The product whose plug-in shows the page")
      ->check(CLI::IsMember(std::vector<std::string>(std::begin(kProducts), std::end(kProducts))))
      ->type_name("NAME");
  run->add_option("--bundle", arguments.bundle, "The plug-in bundle, instead of a product's own")
      ->type_name("DIR")
      ->excludes("--product");
  run->add_option("--ui", arguments.ui, "How the page is shown")
      ->check(CLI::IsMember({"json", "plain", "quiet"}))
      ->type_name("json|plain|quiet")
      ->capture_default_str();
  run->add_option("--summary", arguments.summary, "Write what happened to this file, as JSON")->type_name("FILE");
  run->add_flag("--no-preinstall", arguments.noPreInstall,
                "Use the files that a package's pre-install step has left in /tmp");
  return run;
}

RunOptions optionsFrom(const RunArguments& arguments) {
  RunOptions options;
  if (!arguments.noPreInstall) {
    if (arguments.package.empty()) {
      throw UsageError("--package is needed (or --no-preinstall)");
    }
    options.package = packageLocation(arguments.package);
    options.installType = arguments.installType;
  }
  options.bundle = arguments.bundle.empty() ? findBundle(arguments.product) : std::filesystem::path(arguments.bundle);
  options.face = arguments.ui == "json" ? Face::json : arguments.ui == "quiet" ? Face::quiet : Face::plain;
  options.summary = arguments.summary;
  return options;
}

ExitStatus run(const RunArguments& arguments) {
  const RunOptions options = optionsFrom(arguments);
  switch (options.face) {
    case Face::json: runEngine(options, {STDIN_FILENO, STDOUT_FILENO, -1});
    case Face::quiet: runEngine(options, {});
    case Face::plain: break;
  }
  return runPlainFace(options);
}

ExitStatus runProgram(int argc, char** argv) {
  CLI::App program("Installs sample libraries: the data page of the installer, without one.", "tavinstall");
  program.set_version_flag("--version", std::string("tavinstall ") + kVersion);
  program.require_subcommand(1);
  RunArguments arguments;
  addRunCommand(program, arguments);
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success& request) {
    program.exit(request);  // help or version, on standard output
    return ExitStatus::success;
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  return run(arguments);
}

}  // namespace

}  // namespace tavenhall

int main(int argc, char** argv) {
  using tavenhall::ExitStatus;
  // Character types alone: the log's month names are the same on every machine.
  std::setlocale(LC_CTYPE, "");
  ExitStatus status = ExitStatus::badUsage;
  try {
    status = tavenhall::runProgram(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tavinstall: %s\n", error.what());
  }
  return static_cast<int>(status);
}
