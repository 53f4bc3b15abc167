#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/cli/frontend_option.h"
#include "host/rehearse/rehearsal.h"

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
      "rehearse", _("Install a whole set in a sandbox, and say whether it is right"));
  command->add_option("SET", request.set, _("A folder with the package, its attributes file, and discs/"))
      ->required();
  command
      ->add_option("--product", request.product,
                   format(_("The product, unless the set's rehearsal.json names it: {0}"),
                          {CLI::detail::join(productNames(), ", ")}))
      ->type_name("NAME");
  command
      ->add_option("--install-type", request.installType,
                   _("Lite or Full: the edition to install, where there is a choice"))
      ->check(oneOf({"Lite", "Full"}))
      ->type_name("TYPE");
  command
      ->add_option("--installed", request.installed,
                   _("What the user has: a home, a folder with TANVO and DOVA in it, or what --keep kept"))
      ->type_name("FOLDER");
  command->add_option("--late", request.late, _("How often each disc is asked for in vain first"))
      ->check(wholeNumber())
      ->type_name("N");
  command->add_option("--keep", request.keep, _("Keep what was installed, with the log, in this new folder"))
      ->type_name("DIR");
  command->add_option("--report", request.report, _("Write the report to this file too, as JSON"))
      ->type_name("FILE");
  addFaceOption(*command, arguments->ui);
  command->callback([&commandLine, arguments] {
    commandLine.chosen = [arguments] {
      arguments->request.face = faceFor(arguments->ui);
      return rehearse(arguments->request);
    };
  });
}

}  // namespace tavenhall
