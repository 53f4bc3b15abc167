#pragma once

#include "host/base/exit_status.h"
#include "host/engine/engine.h"
#include "host/set/install_plan.h"

#include <string>
#include <vector>

// What is looked at before an install that nobody attends, so that it fails before it has changed anything.
namespace tavenhall {

struct Shortfall {
  ExitStatus status;
  std::string line;  // in the current language
};

// What is missing for this install on this machine: discs that are not there while `answers` do not wait for
// them, folders to install into, and space. Reads only.
[[nodiscard]] std::vector<Shortfall> shortfallsOf(const InstallPlan& plan, const UnattendedAnswers& answers);

// The disks on which the files of this plan need more space than is free, beyond that of the files that they
// replace. Where a source is not there yet, its size is what the set announces, less what its destination
// holds.
[[nodiscard]] std::vector<Shortfall> spaceShortfalls(const InstallPlan& plan);

}  // namespace tavenhall
