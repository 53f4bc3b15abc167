#pragma once

#include "host/base/exit_status.h"
#include "host/protocol/engine_client.h"
#include "host/set/checked_set.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tavenhall {

// What `tavinstall check` says of a set.
struct CheckVerdict {
  std::vector<std::string> errors;  // one line each, in the language that was spoken
  std::int64_t warnings = 0;
};

// The arguments of `tavinstall rehearse`; empty if not given.
struct RehearsalRequest {
  std::filesystem::path set;
  std::string product;
  std::string installType;
  std::filesystem::path installed;
  std::filesystem::path keep;
  std::filesystem::path report;
  bool allowsOutside = false;           // the set may refer to what is not in its folder
  int late = 0;                         // how often each disc is first reported missing
  std::function<CheckVerdict()> check;  // of the set; may be called again, in another language
};

// What a check looks at to say what a rehearsal will find.
[[nodiscard]] CheckRequest checkRequestFor(const RehearsalRequest& request);

// What a frontend shows of a rehearsal besides the engine's events.
struct RehearsalScene {
  const InstallPlan& plan;
  std::string sandbox;     // the folder that the page sees as "/"
  std::string log;         // the installation log
  std::string keptFolder;  // empty: nothing is kept
};

// Who drives a rehearsal.
struct RehearsalView {
  enum class Kind {
    frontend,  // `run` shows it, with the engine in another process
    program,   // another program drives it with JSON lines on the standard streams
    nobody,
  };
  Kind kind = Kind::nobody;
  EngineProcessOptions process;
  std::function<void(const EngineConnection& engine, const RehearsalScene& scene)> run;
};

// Installs a set in a sandbox, compares the installed files with their sources, and prints the report. Throws
// UsageError before it installs anything. Removes everything that it has created except the folder to keep,
// also when SIGINT, SIGTERM or SIGHUP stops it. Call it before any thread is started.
[[nodiscard]] ExitStatus rehearse(const RehearsalRequest& request, const RehearsalView& view);

}  // namespace tavenhall
