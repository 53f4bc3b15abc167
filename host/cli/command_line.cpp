#include "host/cli/command_line.h"

#include "host/base/build_facts.h"
#include "host/base/display_text.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/check/spelling.h"
#include "host/terminal/terminal_device.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tavenhall {

namespace {

using Options = std::vector<const CLI::Option*>;

// The options of the program and of the command.
Options optionsOf(const CLI::App& program) {
  Options options = program.get_options();
  for (const CLI::App* command : program.get_subcommands()) {
    const Options more = command->get_options();
    options.insert(options.end(), more.begin(), more.end());
  }
  return options;
}

bool takesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

// The option or command that somebody who wrote `written` probably meant; empty if there is none.
std::string meantBy(const std::string& written, const CLI::App& program) {
  std::vector<std::string> known;
  if (written.starts_with("-")) {
    for (const CLI::Option* option : optionsOf(program)) {
      for (const std::string& name : option->get_lnames()) {
        known.push_back("--" + name);
      }
    }
  } else if (program.get_subcommands().empty()) {
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
      known.push_back(command->get_name());
    }
  }
  constexpr std::size_t kShortestBeginning = 3;
  for (const std::string& name : known) {
    if (written.size() >= kShortestBeginning && name.starts_with(written)) {
      return name;
    }
  }
  const auto nearest = std::min_element(known.begin(), known.end(),
                                        [&written](const std::string& one, const std::string& other) {
                                          return editDistance(written, one) < editDistance(written, other);
                                        });
  const int mostEdits = std::max(1, static_cast<int>(written.size()) / 3);
  return nearest != known.end() && editDistance(written, *nearest) <= mostEdits ? *nearest : std::string();
}

std::string unexpectedText(const CLI::App& program) {
  const std::vector<std::string> left = program.remaining(true);
  const std::string text =
      plural("The following argument was not expected: {1}", "The following arguments were not expected: {1}",
             static_cast<std::int64_t>(left.size()), {CLI::detail::join(left, " ")});
  const std::string written = left.empty() ? "" : left.front().substr(0, left.front().find('='));
  const std::string meant = meantBy(written, program);
  return meant.empty() ? text : format(_("{0} (did you mean {1}?)"), {text, meant});
}

std::string requiredText(const CLI::App& program) {
  for (const CLI::Option* option : optionsOf(program)) {
    if (option->get_required() && option->count() == 0) {
      return format(_("{0} is required"), {option->get_name()});
    }
  }
  return program.remaining(true).empty() ? _("A subcommand is required") : unexpectedText(program);
}

std::string excludedText(const CLI::App& program, const CLI::ParseError& error) {
  for (const CLI::Option* option : optionsOf(program)) {
    for (const CLI::Option* other : option->get_excludes()) {
      if (option->count() > 0 && other->count() > 0) {
        return format(_("{0} cannot be combined with {1}"), {option->get_name(), other->get_name()});
      }
    }
  }
  return error.what();
}

// An option was given twice, or without a value; only the last argument can lack one.
std::string numberOfValuesText(const CLI::App& program, const std::vector<std::string>& arguments) {
  for (const CLI::Option* option : optionsOf(program)) {
    if (takesValue(*option) && option->count() > 1) {
      return format(_("{0} can be given only once"), {option->get_name()});
    }
  }
  return format(_("{0} requires a value"), {arguments.back().substr(0, arguments.back().find('='))});
}

// A value of the wrong type. Numbers have their own check, so it is "--flag=value".
std::string flagValueText(const CLI::App& program, const std::vector<std::string>& arguments,
                          const CLI::ParseError& error) {
  const Options options = optionsOf(program);
  for (const std::string& argument : arguments) {
    const std::string name = argument.substr(0, argument.find('='));
    const bool isFlag = std::any_of(options.begin(), options.end(), [&name](const CLI::Option* option) {
      return !takesValue(*option) && option->check_name(name);
    });
    if (isFlag && name != argument) {
      return format(_("{0} takes no value"), {name});
    }
  }
  return error.what();
}

}  // namespace

CLI::Validator oneOf(const std::vector<std::string>& names) {
  const auto check = [names](const std::string& value) {
    return std::find(names.begin(), names.end(), value) != names.end()
               ? std::string()
               : format(_("{0} not in {1}"), {value, "{" + CLI::detail::join(names, ",") + "}"});
  };
  return CLI::Validator(check, "");
}

CLI::Validator edition() {
  const std::vector<std::string> names{"Lite", "Full"};
  const auto check = [names](std::string& value) {
    const auto meant = std::find_if(names.begin(), names.end(), [&value](const std::string& name) {
      return equalsIgnoringCase(value, name);
    });
    if (meant != names.end()) {
      value = *meant;
    }
    return oneOf(names)(value);
  };
  return CLI::Validator(check, "");
}

CLI::Validator wholeNumber() {
  const auto check = [](const std::string& value) {
    int number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    return error == std::errc() && end == value.data() + value.size() && number >= 0
               ? std::string()
               : format(_("{0} is not an integer from 0 up"), {value});
  };
  return CLI::Validator(check, "");
}

std::vector<std::string> productNames() { return {std::begin(kProducts), std::end(kProducts)}; }

namespace {

std::string reasonOf(const CLI::App& program, const std::vector<std::string>& arguments,
                     const CLI::ParseError& error) {
  switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::ExtrasError: return unexpectedText(program);
    case CLI::ExitCodes::RequiredError: return requiredText(program);
    case CLI::ExitCodes::ExcludesError: return excludedText(program, error);
    case CLI::ExitCodes::ArgumentMismatch: return numberOfValuesText(program, arguments);
    case CLI::ExitCodes::ConversionError: return flagValueText(program, arguments, error);
    default: return error.what();  // of a value that a check above does not take, behind the option's name
  }
}

}  // namespace

