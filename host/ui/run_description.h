#pragma once

#include "host/base/text.h"
#include "host/ui/introduction.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tavenhall {

// What a frontend presents of a run beyond the engine's events.
struct RunDescription {
  Introduction introduction;
  std::string log;  // the path of the installation log, as the user is shown it; empty: it is not shown
  std::string afterStop =
      _("The files copied so far are kept. Run the installer again to complete the installation.");
};

}  // namespace tavenhall
