#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace tavenhall {

namespace {

constexpr const char* kExitStatusTopic = "exit-status";

ExitStatus showHelp(const CLI::App& program, const std::string& topic) {
  const std::string text = topic == kExitStatusTopic ? exitStatusText()
                           : topic.empty()           ? helpText(program)
                                                     : helpText(*program.get_subcommand(topic));
  std::fputs(text.c_str(), stdout);
  return ExitStatus::success;
}

}  // namespace

// Call it after the other commands: they are its topics.
void addHelpCommand(CommandLine& commandLine) {
  std::vector<std::string> topics;
  for (const CLI::App* command : commandLine.program.get_subcommands([](const CLI::App*) { return true; })) {
    topics.push_back(command->get_name());
  }
  topics.emplace_back(kExitStatusTopic);
  const auto topic = std::make_shared<std::string>();
  CLI::App* help =
      commandLine.program.add_subcommand("help", _("Show the help of a command, or all exit statuses"));
  help->add_option("TOPIC", *topic, format(_("One of: {0}"), {CLI::detail::join(topics, ", ")}))
      ->check(oneOf(topics));
  help->callback([&commandLine, topic] {
    commandLine.chosen = [&commandLine, topic] { return showHelp(commandLine.program, *topic); };
  });
}

}  // namespace tavenhall
