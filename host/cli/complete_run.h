#pragma once

#include "host/base/exit_status.h"
#include "host/engine/run_engine.h"
#include "host/set/install_plan.h"

namespace tavenhall {

// Installs the files of the plan that are missing or differ from the manifest beside the package, and no
// others: asks for the discs that hold them, one after the other, and compares everything again at the end.
// Lines of text; answers from standard input, where `options.unattended` is none. Throws UsageError where it
// cannot begin.
[[nodiscard]] ExitStatus completeInstall(const EngineOptions& options, const InstallPlan& plan);

}  // namespace tavenhall
