#include "host/base/build_facts.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/check/report.h"
#include "host/cli/command_line.h"
#include "host/cli/rehearse_storyboard.h"
#include "host/cli/run_description.h"
#include "host/plain/plain_frontend.h"
#include "host/rehearse/rehearsal.h"
#include "host/terminal/terminal_frontend.h"

#include <iterator>
#include <memory>
#include <string>
#include <vector>

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
  introduction.what = join(introduction.what, _("This is a rehearsal in a sandbox."));
  introduction.destination = insidePath(introduction.destination, scene.sandbox);
  for (std::string& place : introduction.to) {
    place = insidePath(place, scene.sandbox);
  }
  const bool isKept = !scene.keptFolder.empty();
  description.log = isKept ? scene.log : "";  // it comes there at the end
  description.afterStop =
      isKept ? format(_("What was installed so far is in {0}."), {scene.keptFolder}) : _("Nothing was kept.");
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

CheckVerdict checkVerdict(const RehearsalRequest& request) {
  CheckVerdict verdict;
  try {
    const CheckResult result = checkSet(checkRequestFor(request));
    for (const Diagnostic& diagnostic : result.diagnostics.all()) {
      if (diagnostic.severity == Severity::error) {
        verdict.errors.push_back(diagnosticLine(diagnostic));
      }
    }
    verdict.warnings = result.diagnostics.count(Severity::warning);
  } catch (const UsageError& error) {  // the set has changed meanwhile
    verdict.errors.emplace_back(error.what());
  }
  return verdict;
}

}  // namespace

void addRehearseCommand(CommandLine& commandLine) {
  struct Arguments {
    RehearsalRequest request;
    std::string ui;
    std::string storyboard;
    std::vector<std::string> languages;
  };
  const auto arguments = std::make_shared<Arguments>();
  RehearsalRequest& request = arguments->request;
  CLI::App* command =
      commandLine.program.add_subcommand("rehearse", _("Install a set in a sandbox and verify the result"));
  command->add_option("SET", request.set, _("Folder with the package, its attributes file and discs/"))
      ->required();
  addProductOption(*command, request.product);
  command
      ->add_option("--install-type", request.installType,
                   _("Edition to install if there is a choice: Lite or Full"))
      ->transform(edition())
      ->type_name("TYPE");
  command
      ->add_option(
          "--installed", request.installed,
          _("What the user has installed: a home, a folder with TANVO and DOVA, or a folder from --keep"))
      ->type_name("FOLDER");
  command->add_flag("--allow-outside", request.allowsOutside,
                    _("Rehearse a set whose links or paths lead out of its folder"));
  command->add_option("--late", request.late, _("Report each disc as missing N times before inserting it"))
      ->check(wholeNumber())
      ->type_name("N");
  command->add_option("--keep", request.keep, _("Keep the installed files and the log in this new folder"))
      ->type_name("DIR");
  command->add_option("--report", request.report, _("Also write the report to this file, as JSON"))
      ->type_name("FILE");
  addFrontendOption(*command, arguments->ui);
  CLI::Option* storyboard = command
                                ->add_option("--storyboard", arguments->storyboard,
                                             _("Rehearse in each language; show all screens in this HTML file"))
                                ->type_name("FILE");
  command->add_option("--language", arguments->languages, _("Only in this language; may be repeated"))
      ->check(oneOf({std::begin(kLanguages), std::end(kLanguages)}))
      ->needs(storyboard)
      ->allow_extra_args(false)
      ->type_name("LANGUAGE");
  for (const char* other : {"--keep", "--report", "--ui"}) {
    storyboard->excludes(command->get_option(other));
  }
  command->callback([&commandLine, arguments] {
    commandLine.chosen = [arguments] {
      if (!arguments->storyboard.empty()) {
        return rehearseStoryboard(arguments->request, arguments->storyboard, arguments->languages);
      }
      RehearsalRequest wanted = arguments->request;
      wanted.check = [&wanted] { return checkVerdict(wanted); };
      return rehearse(wanted, viewFor(frontendFor(arguments->ui)));
    };
  });
}

}  // namespace tavenhall
