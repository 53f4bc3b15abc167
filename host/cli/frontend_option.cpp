#include "host/cli/frontend_option.h"

#include "host/cli/command_line.h"
#include "host/terminal/terminal_facts.h"

namespace tavenhall {

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
