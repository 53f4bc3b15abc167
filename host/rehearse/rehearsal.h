#pragma once

#include "host/base/exit_status.h"
#include "host/engine/run_options.h"

#include <filesystem>
#include <string>

namespace tavenhall {

// What `tavinstall rehearse` was asked to do; what is empty was not asked for.
struct RehearsalRequest {
  std::filesystem::path set;
  std::string product;
  std::string installType;
  std::filesystem::path installed;
  std::filesystem::path keep;
  std::filesystem::path report;
  int late = 0;
  Face face = Face::plain;
};

// Installs a set in a sandbox, shows it, compares what was installed with its sources, and reports. Throws
// UsageError before anything is begun. What it makes goes with it, except for what it was asked to keep; that
// is so, too, when it is stopped by SIGINT, SIGTERM or SIGHUP, which it takes. Before any thread.
[[nodiscard]] ExitStatus rehearse(const RehearsalRequest& request);

}  // namespace tavenhall
