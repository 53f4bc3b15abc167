#pragma once

#include "host/engine/engine.h"
#include "host/protocol/engine_client.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tavenhall {

// What to install, and how.
struct EngineOptions {
  std::filesystem::path package;                // empty: the pre-install step is skipped
  std::string installType;                      // "Lite", "Full", or empty: none is written
  std::filesystem::path bundle;                 // the plug-in's folder
  std::filesystem::path summary;                // empty: none is written
  std::vector<ExpectedCopy> copies;             // that the install must make; checked at its end
  std::vector<event::AuditFailure> failures;    // known beforehand; reported at its end, so that it fails
  std::vector<std::string> warnings;            // reported before everything else, in English
  std::optional<UnattendedAnswers> unattended;  // none: a frontend answers
  bool barWraps = false;                        // for frontends that attach: as Introduction has it
  event::RunFacts facts;                        // for the summary
};

// Who sends the requests, and so decides whether the installation succeeded.
enum class Controller {
  program,   // another program; the exit status says only whether the protocol was served
  frontend,  // a frontend of this program; if it ends, the engine continues and leaves the page by itself
  nobody,    // the engine enters, waits and leaves by itself; set EngineOptions::unattended
};

// Runs a whole engine in this process, to its end: loads the bundle, performs the pre-install step and the
// requests, and reports the summary as the last event and in its file. The process ends here. `ends` are not
// used with Controller::nobody. SIGTERM, SIGINT and, without a frontend, SIGHUP end it with
// ExitStatus::stopped, after the summary. Throws UsageError before anything is begun, also while another
// install of this user runs; that is in the summary's file, too. Call it before any thread is started.
[[noreturn]] void runEngine(const EngineOptions& options, Controller controller, const EngineEnds& ends);

// Writes the summary of a run that used no engine, if `options` name a file for it.
void writeSummary(const EngineOptions& options, const event::Summary& summary);

// Writes the summary of a run that was refused, if `options` name a file for it.
void writeRefusal(const EngineOptions& options, const UsageError& reason);

// Starts it in a process of its own, for a frontend. With `capturesErrors`, a UsageError is printed on the
// captured standard error. As startEngineProcess() otherwise.
[[nodiscard]] EngineConnection startEngine(const EngineOptions& options, const EngineProcessOptions& process);

}  // namespace tavenhall
