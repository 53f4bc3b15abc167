#include "tests/cocoa/window/virtual_display.h"

#include <stdexcept>

namespace tavenhall::test {

VirtualDisplay::VirtualDisplay()
    : server_({"setpriv", "--pdeathsig", "KILL", "Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24",
               "-nolisten", "tcp", "-noreset"}) {
  const auto number = server_.readLine();
  if (!number) {
    server_.waitForEnd();
    throw std::runtime_error("Xvfb does not serve: " + server_.standardError());
  }
  name_ = ":" + *number;
}

}  // namespace tavenhall::test
