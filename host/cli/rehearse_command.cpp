#include "host/base/files.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/cli/frontend_option.h"
#include "host/cli/run_description.h"
#include "host/plain/plain_frontend.h"
#include "host/rehearse/rehearsal.h"
#include "host/terminal/terminal_frontend.h"

#include <memory>

namespace tavenhall {

namespace {

// A path in the sandbox as the page sees it.
std::string insidePath(const std::string& path, const std::string& sandbox) {
  return path.starts_with(sandbox + "/") ? path.substr(sandbox.size()) : path;
}

RunDescription describe(const RehearsalScene& scene) {
  RunDescription description;
  Introduction& introduction = description.introduction;
  introduction = introduce(scene.plan, freeBytesAt);
  introduction.what = join(introduction.what, _("It is a rehearsal, in folders of its own."));
  introduction.destination = insidePath(introduction.destination, scene.sandbox);
  for (std::string& place : introduction.to) {
    place = insidePath(place, scene.sandbox);
  }
  const bool isKept = !scene.keptFolder.empty();
  description.log = isKept ? scene.log : "";
  description.failures = [log = scene.log] { return failuresInLog(log, 0); };
  description.afterStop = isKept ? format(_("What was installed so far is in {0}."), {scene.keptFolder})
                                 : _("Nothing of it is left.");
  return description;
}

RehearsalView viewFor(Frontend frontend) {
  switch (frontend) {
    case Frontend::json: return {.kind = RehearsalView::Kind::program, .process = {}, .run = {}};
    case Frontend::quiet: return {.kind = RehearsalView::Kind::nobody, .process = {}, .run = {}};
    case Frontend::plain:
      return {.kind = RehearsalView::Kind::frontend,
              .process = {},
              .run = [](const EngineConnection& engine, const RehearsalScene& scene) {
                static_cast<void>(runPlainFrontend(engine, describe(scene)));
              }};
    case Frontend::terminal: break;
  }
  return {.kind = RehearsalView::Kind::frontend,
          .process = {.capturesErrors = true},
          .run = [](const EngineConnection& engine, const RehearsalScene& scene) {
            static_cast<void>(runTerminalFrontend(engine, describe(scene)));
          }};
}

}  // namespace

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
  addFrontendOption(*command, arguments->ui);
  command->callback([&commandLine, arguments] {
    commandLine.chosen = [arguments] {
      return rehearse(arguments->request, viewFor(frontendFor(arguments->ui)));
    };
  });
}

}  // namespace tavenhall
