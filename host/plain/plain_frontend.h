#pragma once

#include "host/protocol/engine_client.h"
#include "host/ui/introduction.h"

namespace tavenhall {

// Shows one run as lines of text on standard output: a line for every change that matters, alerts that are
// answered by number on standard input, and password prompts on the terminal. For screen readers, scripts and
// dumb terminals. Blocks until the run has ended. Call it before any thread is started.
//
// How it can end before the install does:
//   Ctrl-C, SIGINT, SIGTERM   stops the engine and says so; ExitStatus::stopped
//   SIGHUP                    this process ends; the engine runs on to its end, and waits at an alert for a
//                             frontend that attaches
// A frontend that has attached to the engine ends at each of these signals, and the engine runs on.
//
// A reader of standard output that goes away ends nothing: the install runs on, and the exit status reports the
// result.
[[nodiscard]] ExitStatus runPlainFrontend(const EngineConnection& engine, const RunDescription& description);

}  // namespace tavenhall
