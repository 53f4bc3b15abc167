#pragma once

#include "host/engine_process.h"
#include "host/exit_status.h"
#include "host/run_options.h"
#include "host/terminal/introduction.h"

#include <cstdint>
#include <string>

namespace tavenhall {

// What the page says that its engine does not tell.
struct TerminalPage {
  Introduction introduction;
  std::string logPath;        // as this process sees it; empty: there is none
  std::string logShown;       // as the user is told of it; empty: not at all
  std::int64_t logStart = 0;  // its size before the engine was started, bytes
  std::string afterStop = "What was copied so far stays; run the installer again to complete it.";
};

// That of a run of this machine's own. Before its engine is started.
[[nodiscard]] TerminalPage terminalPageFor(const RunOptions& options);

// Shows the page on the whole terminal and sees one run of an engine through. Only where terminalIsUsable().
// Before any thread.
//
// How it can end before the install does:
//   Ctrl-C, SIGINT    the user is asked; then as SIGTERM
//   SIGTERM           the engine is ended, the terminal is given back; ExitStatus::failure
//   SIGHUP, or a terminal that cannot be written or read any more
//                     this process ends; the engine goes on to its end without anybody to show it to, and ends
//                     with ExitStatus::noAnswer where the page asks something
//   a crash           the terminal is given back; the engine goes on, as above
[[nodiscard]] ExitStatus runTerminalFace(const EngineProcess& engine, const TerminalPage& page);

}  // namespace tavenhall
