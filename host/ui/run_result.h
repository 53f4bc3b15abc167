#pragma once

#include "host/base/exit_status.h"
#include "host/protocol/messages.h"
#include "host/ui/introduction.h"
#include "host/ui/styled_text.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// How an install ended: the last page.
namespace tavenhall {

// An entry that is not installed, as the last page lists it.
struct FailedEntry {
  std::string problem;  // as an event names it
  std::string name;
  std::string detail;
};

// The failures of a run.
struct Failures {
  std::vector<FailedEntry> first;  // at most kMostKept
  std::int64_t count = 0;          // of all

  static constexpr std::size_t kMostKept = 1000;
  void add(FailedEntry failure);
};

// "Missing: /Volumes/A/TANVO/two.db", in the user's language.
[[nodiscard]] std::string failureText(const FailedEntry& failure);

struct RunResult {
  ExitStatus status = ExitStatus::failure;  // the engine's
  bool hasSummary = false;                  // the engine came to its end and sent its summary
  std::optional<double> bytes = 0.0;        // installed, as audited; written, without an audit; none: unknown
  std::chrono::duration<double> time{0.0};  // from the page's entry to the end
  double copyingSeconds = 0.0;              // parts of it, as the engine has measured them
  double waitingSeconds = 0.0;
  std::string destination;  // the data folder
  Failures failures;
  bool hasCopied = true;               // a file, whether or not its copy was audited
  std::vector<std::string> remaining;  // where the run was stopped: a line for each folder
  std::string log;                     // empty: it is not shown
  std::vector<std::string> messages;   // what commands printed on standard error

  // The engine reports success, and there is no failure.
  [[nodiscard]] bool isSuccess() const { return status == ExitStatus::success && failures.count == 0; }

  // The program's exit status.
  [[nodiscard]] ExitStatus exitStatus() const;
};

// The page's heading, and its text, `width` cells wide.
[[nodiscard]] Span resultHeading(const RunResult& result);
[[nodiscard]] std::vector<Line> resultLines(const RunResult& result, int width);

// "3 min 20 s copying, 1 min waiting for discs, 4 min 30 s in all"; empty where nothing was waited for.
[[nodiscard]] std::string timeSplitText(double copyingSeconds, double waitingSeconds, double seconds);

// "Stopped." and what became of the files; `afterStop` where some were copied.
[[nodiscard]] std::string stoppedText(const event::Summary& summary, const std::string& afterStop);

// "Still to install: /Volumes/Tessaphon B/TANV1", a line for each.
[[nodiscard]] std::vector<std::string> remainingTexts(const std::vector<event::Remaining>& remaining);

// "The log is /Users/you/installationLog.txt.", as a line; empty where `log` is.
[[nodiscard]] std::string logLine(const std::string& log);

// One or two lines that stay on the terminal after the page.
[[nodiscard]] std::string closingText(const RunResult& result);

}  // namespace tavenhall
