#include "host/cli/command_line.h"

#include "host/base/build_facts.h"
#include "host/base/text.h"
#include "host/terminal/terminal_device.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>

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

std::string unexpectedText(const CLI::App& program) {
  const std::vector<std::string> left = program.remaining(true);
  return plural("The following argument was not expected: {1}",
                "The following arguments were not expected: {1}", static_cast<std::int64_t>(left.size()),
                {CLI::detail::join(left, " ")});
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

std::string argumentErrorText(const CLI::App& program, const std::vector<std::string>& arguments,
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

void addFrontendOption(CLI::App& command, std::string& name) {
  command.add_option("--ui", name, _("Frontend: json, plain, quiet or terminal"))
      ->check(oneOf({"json", "plain", "quiet", "terminal"}))
      ->type_name("FRONTEND");
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

}  // namespace tavenhall
