#pragma once

#include "host/base/exit_status.h"
#include "host/ui/run_description.h"
#include "host/ui/styled_text.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// How an install ended: the last page.
namespace tavenhall {

struct RunResult {
  ExitStatus status = ExitStatus::failure;   // the engine's
  bool hasSummary = false;                   // the engine came to its end and sent its summary
  std::optional<double> bytesWritten = 0.0;  // none: unknown
  std::chrono::duration<double> time{0.0};
  std::string destination;  // the data folder
  Failures failures;
  std::string log;                    // empty: it is not shown
  std::vector<std::string> messages;  // what commands printed on standard error

  // The engine reports success, and the log has no failure.
  [[nodiscard]] bool isSuccess() const { return status == ExitStatus::success && failures.count == 0; }

  // The program's exit status.
  [[nodiscard]] ExitStatus exitStatus() const;
};

// The page's heading, and its text, `width` cells wide.
[[nodiscard]] Span resultHeading(const RunResult& result);
[[nodiscard]] std::vector<Line> resultLines(const RunResult& result, int width);

// "The log is /Users/you/installationLog.txt.", as a line; empty where `log` is.
[[nodiscard]] std::string logLine(const std::string& log);

// One or two lines that stay on the terminal after the page.
[[nodiscard]] std::string closingText(const RunResult& result);

}  // namespace tavenhall
