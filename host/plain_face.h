#pragma once

#include "host/exit_status.h"
#include "host/run_options.h"

namespace tavenhall {

// Shows one run as lines of text, on standard output: a line for every change worth one, with alerts
// answered by number on standard input. The face for screen readers, scripts and dumb terminals. Blocks
// until the run has ended. Before any thread.
[[nodiscard]] ExitStatus runPlainFace(const RunOptions& options);

}  // namespace tavenhall
