#include "host/face_option.h"

#include "host/terminal/terminal_facts.h"

#include <CLI/CLI.hpp>

namespace tavenhall {

void addFaceOption(CLI::App& command, std::string& name) {
  // The names are in the option's own text already, so the help does not list them again.
  command.add_option("--ui", name, "How the page is shown; terminal where there is one, else plain")
      ->check(CLI::IsMember({"json", "plain", "quiet", "terminal"}).description(""))
      ->type_name("json|plain|quiet|terminal");
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
