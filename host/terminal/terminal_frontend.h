#pragma once

#include "host/base/exit_status.h"
#include "host/cli/terminal_page.h"
#include "host/engine/engine_process.h"

namespace tavenhall {

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
