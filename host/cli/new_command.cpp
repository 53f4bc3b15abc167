#include "host/author/new_set.h"
#include "host/base/build_facts.h"
#include "host/base/exit_status.h"
#include "host/base/files.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"
#include "host/cli/verify_text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace tavenhall {

namespace {

struct NewArguments {
  NewSet set;
  std::string mode;
  std::string discs;
  std::string language;
};

std::vector<std::string> modeNames() {
  std::vector<std::string> names;
  names.reserve(kNewSetModes.size());
  for (const NewSetMode& mode : kNewSetModes) {
    names.emplace_back(mode.name);
  }
  return names;
}

// Asks on the terminal until one of the names is given; the first of them for an empty line.
std::string askFor(const std::string& prompt, const std::vector<std::string>& names) {
  while (true) {
    std::printf("%s (%s) [%s] ", prompt.c_str(), CLI::detail::join(names, ", ").c_str(), names.front().c_str());
    std::fflush(stdout);
    char line[64] = {};
    if (std::fgets(line, sizeof line, stdin) == nullptr) {
      throw UsageError(_("no answer; nothing was made"));
    }
    std::string answer(line, std::find(line, line + sizeof line, '\n'));
    if (answer.empty()) {
      return names.front();
    }
    if (std::find(names.begin(), names.end(), answer) != names.end()) {
      return answer;
    }
  }
}

std::string givenOrAsked(const std::string& given, const char* option, const std::string& prompt,
                         const std::vector<std::string>& names) {
  if (!given.empty()) {
    return given;
  }
  if (isatty(STDIN_FILENO) == 0 || isatty(STDOUT_FILENO) == 0) {
    throw UsageError(
        format(_("{0}; see {1}"), {format(_("{0} is required"), {option}), "tavinstall new --help"}));
  }
  return askFor(prompt, names);
}

NewSetTexts textsIn(const std::string& language, const NewSet& set) {
  if (language.empty()) {
    return newSetTexts(set);
  }
  speakLanguage(language, findCatalogs());
  NewSetTexts texts = newSetTexts(set);
  speakUsersLanguage(findCatalogs());
  return texts;
}

ExitStatus makeNewSet(NewArguments arguments) {
  NewSet& set = arguments.set;
  set.product = givenOrAsked(set.product, "--product", _("Product?"), productNames());
  const std::string mode = givenOrAsked(arguments.mode, "--mode", _("Installed from?"), modeNames());
  set.mode = std::find_if(kNewSetModes.begin(), kNewSetModes.end(), [&mode](const NewSetMode& known) {
               return known.name == mode;
             })->mode;
  if (!arguments.discs.empty()) {
    set.discs = std::atoi(arguments.discs.c_str());
    if (set.mode != NewSet::Mode::discs || set.hasEditions || set.discs < 1 || set.discs > kMostDiscs) {
      throw UsageError(
          format(_("{0}; see {1}"),
                 {_("--discs is from 1 to 26, for --mode discs without --editions"), "tavinstall new --help"}));
    }
  }
  printWritten(makeSet(set, textsIn(arguments.language, set)));
  return ExitStatus::success;
}

}  // namespace

void addNewCommand(CommandLine& commandLine) {
  const auto arguments = std::make_shared<NewArguments>();
  CLI::App* command =
      commandLine.program.add_subcommand("new", _("Make an installer set with placeholders, to begin with"));
  command->add_option("SET", arguments->set.folder, _("Folder to make; it must not exist or must be empty"))
      ->required();
  command
      ->add_option("--product", arguments->set.product,
                   format(_("Product to install: {0}"), {CLI::detail::join(productNames(), ", ")}))
      ->check(oneOf(productNames()))
      ->type_name("NAME");
  command->add_option("--mode", arguments->mode, CLI::detail::join(modeNames(), ", "))
      ->check(oneOf(modeNames()))
      ->type_name("MODE");
  command->add_option("--discs", arguments->discs, _("How many discs (default: 2)"))
      ->check(wholeNumber())
      ->type_name("N");
  command->add_flag("--editions", arguments->set.hasEditions, _("With a Lite and a Full edition"));
  command
      ->add_option("--language", arguments->language, _("Language of the page's texts; by default the user's"))
      ->check(oneOf({std::begin(kLanguages), std::end(kLanguages)}))
      ->type_name("LANGUAGE");
  command->callback(
      [&commandLine, arguments] { commandLine.chosen = [arguments] { return makeNewSet(*arguments); }; });
}

}  // namespace tavenhall
