#pragma once

#include "host/engine_process.h"
#include "host/exit_status.h"

#include <string>

namespace tavenhall {

// Shows one run of an engine as lines of text, on standard output: a line for every change worth one, with
// alerts answered by number on standard input. The face for screen readers, scripts and dumb terminals. Blocks
// until the run has ended. `log` is the installation log's path, which the last line names. Before any thread.
[[nodiscard]] ExitStatus runPlainFace(const EngineProcess& engine, const std::string& log);

}  // namespace tavenhall