std::string argumentErrorText(const CLI::App& program, const std::vector<std::string>& arguments,
                              const CLI::ParseError& error) {
  const auto commands = program.get_subcommands();
  const std::string command = commands.empty() ? "" : " " + commands.front()->get_name();
  return format(_("{0}; see {1}"),
                {reasonOf(program, arguments, error), program.get_name() + command + " --help"});
}

void addFrontendOption(CLI::App& command, std::string& name) {
  command.add_option("--ui", name, _("Frontend: json, plain, quiet or terminal"))
      ->check(oneOf({"json", "plain", "quiet", "terminal"}))
      ->type_name("FRONTEND");
}

void addProductOption(CLI::App& command, std::string& name) {
  command
      .add_option("--product", name,
                  format(_("Product, unless the set's rehearsal.json names it: {0}"),
                         {CLI::detail::join(productNames(), ", ")}))
      ->check(oneOf(productNames()))
      ->type_name("NAME");
}

void addNotifyOption(CLI::App& command, bool& isOff) {
  command.add_flag("--no-notify", isOff, _("No bell, window title or notification"));
}

NoticeAbilities noticesFor(bool isOff) {
  return isOff || isatty(STDOUT_FILENO) == 0 ? NoticeAbilities() : noticeAbilities(std::getenv);
}

Frontend frontendFor(const std::string& name) {
  if (name == "json") {
    return Frontend::json;
  }
  if (name == "quiet") {
    return Frontend::quiet;
  }
  return name != "plain" && terminalIsUsable() ? Frontend::terminal : Frontend::plain;
}

namespace {

constexpr int kScreenColumns = 79;  // some terminals break a line that fills the last column

// "  name    text", with the text wrapped beside the name, or below it where the name is long.
std::string entry(const std::string& name, std::string_view text, int nameColumns) {
  std::string lines;
  std::string start = "  " + name;
  if (displayWidth(start) + 2 > nameColumns) {
    lines = start + "\n";
    start.clear();
  }
  for (const std::string& line : wrapText(text, kScreenColumns - nameColumns)) {
    lines += padRight(start, nameColumns) + line + "\n";
    start.clear();
  }
  return lines;
}

std::string nameOf(const CLI::Option& option) {
  if (option.get_positional()) {
    return option.get_required() ? option.get_name(true) : "[" + option.get_name(true) + "]";
  }
  std::string name;
  for (const std::string& letter : option.get_snames()) {
    name += "-" + letter + ", ";
  }
  name += "--" + option.get_lnames().front();
  return takesValue(option) ? name + " " + option.get_type_name() : name;
}

std::string textOf(const CLI::Option& option) {
  // The default: the environment variable's value if it is set, or the option's own.
  std::string given = option.get_default_str();
  if (given.empty() && !option.get_envname().empty()) {
    given = "$" + option.get_envname();
  }
  return option.get_description() + (given.empty() ? "" : " " + format(_("(default: {0})"), {given}));
}

bool hasCommands(const CLI::App& command) {
  return !command.get_subcommands([](const CLI::App*) { return true; }).empty();
}

std::string usageOf(const CLI::App& command) {
  if (hasCommands(command)) {
    return format(_("Usage: {0}"), {command.get_name() + _(" COMMAND [OPTION]...")});
  }
  const std::string program = command.get_parent() == nullptr ? "" : command.get_parent()->get_name() + " ";
  std::string line = program + command.get_name() + _(" [OPTION]...");
  for (const CLI::Option* option : command.get_options()) {
    line += option->get_positional() ? " " + nameOf(*option) : "";
  }
  return format(_("Usage: {0}"), {line});
}

}  // namespace

std::string exitStatusText() {
  constexpr int kStatusColumns = 6;
  std::string text;
  std::string_view command;
  for (const ExitMeaning& row : kExitMeanings) {
    if (command != row.command) {
      text += (text.empty() ? "tavinstall " : "\ntavinstall ") + std::string(row.command) + "\n";
      command = row.command;
    }
    text += entry(std::to_string(static_cast<int>(row.status)), _(row.meaning), kStatusColumns);
  }
  return text;
}

std::string helpText(const CLI::App& command) {
  constexpr int kNameColumns = 24;
  std::string text = command.get_description() + "\n" + usageOf(command) + "\n\n";
  for (const CLI::App* subcommand : command.get_subcommands([](const CLI::App*) { return true; })) {
    text += entry(subcommand->get_name(), subcommand->get_description(), kNameColumns);
  }
  text += hasCommands(command) ? "\n" : "";
  for (const bool isPositional : {true, false}) {
    for (const CLI::Option* option : command.get_options()) {
      if (option->get_positional() == isPositional) {
        text += entry(nameOf(*option), textOf(*option), kNameColumns);
      }
    }
  }
  const bool hasMeanings =
      std::any_of(std::begin(kExitMeanings), std::end(kExitMeanings),
                  [&command](const ExitMeaning& row) { return command.get_name() == row.command; });
  text += hasMeanings ? std::string("\n") + _("For exit statuses see tavinstall help exit-status") + "\n" : "";
  if (hasCommands(command)) {
    text += std::string("\n") + _("See also tavinstall COMMAND --help and man tavinstall") + "\n";
  }
  return text;
}

}  // namespace tavenhall
