#pragma once

#include "host/base/exit_status.h"
#include "host/log/run_story.h"
#include "host/ui/styled_text.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// How an install ended: what the last page says.
namespace tavenhall {

struct RunOutcome {
  ExitStatus status = ExitStatus::failure;  // the engine's
  bool isTold = false;                      // the engine came to its end and said how it went
  std::optional<double> bytesCopied = 0.0;  // none: nobody counted
  std::chrono::duration<double> time{0.0};
  std::string destination;           // the data's folder
  std::vector<RunFailure> failures;  // the first ones; with their files, as the log has them
  std::int64_t failureCount = 0;
  std::string logPath;                // empty: nobody knows
  std::vector<std::string> messages;  // what commands said on the way

  // Everything that was to be installed is.
  [[nodiscard]] bool isSuccess() const { return status == ExitStatus::success && failureCount == 0; }

  // How the program ends.
  [[nodiscard]] ExitStatus exitStatus() const;
};

// Fills in the failures that the log tells of from `start` (bytes) on. A log that has become shorter since
// is read as a whole.
void readFailures(const std::string& logPath, std::int64_t start, RunOutcome& outcome);

// The log's size in bytes; 0 where there is none yet.
[[nodiscard]] std::int64_t logSize(const std::string& logPath);

// The page's heading, and its text, `width` cells wide.
[[nodiscard]] Span outcomeHeading(const RunOutcome& outcome);
[[nodiscard]] std::vector<Line> outcomeLines(const RunOutcome& outcome, int width);

// "The log is /Users/you/installationLog.txt.", as a line; empty where nobody knows it.
[[nodiscard]] std::string logLine(const std::string& logPath);

// One or two lines that stay on the terminal when the page has gone.
[[nodiscard]] std::string lastWord(const RunOutcome& outcome);

}  // namespace tavenhall
