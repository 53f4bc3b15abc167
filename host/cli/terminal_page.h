#pragma once

#include "host/base/text.h"
#include "host/engine/run_options.h"
#include "host/ui/introduction.h"

#include <cstdint>
#include <string>

namespace tavenhall {

// What the page says that its engine does not tell.
struct TerminalPage {
  Introduction introduction;
  std::string logPath;        // as this process sees it; empty: there is none
  std::string logShown;       // as the user is told of it; empty: not at all
  std::int64_t logStart = 0;  // its size before the engine was started, bytes
  std::string afterStop = _("What was copied so far stays; run the installer again to complete it.");
};

// That of a run of this machine's own. Before its engine is started.
[[nodiscard]] TerminalPage terminalPageFor(const RunOptions& options);

}  // namespace tavenhall
