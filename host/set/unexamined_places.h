#pragma once

#include "host/set/install_plan.h"

#include <string>
#include <system_error>
#include <vector>

namespace tavenhall {

struct UnexaminedPlace {
  std::string path;
  std::error_code error;
};

// The places that decide what is installed and that cannot be examined: permissions or the disk prevent it. The
// page takes each for missing, so it may install less than it should without a word. Any thread; takes a
// moment.
[[nodiscard]] std::vector<UnexaminedPlace> unexaminedPlaces(const InstallPlan& plan);

}  // namespace tavenhall
