#pragma once

#include "host/protocol/engine_client.h"
#include "host/ui/introduction.h"

namespace tavenhall {

// Shows one run as a full-screen page. Only where terminalIsUsable(). Blocks until the run has ended and the
// page is closed. Call it before any thread is started.
//
// How it can end before the install does:
//   Ctrl-C, SIGINT    asks the user; then as SIGTERM
//   SIGTERM           stops the engine and restores the terminal; ExitStatus::stopped
//   SIGHUP, or a terminal that can no longer be read or written
//                     this process ends; the engine runs on without a frontend, and ends with
//                     ExitStatus::noAnswer when the page shows an alert
//   a crash           the terminal is restored; the engine runs on as above
[[nodiscard]] ExitStatus runTerminalFrontend(const EngineConnection& engine, const RunDescription& description);

}  // namespace tavenhall
