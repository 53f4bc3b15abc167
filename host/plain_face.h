#pragma once

#include "host/engine_process.h"
#include "host/exit_status.h"

#include <string>

namespace tavenhall {

// What the last lines say that the engine does not tell.
struct LastLines {
  std::string log;  // the installation log's path; empty: it is not named
  std::string afterStop = "What was copied so far stays; run the installer again to complete it.";
};

// Shows one run of an engine as lines of text, on standard output: a line for every change worth one, with
// alerts answered by number on standard input. The face for screen readers, scripts and dumb terminals. Blocks
// until the run has ended. Before any thread.
[[nodiscard]] ExitStatus runPlainFace(const EngineProcess& engine, const LastLines& lastLines);

}  // namespace tavenhall
