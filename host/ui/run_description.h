#pragma once

#include "host/base/text.h"
#include "host/ui/introduction.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tavenhall {

// A file, or a folder, that failed, as the last page lists it.
struct FailedFile {
  std::string kind;  // "source", "target", "size", "folder", "not-found", "no-destination"
  std::string name;
};

struct Failures {
  std::vector<FailedFile> first;  // at most the first thousand
  std::int64_t count = 0;         // of all
};

// What a frontend presents of a run beyond the engine's events.
struct RunDescription {
  Introduction introduction;
  std::string log;  // the path of the installation log, as the user is shown it; empty: it is not shown
  std::string afterStop =
      _("The files copied so far are kept. Run the installer again to complete the installation.");
  std::function<Failures()> failures;  // called once, after the engine has ended; none: nothing is known
};

}  // namespace tavenhall
