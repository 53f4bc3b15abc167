#pragma once

#include "host/base/exit_status.h"
#include "host/base/text.h"
#include "host/engine/engine_process.h"

#include <string>

namespace tavenhall {

// What the last lines say that the engine does not tell.
struct LastLines {
  std::string log;  // the installation log's path; empty: it is not named
  std::string afterStop = _("What was copied so far stays; run the installer again to complete it.");
};

// Shows one run of an engine as lines of text, on standard output: a line for every change worth one, with
// alerts answered by number on standard input, and passwords that commands ask for on the terminal, unshown.
// The face for screen readers, scripts and dumb terminals. Blocks until the run has ended. Before any thread.
//
// How it can end before the install does:
//   Ctrl-C, SIGINT, SIGTERM   the engine is ended, and the last lines say so; ExitStatus::failure
//   SIGHUP                    this process ends; the engine goes on to its end, or to its next question
// A reader of standard output that goes away ends nothing: the install goes on, and the exit status tells.
[[nodiscard]] ExitStatus runPlainFace(const EngineProcess& engine, const LastLines& lastLines);

}  // namespace tavenhall
