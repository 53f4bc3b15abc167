#include "host/cli/frontend_option.h"

#include "host/cli/command_line.h"
#include "host/terminal/terminal_facts.h"

namespace tavenhall {

void addFaceOption(CLI::App& command, std::string& name) {
  command.add_option("--ui", name, _("How the page is shown: json, plain, quiet or terminal"))
      ->check(oneOf({"json", "plain", "quiet", "terminal"}))
      ->type_name("FACE");
}

Face faceFor(const std::string& name) {
  if (name == "json") {
    return Face::json;
  }
  if (name == "quiet") {
    return Face::quiet;
  }
  return name != "plain" && terminalIsUsable() ? Face::terminal : Face::plain;
}

}  // namespace tavenhall
