#include "host/command_line.h"
#include "host/face_option.h"
#include "host/rehearse/rehearsal.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace tavenhall {

void addRehearseCommand(CommandLine& commandLine) {
  struct Arguments {
    RehearsalRequest request;
    std::string ui;
  };
  const auto arguments = std::make_shared<Arguments>();
  RehearsalRequest& request = arguments->request;
  CLI::App* command = commandLine.program.add_subcommand(
      "rehearse", "Install a whole set in a sandbox, and say whether it is right");
  command->add_option("SET", request.set, "The set's folder: the package, its attributes file, and discs/")
      ->required();
  command->add_option("--product", request.product, "The product, unless the set's rehearsal.json names it")
      ->type_name("NAME");
  command->add_option("--install-type", request.installType, "The edition to install, where there is a choice")
      ->check(CLI::IsMember({"Lite", "Full"}).description(""))
      ->type_name("Lite|Full");
  command
      ->add_option("--installed", request.installed,
                   "What the user has: a home, a folder with TANVO and DOVA in it, or what --keep kept")
      ->type_name("FOLDER");
  command->add_option("--late", request.late, "How often each disc is asked for in vain first")
      ->check(CLI::NonNegativeNumber.description(""))
      ->type_name("N");
  command->add_option("--keep", request.keep, "Keep what was installed, with the log, in this new folder")
      ->type_name("DIR");
  command->add_option("--report", request.report, "Write the report to this file too, as JSON")
      ->type_name("FILE");
  addFaceOption(*command, arguments->ui);
  command->footer(
      "Ends with 0 where all is installed, 1 where the install failed or content differs, 3 with remarks, and "
      "2 with bad usage or an unusable set.");
  command->callback([&commandLine, arguments] {
    commandLine.chosen = [arguments] {
      arguments->request.face = faceFor(arguments->ui);
      return rehearse(arguments->request);
    };
  });
}

}  // namespace tavenhall
