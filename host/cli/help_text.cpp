#include "host/cli/command_line.h"

#include "host/base/display_text.h"
#include "host/base/exit_status.h"
#include "host/base/text.h"

#include <CLI/CLI.hpp>
#include <string_view>
#include <vector>

namespace tavenhall {

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
  const bool takesValue = option.get_type_size() > 0;
  return takesValue ? name + " " + option.get_type_name() : name;
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

std::string exitTextOf(const std::string& command) {
  constexpr int kStatusColumns = 6;
  std::string text;
  for (const ExitMeaning& row : kExitMeanings) {
    if (command == row.command) {
      text += entry(std::to_string(static_cast<int>(row.status)), _(row.meaning), kStatusColumns);
    }
  }
  return text.empty() ? text : std::string("\n") + _("Exit status:") + "\n" + text;
}

}  // namespace

std::string helpText(const CLI::App& command) {
  constexpr int kNameColumns = 23;
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
  text += exitTextOf(command.get_name());
  if (hasCommands(command)) {
    text += std::string("\n") + _("See also tavinstall COMMAND --help and man tavinstall") + "\n";
  }
  return text;
}

}  // namespace tavenhall
